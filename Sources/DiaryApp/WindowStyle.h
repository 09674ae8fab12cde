// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace diary {

// Qt's own look, whatever the desktop's, except that the icon of a menu bar that is too narrow for its menus
// is made when it is first shown: every menu bar asks for it, and the first picture that is read loads all
// modules for pictures, with their libraries.
class WindowStyle : public QProxyStyle {
    Q_OBJECT

public:
    // Also before there is an application.
    WindowStyle();

    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
};

} // namespace diary
