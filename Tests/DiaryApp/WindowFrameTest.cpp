// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/WindowFrame.h>

#include <QWidget>

#include <gtest/gtest.h>

namespace diary {
namespace {

class WindowFrameTest : public ::testing::Test {
protected:
    void SetUp() override { window.setObjectName(QStringLiteral("window")); }

    testing::TemporaryFolder folder;
    testing::ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
    QWidget window;
};

TEST_F(WindowFrameTest, comesBackUnderTheWindowsName) {
    window.setGeometry(40, 30, 500, 400);
    WindowFrame::remember(window);
    QWidget again;
    again.setObjectName(QStringLiteral("window"));
    EXPECT_TRUE(WindowFrame::restore(again));
    EXPECT_EQ(again.geometry(), QRect(40, 30, 500, 400));

    QWidget other;
    other.setObjectName(QStringLiteral("other"));
    other.setGeometry(1, 2, 300, 200);
    EXPECT_FALSE(WindowFrame::restore(other));
    EXPECT_EQ(other.geometry(), QRect(1, 2, 300, 200));
}

TEST_F(WindowFrameTest, comesBackOntoTheScreen) {
    window.setGeometry(100000, 100000, 500, 400);
    WindowFrame::remember(window);
    EXPECT_TRUE(WindowFrame::restore(window));
    EXPECT_LT(window.x(), 10000);
    EXPECT_LT(window.y(), 10000);
}

TEST_F(WindowFrameTest, isNoNewsWhenItCannotBeWrittenOrRead) {
    folder.write("state", "in the way");
    WindowFrame::remember(window);
    EXPECT_FALSE(WindowFrame::restore(window));
}

TEST_F(WindowFrameTest, ignoresWhatIsNoFrame) {
    folder.write("state/tavelo/state.json", R"({"window": "bm90IGEgZnJhbWU="})");
    window.setGeometry(1, 2, 300, 200);
    EXPECT_FALSE(WindowFrame::restore(window));
    EXPECT_EQ(window.geometry(), QRect(1, 2, 300, 200));
}

} // namespace
} // namespace diary
