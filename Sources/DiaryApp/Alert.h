// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace diary {

// A question or a notice that belongs to a window and stands over it until it is answered.
struct Alert {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString message;
    QString informativeText = {};
    // The first is the default, the last is what Escape means. Without any there is one that says OK.
    QStringList buttons = {};
    // With the number of the button.
    std::function<void(int)> onAnswer = nullptr;
};

// Returns at once: a nested event loop in the middle of a save, or of quitting, would be a trap. The alert
// goes unanswered when its window does.
void showAlert(QWidget *window, Alert alert);

} // namespace diary
