// SPDX-License-Identifier: MIT
#include <DiaryApp/FeedbackMail.h>

#include <QUrlQuery>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(FeedbackMail, opensAMessageThatTellsTheVersions) {
    const auto link = FeedbackMail::link(QStringLiteral("feedback@example.org"), QStringLiteral("1.2.0"),
                                         QStringLiteral("Debian GNU/Linux 12 (bookworm)"));
    EXPECT_EQ(link.scheme(), QLatin1String("mailto"));
    EXPECT_EQ(link.path(), QLatin1String("feedback@example.org"));
    const QUrlQuery query(link);
    EXPECT_EQ(query.queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded),
              QLatin1String("Tavelo 1.2.0 Feedback"));
    EXPECT_EQ(query.queryItemValue(QStringLiteral("body"), QUrl::FullyDecoded),
              QStringLiteral("\r\n\r\n---\r\nTavelo 1.2.0 · Debian GNU/Linux 12 (bookworm)"));
}

TEST(FeedbackMail, encodesWhatALinkCannotHold) {
    const auto link = FeedbackMail::link(QStringLiteral("a@example.org"), QStringLiteral("1.0+git&x"),
                                         QStringLiteral("A=B #1 100%"));
    EXPECT_EQ(link.toEncoded(),
              QByteArray("mailto:a@example.org?subject=Tavelo%201.0%2Bgit%26x%20Feedback&body="
                         "%0D%0A%0D%0A---%0D%0ATavelo%201.0%2Bgit%26x%20%C2%B7%20A%3DB%20%231%20100%25"));
}

} // namespace
} // namespace diary
