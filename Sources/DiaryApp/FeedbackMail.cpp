// SPDX-License-Identifier: MIT
#include <DiaryApp/FeedbackMail.h>

namespace diary::FeedbackMail {

namespace {

// A plus is a plus in a mail link, and a space is %20.
QString encoded(const QString &text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

QString address() {
    return QStringLiteral(TAVELO_FEEDBACK_ADDRESS);
}

QUrl link(const QString &address, const QString &programVersion, const QString &system) {
    const auto program = QStringLiteral("Tavelo ") + programVersion;
    const auto subject = program + QStringLiteral(" Feedback");
    // Lines of mail end like this.
    const auto body = QStringLiteral("\r\n\r\n---\r\n") + program + QStringLiteral(" · ") + system;
    QUrl link;
    link.setScheme(QStringLiteral("mailto"));
    link.setPath(address);
    link.setQuery(QStringLiteral("subject=") + encoded(subject) + QStringLiteral("&body=") + encoded(body));
    return link;
}

} // namespace diary::FeedbackMail
