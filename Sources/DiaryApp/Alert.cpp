// SPDX-License-Identifier: MIT
#include <DiaryApp/Alert.h>
#include <DiaryApp/Localization.h>

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>

#include <utility>

namespace diary {

void showAlert(QWidget *window, Alert alert) {
    auto *box = new QMessageBox(window);
    box->setObjectName(QStringLiteral("alert"));
    box->setIcon(alert.icon);
    box->setWindowTitle(QApplication::applicationDisplayName());
    box->setTextFormat(Qt::PlainText);
    box->setText(alert.message);
    box->setInformativeText(alert.informativeText);
    if (alert.buttons.isEmpty())
        alert.buttons.append(L("OK"));
    QList<QAbstractButton *> buttons;
    for (const auto &text : alert.buttons)
        buttons +=
            box->addButton(text, buttons.isEmpty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
    box->setDefaultButton(static_cast<QPushButton *>(buttons.first()));
    box->setEscapeButton(buttons.last());
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QMessageBox::buttonClicked, box,
                     [buttons, onAnswer = std::move(alert.onAnswer)](QAbstractButton *button) {
                         if (onAnswer)
                             onAnswer(static_cast<int>(buttons.indexOf(button)));
                     });
    box->open();
}

} // namespace diary
