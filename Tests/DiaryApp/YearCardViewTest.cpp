// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/Theme.h>
#include <DiaryApp/YearCardView.h>

#include <QAccessible>
#include <QFontMetricsF>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

constexpr YearCardMetrics sample{{41, 20}, 16, {60, 14}, 10, 40, {70, 13}};

TEST(YearCardLayout, standsAsMeasured) {
    const auto layout = layoutYearCard(sample, 255);
    EXPECT_EQ(layout.year, QRect(16, 15, 41, 20));
    EXPECT_EQ(layout.meta, QRect(255 - 16 - 60, 15 + 16 - 10, 60, 14));
    EXPECT_EQ(layout.divider, QRect(16, 15 + 20 + 9, 255 - 32, 1));
    EXPECT_EQ(layout.snippet, QRect(16, 45 + 10, 255 - 32, 40));
    EXPECT_EQ(layout.ago, QRect(16, 95 + 10, 70, 13));
    EXPECT_EQ(layout.height, 105 + 13 + 16);
}

TEST(YearCardLayout, putsTheYearAndTheMetaOnOneBaseline) {
    const auto layout = layoutYearCard(sample, 255);
    EXPECT_EQ(layout.year.top() + sample.yearAscent, layout.meta.top() + sample.metaAscent);
}

TEST(YearCardLayout, cutsALongMetaBeforeTheYear) {
    auto metrics = sample;
    metrics.meta.setWidth(400);
    metrics.ago.setWidth(400);
    const auto layout = layoutYearCard(metrics, 255);
    EXPECT_EQ(layout.meta.left(), layout.year.right() + 1 + 8);
    EXPECT_EQ(layout.meta.right() + 1, 255 - 16);
    EXPECT_EQ(layout.ago.right() + 1, 255 - 16);
}

TEST(YearCardLayout, growsWithTheSnippet) {
    auto metrics = sample;
    metrics.snippetHeight = 400;
    EXPECT_EQ(layoutYearCard(metrics, 255).height, layoutYearCard(sample, 255).height + 360);
}

YearCardView::Model sampleModel() {
    YearCardView::Model model;
    model.year = 2024;
    model.yearColor = Theme::railYear();
    model.meta = QStringLiteral("312 chars");
    model.snippet = QStringLiteral("A walk along the river");
    model.snippetColor = Theme::railTextActive();
    model.ago = QStringLiteral("1 year ago");
    model.background = Theme::cardBgActive();
    model.border = Theme::cardBorderActive();
    return model;
}

class YearCardViewTest : public ::testing::Test {
protected:
    YearCardViewTest() {
        window.resize(400, 400);
        card.move(20, 20);
        show(sampleModel());
        EXPECT_TRUE(testing::showActive(window));
    }

    void show(const YearCardView::Model &model) {
        card.update(model, YearCardView::Fonts::current());
        card.resize(255, card.layoutForWidth(255).height);
    }
    QString accessibleText(QAccessible::Text kind) {
        return QAccessible::queryAccessibleInterface(&card)->text(kind);
    }
    QRgb borderColor() { return pictureOf(card, 1).pixel(0, card.height() / 2); }

    QWidget window;
    YearCardView card{&window};
};

TEST_F(YearCardViewTest, showsTheYearWithoutDigitGrouping) {
    // The number is as wide as its four digits.
    const QFontMetricsF metrics(Theme::mono(17, Theme::Weight::Medium));
    EXPECT_EQ(card.layoutForWidth(255).year.width(),
              static_cast<int>(std::ceil(metrics.horizontalAdvance(QStringLiteral("2024")))));
    EXPECT_TRUE(accessibleText(QAccessible::Name).startsWith(QStringLiteral("2024,")));
}

TEST_F(YearCardViewTest, showsEachPartInItsColour) {
    const auto layout = card.layoutForWidth(255);
    const auto picture = pictureOf(card);
    EXPECT_GT(pixelsOf(Theme::railYear(), picture, layout.year), 0);
    EXPECT_GT(pixelsOf(Theme::agoText(), picture, layout.meta), 0);
    EXPECT_TRUE(testing::isFilledWith(Theme::borderSoft(), picture, layout.divider));
    EXPECT_GT(pixelsOf(Theme::railTextActive(), picture, layout.snippet), 0);
    EXPECT_GT(pixelsOf(Theme::faint(), picture, layout.ago), 0);
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBgActive(), picture, {10, 1, 200, 12}));
}

TEST_F(YearCardViewTest, hasARoundedBorderOfOnePixel) {
    for (const int ratio : {1, 2}) {
        const auto picture = pictureOf(card, ratio);
        EXPECT_TRUE(
            testing::isFilledWith(Theme::cardBorderActive(), picture, {0, 10, 1, card.height() - 20}));
        EXPECT_TRUE(testing::isFilledWith(Theme::cardBorderActive(), picture, {10, 0, 230, 1}));
        EXPECT_TRUE(testing::isFilledWith(Theme::cardBgActive(), picture, {1, 10, 1, card.height() - 20}));
        EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
        EXPECT_EQ(qAlpha(picture.pixel(ratio, ratio)), 0);
    }
}

TEST_F(YearCardViewTest, changesBorderAndShadowUnderThePointer) {
    EXPECT_EQ(borderColor(), Theme::cardBorderActive().rgba());
    EXPECT_EQ(card.shadow().opacity, 0.05);
    EXPECT_EQ(card.shadow().radius, 2);
    movePointerTo(card);
    EXPECT_EQ(borderColor(), Theme::cardBorderHover().rgba());
    EXPECT_EQ(card.shadow().opacity, 0.1);
    EXPECT_EQ(card.shadow().radius, 4);
    movePointerTo(window, {390, 390});
    EXPECT_EQ(borderColor(), Theme::cardBorderActive().rgba());
    EXPECT_EQ(card.shadow().opacity, 0.05);
}

TEST_F(YearCardViewTest, castsAShadowThatFadesAndFallsDownwards) {
    QImage picture(400, 400, QImage::Format_ARGB32_Premultiplied);
    const auto alphasAround = [&] {
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        card.paintShadow(painter);
        return picture;
    };
    const int middle = card.geometry().center().x();
    const auto below = [&](int distance) {
        return qAlpha(alphasAround().pixel(middle, card.geometry().bottom() + 1 + distance));
    };
    const auto above = [&](int distance) {
        return qAlpha(alphasAround().pixel(middle, card.geometry().top() - 1 - distance));
    };
    EXPECT_GT(below(0), above(0));
    EXPECT_GE(below(0), 5);
    EXPECT_LE(below(0), 13); // never more than its opacity, of 255
    EXPECT_GT(below(0), below(2));
    EXPECT_EQ(below(8), 0);
    const int atRest = below(2);
    movePointerTo(card);
    EXPECT_GT(below(2), atRest);
    EXPECT_EQ(below(12), 0);
}

TEST_F(YearCardViewTest, wrapsALongSnippetWithoutLimit) {
    auto model = sampleModel();
    model.snippet = QStringLiteral("word ").repeated(400);
    show(model);
    const auto tall = card.height();
    EXPECT_GT(tall, 1000);
    model.snippet = QString(2000, QLatin1Char('x'));
    show(model);
    EXPECT_GT(card.height(), 1000);
    // Nothing of it is outside.
    const auto picture = pictureOf(card, 1);
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBgActive(), picture, {240, 10, 13, card.height() - 20}));
}

TEST_F(YearCardViewTest, spacesTheLinesOfTheSnippet) {
    auto model = sampleModel();
    const int oneLine = card.layoutForWidth(255).snippet.height();
    EXPECT_EQ(oneLine, std::ceil(QFontMetricsF(Theme::serif(13)).height()));
    model.snippet = QString(40, QLatin1Char('x'));
    show(model);
    EXPECT_EQ(card.layoutForWidth(255).snippet.height(), 2 * oneLine + 8);
}

TEST_F(YearCardViewTest, alignsASnippetByItsDirection) {
    auto model = sampleModel();
    model.snippet = QStringLiteral("הים");
    show(model);
    const auto snippet = card.layoutForWidth(255).snippet;
    const auto picture = pictureOf(card);
    const QRect half(snippet.left(), snippet.top(), snippet.width() / 2, snippet.height());
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBgActive(), picture, half));
    EXPECT_FALSE(testing::isFilledWith(Theme::cardBgActive(), picture, half.translated(half.width(), 0)));
}

TEST_F(YearCardViewTest, keepsARowForAnEmptyAgo) {
    const int height = card.height();
    auto model = sampleModel();
    model.ago.clear();
    show(model);
    EXPECT_EQ(card.height(), height);
    EXPECT_EQ(accessibleText(QAccessible::Name), QStringLiteral("2024, 312 chars"));
}

TEST_F(YearCardViewTest, doesWhatItsModelSays) {
    int clicks = 0;
    auto model = sampleModel();
    model.onClick = [&] { ++clicks; };
    show(model);
    QTest::mousePress(&card, Qt::LeftButton);
    QTest::mouseRelease(&card, Qt::LeftButton, {}, {-4, 4});
    EXPECT_EQ(clicks, 0);
    QTest::mouseClick(&card, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    card.setFocus();
    QTest::keyClick(&card, Qt::Key_Return);
    EXPECT_EQ(clicks, 2);

    // The newest action, even when nothing else changed.
    model.onClick = [&] { clicks += 10; };
    show(model);
    QTest::mouseClick(&card, Qt::LeftButton);
    EXPECT_EQ(clicks, 12);
}

TEST_F(YearCardViewTest, startsUnhoveredWithEachUpdate) {
    movePointerTo(card);
    ASSERT_TRUE(card.isHovered());
    show(sampleModel());
    EXPECT_FALSE(card.isHovered());
    EXPECT_EQ(borderColor(), Theme::cardBorderActive().rgba());
}

TEST_F(YearCardViewTest, clicksForNoOtherYearThanTheOneThatWasPressed) {
    int clicks = 0;
    auto model = sampleModel();
    model.onClick = [&] { ++clicks; };
    QTest::mousePress(&card, Qt::LeftButton);
    model.year = 2019;
    show(model);
    QTest::mouseRelease(&card, Qt::LeftButton);
    EXPECT_EQ(clicks, 0);

    QTest::mousePress(&card, Qt::LeftButton);
    model.snippet = QStringLiteral("Some more");
    show(model);
    QTest::mouseRelease(&card, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
}

TEST_F(YearCardViewTest, tellsAssistiveTechnologiesWhatItShows) {
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&card)->role(), QAccessible::Button);
    EXPECT_EQ(accessibleText(QAccessible::Name), QStringLiteral("2024, 1 year ago, 312 chars"));
    EXPECT_EQ(accessibleText(QAccessible::Description), QStringLiteral("A walk along the river"));
    int clicks = 0;
    auto model = sampleModel();
    model.onClick = [&] { ++clicks; };
    show(model);
    QAccessible::queryAccessibleInterface(&card)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicks, 1);
}

TEST_F(YearCardViewTest, hasARingInsideItsBorderWhileItHasTheKeyboard) {
    EXPECT_EQ(pixelsOf(Theme::accent(), pictureOf(card, 1), card.rect()), 0);
    card.setFocus();
    const auto picture = pictureOf(card, 1);
    EXPECT_TRUE(testing::isFilledWith(Theme::accent(), picture, {3, 20, 2, card.height() - 40}));
    EXPECT_EQ(borderColor(), Theme::cardBorderActive().rgba());
}

} // namespace
} // namespace diary
