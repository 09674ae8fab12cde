// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariant>

namespace diary {

// Whether the person at the screen wants things to move. Main thread only.
class MotionPreference : public QObject {
    Q_OBJECT

public:
    // Asks the desktop, by the settings portal on the session bus, and does not wait for the answer.
    void ask();

    // True when the desktop said so, or when the widget style does without animations. A desktop that does
    // not answer has nothing against them.
    bool isReduced() const;

    // What the answer to "enable-animations" says. One that is no claim has nothing against them.
    static bool wantsAnimations(const QVariant &answer);

private:
    bool m_wantsAnimations = true;
};

} // namespace diary
