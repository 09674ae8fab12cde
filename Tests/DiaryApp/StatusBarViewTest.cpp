// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/Pictures.h"

#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/StatusBarView.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>

#include <gtest/gtest.h>

#include <optional>

namespace diary {
namespace {

using namespace std::chrono_literals;
using testing::pictureOf;
using testing::pixelsOf;

TEST(StatusBarLayout, putsThePathAtTheLeftAndTheStatusAtTheRight) {
    const auto layout = layoutStatusBar({{200, 13}, {150, 13}}, {1360, 27});
    EXPECT_EQ(layout.left, QRect(14, 7, 200, 13));
    EXPECT_EQ(layout.right, QRect(1360 - 14 - 150, 7, 150, 13));
    EXPECT_EQ(layout.rule, QRect(0, 0, 1360, 1));
}

TEST(StatusBarLayout, shortensThePathFirst) {
    const StatusBarMetrics metrics{{200, 13}, {150, 13}};
    EXPECT_EQ(layoutStatusBar(metrics, {394, 27}).left.width(), 200);
    EXPECT_EQ(layoutStatusBar(metrics, {393, 27}).left.width(), 199);
    EXPECT_EQ(layoutStatusBar(metrics, {393, 27}).right.width(), 150);
    for (int width = 0; width < 500; ++width) {
        const auto layout = layoutStatusBar(metrics, {width, 27});
        EXPECT_GE(layout.left.width(), 0) << width;
        EXPECT_TRUE(layout.left.isEmpty() || layout.left.right() + 1 + 16 <= layout.right.left()) << width;
        EXPECT_GE(layout.right.left(), 14) << width;
    }
}

class StatusBarViewTest : public ::testing::Test {
protected:
    StatusBarViewTest() {
        bar->resize(700, 27);
        bar->update({path, status});
        bar->show();
    }

    ElidedLabel &left() { return *bar->findChild<ElidedLabel *>(QStringLiteral("leftLabel")); }
    ElidedLabel &right() { return *bar->findChild<ElidedLabel *>(QStringLiteral("rightLabel")); }
    void expectFlash(const QString &expected) {
        EXPECT_EQ(left().text(), expected);
        EXPECT_EQ(left().font(), Theme::system(11));
        EXPECT_EQ(left().color(), Theme::accent());
    }
    void expectPath(const QString &expected) {
        EXPECT_EQ(left().text(), expected);
        EXPECT_EQ(left().font(), Theme::mono(10.5));
        EXPECT_EQ(left().color(), Theme::statusText());
    }

    const QString path = QStringLiteral("~/Documents/Diary/03-14.md");
    const QString otherPath = QStringLiteral("~/Documents/Diary/03-15.md");
    const QString status = QStringLiteral("Viewing ## 2026 · 312 chars");
    const QString message = QStringLiteral("Merged the changes that another device made");
    testing::FakeClock clock{{2026, 3, 14}};
    std::optional<StatusBarView> bar{std::in_place, clock};
};

TEST_F(StatusBarViewTest, showsPathAndStatus) {
    expectPath(path);
    EXPECT_EQ(right().text(), status);
    EXPECT_EQ(right().font(), Theme::mono(10.5));
    const auto layout = layoutStatusBar({left().sizeHint(), right().sizeHint()}, bar->size());
    EXPECT_EQ(left().geometry(), layout.left);
    EXPECT_EQ(right().geometry(), layout.right);
}

TEST_F(StatusBarViewTest, isPaintedInItsColours) {
    auto picture = pictureOf(*bar);
    EXPECT_TRUE(testing::isFilledWith(Theme::border(), picture, {0, 0, 700, 1}));
    EXPECT_TRUE(testing::isFilledWith(Theme::bar(), picture, {0, 1, 700, 4}));
    EXPECT_TRUE(testing::isFilledWith(Theme::bar(), picture, {0, 26, 700, 1}));
    EXPECT_GT(pixelsOf(Theme::statusText(), picture, left().geometry()), 0);
    EXPECT_GT(pixelsOf(Theme::statusText(), picture, right().geometry()), 0);
    bar->flash(message);
    picture = pictureOf(*bar);
    EXPECT_GT(pixelsOf(Theme::accent(), picture, left().geometry()), 0);
    EXPECT_EQ(pixelsOf(Theme::statusText(), picture, left().geometry()), 0);
    EXPECT_GT(pixelsOf(Theme::statusText(), picture, right().geometry()), 0);
}

TEST_F(StatusBarViewTest, flashesForFourSeconds) {
    bar->flash(message);
    expectFlash(message);
    clock.advance(3999ms);
    expectFlash(message);
    clock.advance(1ms);
    expectPath(path);
}

TEST_F(StatusBarViewTest, replacesAFlashByTheNextAndStartsTheTimeAnew) {
    bar->flash(message);
    clock.advance(3s);
    bar->flash(QStringLiteral("Another"));
    expectFlash(QStringLiteral("Another"));
    clock.advance(3999ms);
    expectFlash(QStringLiteral("Another"));
    clock.advance(1ms);
    expectPath(path);
}

TEST_F(StatusBarViewTest, remembersAPathThatComesDuringAFlash) {
    bar->flash(message);
    bar->update({otherPath, QStringLiteral("Viewing ## 2025 · 7 chars")});
    expectFlash(message);
    EXPECT_EQ(right().text(), QStringLiteral("Viewing ## 2025 · 7 chars"));
    clock.advance(4s);
    expectPath(otherPath);
}

TEST_F(StatusBarViewTest, flashesAgainAfterAFlash) {
    bar->flash(message);
    clock.advance(4s);
    bar->update({otherPath, status});
    expectPath(otherPath);
    bar->flash(message);
    expectFlash(message);
    clock.advance(4s);
    expectPath(otherPath);
}

TEST_F(StatusBarViewTest, mayGoDuringAFlash) {
    bar->flash(message);
    bar.reset();
    clock.advance(5s);
}

TEST_F(StatusBarViewTest, shortensThePathInTheMiddleAndAFlashAtItsEnd) {
    bar->resize(330, 27);
    EXPECT_TRUE(left().shownText().startsWith(QStringLiteral("~/")));
    EXPECT_TRUE(left().shownText().contains(QStringLiteral("…")));
    EXPECT_TRUE(left().shownText().endsWith(QStringLiteral(".md")));
    EXPECT_EQ(right().shownText(), status);
    bar->flash(message);
    EXPECT_TRUE(left().shownText().startsWith(QStringLiteral("Merged")));
    EXPECT_TRUE(left().shownText().endsWith(QStringLiteral("…")));
    EXPECT_EQ(right().shownText(), status);
    clock.advance(4s);
    EXPECT_TRUE(left().shownText().endsWith(QStringLiteral(".md")));
}

TEST_F(StatusBarViewTest, hasStaticTextsForAssistiveTechnologies) {
    const auto *accessible = QAccessible::queryAccessibleInterface(&left());
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), path);
    bar->flash(message);
    EXPECT_EQ(accessible->text(QAccessible::Name), message);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&right())->text(QAccessible::Name), status);
}

} // namespace
} // namespace diary
