// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

// A message to the makers, to be written in the user's e-mail program.
namespace diary::FeedbackMail {

// Chosen when the program is built; empty when none was.
QString address();

// A link that opens the message. The body tells the versions of the program and of the system, below room to
// write.
QUrl link(const QString &address, const QString &programVersion, const QString &system);

} // namespace diary::FeedbackMail
