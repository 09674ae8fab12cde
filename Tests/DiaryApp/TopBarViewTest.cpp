// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TopBarView.h>

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

namespace diary {
namespace {

using testing::pictureOf;
using testing::pixelsOf;

constexpr TopBarMetrics sample{{62, 15}, {91, 16}, {91, 26}, {65, 25}};

TEST(TopBarLayout, centresTheLabelsAndPutsTheButtonsAtTheEnd) {
    const auto layout = layoutTopBar(sample, {1360, 46});
    EXPECT_EQ(layout.file, QRect(598, 15, 62, 15)); // 62 + 10 + 91 in the middle of 1360
    EXPECT_EQ(layout.count, QRect(670, 15, 91, 16));
    EXPECT_EQ(layout.source, QRect(1360 - 12 - 65, 10, 65, 25));
    EXPECT_EQ(layout.random, QRect(1360 - 12 - 65 - 4 - 91, 10, 91, 26));
    EXPECT_EQ(layout.rule, QRect(0, 45, 1360, 1));
}

TEST(TopBarLayout, neverPutsTheLabelsUnderTheButtons) {
    for (int width = 180; width < 700; ++width) {
        const auto layout = layoutTopBar(sample, {width, 46});
        EXPECT_GE(layout.file.left(), 14) << width;
        EXPECT_LE(layout.file.right() + 1, std::max(14, layout.random.left() - 14)) << width;
        if (layout.count.isEmpty())
            continue;
        EXPECT_EQ(layout.count.left(), layout.file.right() + 1 + 10) << width;
        EXPECT_LE(layout.count.right() + 1, layout.random.left() - 14) << width;
        // The count gives way before the file name does.
        EXPECT_EQ(layout.file.width(), 62) << width;
    }
}

TEST(TopBarLayout, leavesTheCountAwayWhenTooLittleIsLeftOfIt) {
    EXPECT_EQ(layoutTopBar(sample, {400, 46}).count.width(), 91);
    EXPECT_EQ(layoutTopBar(sample, {330, 46}).count.width(), 330 - 12 - 65 - 4 - 91 - 28 - 72);
    EXPECT_TRUE(layoutTopBar(sample, {300, 46}).count.isEmpty());
    EXPECT_EQ(layoutTopBar(sample, {300, 46}).file.width(), 62);
    EXPECT_LT(layoutTopBar(sample, {250, 46}).file.width(), 62);
}

class TopBarViewTest : public ::testing::Test {
protected:
    TopBarViewTest() {
        bar.resize(900, 46);
        bar.update({QStringLiteral("03-14.md"), QStringLiteral("4 year sections"), QStringLiteral("Source")});
        EXPECT_TRUE(testing::showActive(bar));
    }

    ElidedLabel &label(const char *name) { return *bar.findChild<ElidedLabel *>(QLatin1String(name)); }
    ChromeButton &button(const char *name) { return *bar.findChild<ChromeButton *>(QLatin1String(name)); }

    TopBarView bar;
};

TEST_F(TopBarViewTest, showsItsModel) {
    EXPECT_EQ(label("fileLabel").shownText(), QStringLiteral("03-14.md"));
    EXPECT_EQ(label("countLabel").shownText(), QStringLiteral("4 year sections"));
    EXPECT_EQ(button("sourceButton").text(), QStringLiteral("Source"));
    EXPECT_EQ(button("randomButton").text(), QStringLiteral("Random Day"));
    bar.update({QStringLiteral("02-29.md"), QStringLiteral("1 year section"), QStringLiteral("Reader")});
    EXPECT_EQ(label("fileLabel").shownText(), QStringLiteral("02-29.md"));
    EXPECT_EQ(label("countLabel").shownText(), QStringLiteral("1 year section"));
    EXPECT_EQ(button("sourceButton").text(), QStringLiteral("Reader"));
}

TEST_F(TopBarViewTest, liesAsLaidOut) {
    const auto layout = layoutTopBar({label("fileLabel").sizeHint(), label("countLabel").sizeHint(),
                                      button("randomButton").sizeHint(), button("sourceButton").sizeHint()},
                                     bar.size());
    EXPECT_EQ(label("fileLabel").geometry(), layout.file);
    EXPECT_EQ(label("countLabel").geometry(), layout.count);
    EXPECT_EQ(button("randomButton").geometry(), layout.random);
    EXPECT_EQ(button("sourceButton").geometry(), layout.source);
    EXPECT_EQ(button("sourceButton").geometry().right() + 1, 900 - 12);
}

TEST_F(TopBarViewTest, keepsTheButtonsAtTheEndWhenATextGrows) {
    bar.update({QStringLiteral("03-14.md"), QStringLiteral("4 Jahresabschnitte"),
                QStringLiteral("Quelltext anzeigen")});
    EXPECT_EQ(button("sourceButton").geometry().right() + 1, 900 - 12);
    EXPECT_EQ(button("randomButton").geometry().right() + 1 + 4, button("sourceButton").x());
    bar.resize(420, 46);
    EXPECT_EQ(button("sourceButton").geometry().right() + 1, 420 - 12);
    EXPECT_LT(label("countLabel").geometry().right(), button("randomButton").x());
}

TEST_F(TopBarViewTest, isPaintedInItsColours) {
    const auto picture = pictureOf(bar);
    EXPECT_TRUE(testing::isFilledWith(Theme::bar(), picture, {0, 0, 900, 8}));
    EXPECT_TRUE(testing::isFilledWith(Theme::border(), picture, {0, 45, 900, 1}));
    EXPECT_TRUE(testing::isFilledWith(Theme::bar(), picture, {0, 44, 900, 1}));
    EXPECT_GT(pixelsOf(Theme::inkMed(), picture, label("fileLabel").geometry()), 0);
    EXPECT_GT(pixelsOf(Theme::statusText(), picture, label("countLabel").geometry()), 0);
    EXPECT_GT(pixelsOf(Theme::chromeText(), picture, button("randomButton").geometry()), 0);
    EXPECT_GT(pixelsOf(Theme::chromeText(), picture, button("sourceButton").geometry()), 0);
    EXPECT_EQ(label("fileLabel").font(), Theme::mono(12.5, Theme::Weight::Medium));
    EXPECT_EQ(label("countLabel").font(), Theme::system(11.5));
}

TEST_F(TopBarViewTest, keepsTheHoverColourWhenTheSourceButtonChangesUnderThePointer) {
    testing::movePointerTo(button("sourceButton"));
    ASSERT_TRUE(button("sourceButton").isHovered());
    bar.update({QStringLiteral("03-14.md"), QStringLiteral("4 year sections"), QStringLiteral("Reader")});
    EXPECT_TRUE(button("sourceButton").isHovered());
    const auto picture = pictureOf(bar);
    EXPECT_GT(pixelsOf(Theme::inkTitle(), picture, button("sourceButton").geometry()), 0);
    EXPECT_EQ(pixelsOf(Theme::chromeText(), picture, button("sourceButton").geometry()), 0);
}

TEST_F(TopBarViewTest, tellsOfClicks) {
    // Without a listener nothing happens.
    QTest::mouseClick(&button("randomButton"), Qt::LeftButton);
    QTest::mouseClick(&button("sourceButton"), Qt::LeftButton);
    QStringList calls;
    bar.onRandom = [&] { calls.append(QStringLiteral("random")); };
    bar.onToggleSource = [&] { calls.append(QStringLiteral("source")); };
    QTest::mouseClick(&button("randomButton"), Qt::LeftButton);
    QTest::mouseClick(&button("sourceButton"), Qt::LeftButton);
    EXPECT_EQ(calls, QStringList({QStringLiteral("random"), QStringLiteral("source")}));
}

TEST_F(TopBarViewTest, isUsedFromTheKeyboard) {
    QStringList calls;
    bar.onRandom = [&] { calls.append(QStringLiteral("random")); };
    bar.onToggleSource = [&] { calls.append(QStringLiteral("source")); };
    button("randomButton").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(button("sourceButton").hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(calls, QStringList({QStringLiteral("random"), QStringLiteral("source")}));
}

TEST_F(TopBarViewTest, hasStaticTextsAndButtonsForAssistiveTechnologies) {
    const struct {
        QWidget *widget;
        QAccessible::Role role;
        const char *name;
    } rows[] = {
        {&label("fileLabel"), QAccessible::StaticText, "03-14.md"},
        {&label("countLabel"), QAccessible::StaticText, "4 year sections"},
        {&button("randomButton"), QAccessible::Button, "Random Day"},
        {&button("sourceButton"), QAccessible::Button, "Source"},
    };
    for (const auto &[widget, role, name] : rows) {
        const auto *accessible = QAccessible::queryAccessibleInterface(widget);
        EXPECT_EQ(accessible->role(), role) << name;
        EXPECT_EQ(accessible->text(QAccessible::Name), QLatin1String(name));
    }
}

} // namespace
} // namespace diary
