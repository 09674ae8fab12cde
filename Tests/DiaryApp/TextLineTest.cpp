// SPDX-License-Identifier: MIT
#include <DiaryApp/TextLine.h>
#include <DiaryApp/Theme.h>

#include <QFontMetricsF>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(TextLine, showsAllOfItselfAtItsNaturalWidth) {
    // Widths that end before the half of a pixel are the ones that rounding would cut.
    for (const auto &font : {Theme::mono(10.5), Theme::mono(10.5, Theme::Weight::Regular, 1.47),
                             Theme::system(10.5), Theme::serif(13)}) {
        QString text;
        for (int length = 0; length < 60; ++length) {
            text.append(QChar(u'a' + length % 26));
            const TextLine line{text, font};
            EXPECT_EQ(line.shownText(line.naturalSize().width()), text);
        }
    }
}

TEST(TextLine, isShortenedAtTheSideItIsToldTo) {
    const auto text = QStringLiteral("the beginning and all the rest of it up to the end");
    const struct {
        Qt::TextElideMode mode;
        bool keepsBeginning;
        bool keepsEnd;
    } rows[] = {{Qt::ElideRight, true, false}, {Qt::ElideMiddle, true, true}, {Qt::ElideLeft, false, true}};
    for (const auto &[mode, keepsBeginning, keepsEnd] : rows) {
        const TextLine line{text, Theme::mono(12), mode};
        const auto shown = line.shownText(160);
        EXPECT_TRUE(shown.contains(QStringLiteral("…"))) << mode;
        EXPECT_EQ(shown.startsWith(QStringLiteral("the b")), keepsBeginning) << mode;
        EXPECT_EQ(shown.endsWith(QStringLiteral("end")), keepsEnd) << mode;
        EXPECT_LE(QFontMetricsF(line.font).horizontalAdvance(shown), 160) << mode;
    }
}

TEST(TextLine, staysOnOneLine) {
    const TextLine line{QStringLiteral("a\nb\tc\u2028d\u2029e"), Theme::mono(12)};
    EXPECT_EQ(line.shownText(1000), QStringLiteral("a b c d e"));
    EXPECT_EQ(onOneLine(line.text), QStringLiteral("a b c d e"));
}

} // namespace
} // namespace diary
