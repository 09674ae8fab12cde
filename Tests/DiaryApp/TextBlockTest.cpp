// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"

#include <DiaryApp/TextBlock.h>
#include <DiaryApp/Theme.h>

#include <QFontMetricsF>
#include <QPainter>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

namespace diary {
namespace {

TextBlock laidOut(const QString &text, double width, const TextBlock::Style &style = {Theme::mono(13)}) {
    TextBlock block;
    block.set(text, style);
    block.layOut(width);
    return block;
}

int lineHeight() {
    const QFontMetricsF metrics(Theme::mono(13));
    return static_cast<int>(std::ceil(metrics.ascent()) + std::ceil(metrics.descent()));
}

int lineCount(const TextBlock &block) {
    return static_cast<int>(block.lines().size());
}

TEST(TextBlock, isOneLineHighWithoutText) {
    EXPECT_EQ(laidOut(QString(), 100).height(), lineHeight());
    EXPECT_EQ(lineCount(laidOut(QString(), 100)), 1);
}

TEST(TextBlock, wrapsBetweenWords) {
    const auto block = laidOut(QStringLiteral("one two three four five six"), 80);
    EXPECT_GT(lineCount(block), 2);
    EXPECT_EQ(block.height(), lineCount(block) * lineHeight());
    EXPECT_LE(block.naturalWidth(), 80);
}

TEST(TextBlock, breaksALongWordAnywhere) {
    const auto block = laidOut(QString(300, QLatin1Char('x')), 100);
    EXPECT_GT(lineCount(block), 10);
    EXPECT_LE(block.naturalWidth(), 100);
}

TEST(TextBlock, putsSpacingBetweenTheLinesOnly) {
    const auto text = QStringLiteral("one two three four five six");
    const auto plain = laidOut(text, 80);
    const auto spaced = laidOut(text, 80, {Theme::mono(13), 8});
    EXPECT_EQ(spaced.height(), plain.height() + 8 * (lineCount(plain) - 1));
    EXPECT_EQ(spaced.lines()[0].rect.top(), plain.lines()[0].rect.top());
    EXPECT_EQ(spaced.lines()[1].rect.top(), plain.lines()[1].rect.top() + 8);
}

TEST(TextBlock, raisesEachLineByTheMultiple) {
    const auto block = laidOut(QStringLiteral("one two three four five six"), 80, {Theme::mono(13), 0, 1.3});
    const auto raised = std::round(1.3 * lineHeight());
    EXPECT_EQ(block.height(), lineCount(block) * raised);
    // What is added lies above.
    EXPECT_EQ(block.lines()[0].rect.top(), raised - lineHeight());
}

TEST(TextBlock, startsParagraphsAtLineBreaks) {
    const auto block = laidOut(QStringLiteral("one\ntwo\u2029three"), 500, {Theme::mono(13), 8, 1, 5});
    EXPECT_EQ(lineCount(block), 3);
    EXPECT_EQ(block.height(), 3 * lineHeight() + 2 * (8 + 5));
    EXPECT_EQ(block.lines()[2].rect.top(), 2 * lineHeight() + 2 * (8 + 5));
}

TEST(TextBlock, makesAllLinesEquallyHigh) {
    const auto block = laidOut(QStringLiteral("Latin\n日記を書く\nLatin"), 500, {Theme::serif(14.5)});
    const auto lines = block.lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].rect.top() - lines[0].rect.top(), lines[2].rect.top() - lines[1].rect.top());
    EXPECT_EQ(lines[0].rect.height(), lines[1].rect.height());
    EXPECT_EQ(block.height(), lines[2].rect.bottom());
}

TEST(TextBlock, keepsAParagraphOnOneLineWithoutWrapping) {
    const auto block =
        laidOut(QStringLiteral("one two three\nfour"), 20, {.font = Theme::mono(13), .wraps = false});
    ASSERT_EQ(lineCount(block), 2);
    EXPECT_EQ(block.lines()[0].text, QStringLiteral("one two three"));
    EXPECT_GT(block.naturalWidth(), 80);
}

TEST(TextBlock, tellsWhereItsFirstLettersStand) {
    const double ascent = std::ceil(QFontMetricsF(Theme::mono(13)).ascent());
    EXPECT_EQ(laidOut(QStringLiteral("x\ny"), 500).firstBaseline(), ascent);
    EXPECT_EQ(laidOut(QStringLiteral("x\ny"), 500, {Theme::mono(13), 0, 2}).firstBaseline(),
              ascent + lineHeight());
}

TEST(TextBlock, alignsEachParagraphByItsDirection) {
    const auto block = laidOut(QStringLiteral("left\nימין\nيمين"), 200);
    EXPECT_EQ(block.lines()[0].rect.left(), 0);
    EXPECT_NEAR(block.lines()[1].rect.right(), 200, 1);
    EXPECT_NEAR(block.lines()[2].rect.right(), 200, 1);
    EXPECT_GT(block.lines()[1].rect.left(), 100);
}

TEST(TextBlock, paintsInsideWhatItMeasured) {
    auto block = laidOut(QStringLiteral("some words that need a few lines"), 100, {Theme::serif(13), 8});
    QImage picture(400, 600, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(2);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    block.paint(painter, {50, 50}, Theme::railSnippet());
    painter.end();
    const QRect measured(50, 50, 100, static_cast<int>(block.height()));
    EXPECT_GT(testing::pixelsOf(Theme::railSnippet(), picture, measured), 50);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool isInside = measured.adjusted(-1, 0, 1, 0).contains(x / 2, y / 2);
            EXPECT_TRUE(isInside || qAlpha(picture.pixel(x, y)) == 0) << x << ' ' << y;
        }
    }
}

// Far more than is laid out at once; each paragraph differs from the one above.
QString longText(const QString &words = QStringLiteral("some words that may need a few lines ")) {
    QString text;
    for (int number = 0; text.size() < 30'000; ++number)
        text += QString::number(number) + QLatin1Char(' ') + words.repeated(number % 7) + QLatin1Char('\n');
    return text;
}

constexpr std::chrono::hours everything{1};

QImage pictureAt(TextBlock &block, double top) {
    QImage picture(300, 400, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    block.paint(painter, {0, -top}, Theme::ink(), picture.rect());
    return picture;
}

TEST(TextBlock, guessesTheHeightOfALongTextByItsBeginning) {
    auto block = laidOut(longText(), 300, {.font = Theme::mono(13), .lineSpacing = 11});
    EXPECT_TRUE(block.isHeightEstimated());
    const double guess = block.height();
    block.layOutMore(everything);
    EXPECT_FALSE(block.isHeightEstimated());
    EXPECT_EQ(block.height(), block.lines().back().rect.bottom());
    EXPECT_NEAR(guess, block.height(), block.height() / 5);
    // At another width it is a guess again.
    block.layOut(200);
    EXPECT_TRUE(block.isHeightEstimated());
}

TEST(TextBlock, goesOnWithALongTextInSlices) {
    auto block = laidOut(longText(), 300);
    int slices = 0;
    while (block.isHeightEstimated()) {
        const double height = block.height();
        block.layOutMore(std::chrono::milliseconds(1));
        ++slices;
        EXPECT_TRUE(!block.isHeightEstimated() || block.height() == height);
    }
    EXPECT_GT(slices, 1);
    auto atOnce = laidOut(longText(), 300);
    atOnce.layOutMore(everything);
    EXPECT_EQ(block.height(), atOnce.height());
}

TEST(TextBlock, knowsTheHeightOfALongTextThatDoesNotWrap) {
    const auto block = laidOut(longText(), 300, {.font = Theme::mono(13), .wraps = false});
    EXPECT_FALSE(block.isHeightEstimated());
    EXPECT_EQ(block.height(), block.lines().back().rect.bottom());
}

TEST(TextBlock, paintsALongTextAlikeWhateverWasLaidOutBefore) {
    for (const auto &words :
         {QStringLiteral("some words that may need a few lines "), QStringLiteral("日記を書く、毎日。"),
          QStringLiteral("שלום עולם abc "), QString(2'000, QLatin1Char('x'))}) {
        const auto text = longText(words);
        const TextBlock::Style style = {.font = Theme::serif(13), .lineSpacing = 11, .paragraphSpacing = 16};
        auto complete = laidOut(text, 300, style);
        complete.layOutMore(everything);
        for (const double part : {0.0, 0.5, 0.99}) {
            const double top = std::floor(complete.height() * part);
            const auto picture = pictureAt(complete, top);
            EXPECT_GT(testing::pixelsOf(Theme::ink(), picture, picture.rect()), 0);
            auto fresh = laidOut(text, 300, style);
            EXPECT_EQ(pictureAt(fresh, top), picture) << part;
        }
    }
}

TEST(TextBlock, paintsALongTextAlikeAfterManyOtherPlaces) {
    auto block = laidOut(longText(), 300);
    const auto beginning = pictureAt(block, 0);
    block.layOutMore(everything);
    const auto end = pictureAt(block, block.height() - 400);
    for (double top = 0; top < block.height(); top += 300)
        pictureAt(block, top);
    EXPECT_EQ(pictureAt(block, 0), beginning);
    EXPECT_EQ(pictureAt(block, block.height() - 400), end);
    EXPECT_NE(beginning, end);
}

TEST(TextBlock, standsWhereItStoodWhenTheRestOfALongTextIsKnown) {
    auto block = laidOut(longText(), 300);
    const double height = block.height();
    // Far below, after which all of it is laid out.
    pictureAt(block, 2 * height);
    EXPECT_EQ(block.height(), height);
    EXPECT_TRUE(block.isHeightEstimated());
    block.layOutMore(std::chrono::milliseconds(0));
    EXPECT_FALSE(block.isHeightEstimated());
}

TEST(TextBlock, paintsOnlyWhatIsExposed) {
    auto block = laidOut(longText(), 300);
    QImage picture(300, 4'000, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    block.paint(painter, {0, 0}, Theme::ink(), {0, 1'000, 300, 200});
    painter.end();
    const int near = 4 * lineHeight();
    EXPECT_GT(testing::pixelsOf(Theme::ink(), picture, {0, 1'000, 300, 200}), 50);
    EXPECT_EQ(testing::pixelsOf(Theme::ink(), picture, {0, 0, 300, 1'000 - near}), 0);
    EXPECT_EQ(testing::pixelsOf(Theme::ink(), picture, {0, 1'200 + near, 300, 2'000}), 0);
}

// What one of many lines needs, all get, and before anybody came there: the lines must not move later.
TEST(TextBlock, makesRoomForTheLettersAtTheEndOfALongText) {
    for (const auto &letters : {QStringLiteral("日記"), QStringLiteral("“Привет”"), QStringLiteral("שלום 12"),
                                QStringLiteral("हिन्दी"), QStringLiteral("กำ"), QStringLiteral("😀 😀"),
                                QStringLiteral("2 → 3 ≠ 4 ♥"), QStringLiteral("e\u0301")}) {
        for (const auto &font : {Theme::mono(13), Theme::serif(14.5)}) {
            const auto ending = QStringLiteral("last ") + letters + QLatin1Char('\n') + letters;
            const auto few = laidOut(QStringLiteral("some words\n") + ending, 300, {font});
            auto many = laidOut(longText() + ending, 300, {font});
            EXPECT_EQ(many.firstBaseline(), few.firstBaseline()) << letters.toStdString();
            many.layOutMore(everything);
            EXPECT_EQ(many.firstBaseline(), few.firstBaseline()) << letters.toStdString();
            EXPECT_EQ(many.lines().back().rect.height(), few.lines().back().rect.height());
        }
    }
}

TEST(TextBlock, isLaidOutAnewForAnotherTextStyleOrWidth) {
    auto block = laidOut(QStringLiteral("one two three four"), 60);
    const auto narrow = block.height();
    block.layOut(500);
    EXPECT_EQ(block.height(), lineHeight());
    block.set(QStringLiteral("one two three four"), {Theme::mono(26)});
    block.layOut(500);
    EXPECT_GT(block.height(), lineHeight());
    EXPECT_GT(narrow, lineHeight());
    block.set(QStringLiteral("a\nb"), {Theme::mono(26)});
    block.layOut(500);
    EXPECT_EQ(lineCount(block), 2);
}

} // namespace
} // namespace diary
