// SPDX-License-Identifier: MIT
#include "Support/ManualExecutor.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/Localization.h>
#include <DiaryApp/MonthHeatView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/YearOverviewController.h>
#include <DiaryKit/DiaryStore.h>

#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace diary {
namespace {

class YearOverviewControllerTest : public ::testing::Test {
protected:
    YearOverviewControllerTest() {
        vault.write("02-29.md", "# 02-29\n\n## 2024\n\nA day that is rare.\n\n## 2020\n\nAnother one.\n");
        vault.write("03-14.md", "# 03-14\n\n## 2025\n\nPi.\n");
        mainWindow.setGeometry(100, 100, 400, 300);
        mainWindow.show();
        controller->onPick = [this](MonthDay day) {
            picked.push_back(day);
            wasVisibleAtPick = window()->isVisible();
        };
    }

    std::unique_ptr<DiaryStore> makeStore() {
        DiaryStore::Options options;
        options.executor = &executor;
        return std::make_unique<DiaryStore>(vault.path(), options);
    }
    void present(MonthDay startingAt = {1, 1}) {
        controller->present(*store, Formatters::Context(), startingAt);
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    }
    void finishReading() {
        executor.runBackground();
        executor.runMain();
    }
    QWidget *window() { return controller->window(); }
    MonthHeatView *heat(int month) {
        return window()
            ->findChild<QWidget *>(QStringLiteral("month%1").arg(month))
            ->findChild<MonthHeatView *>();
    }
    QString summary() { return window()->findChild<QLabel *>(QStringLiteral("summary"))->text(); }

    testing::TemporaryFolder vault;
    testing::ManualExecutor executor;
    std::unique_ptr<DiaryStore> store = makeStore();
    QWidget mainWindow;
    std::unique_ptr<YearOverviewController> controller =
        std::make_unique<YearOverviewController>(&mainWindow);
    std::vector<MonthDay> picked;
    bool wasVisibleAtPick = false;
};

TEST_F(YearOverviewControllerTest, showsAWindowOfItsOwnThatBlocksNothing) {
    EXPECT_FALSE(window()->isVisible());
    present();
    EXPECT_TRUE(window()->isWindow());
    EXPECT_FALSE(window()->isModal());
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("Year Calendar"));
    EXPECT_TRUE(window()->isActiveWindow());
    EXPECT_EQ(window()->windowHandle()->transientParent(), mainWindow.windowHandle());
}

TEST_F(YearOverviewControllerTest, hasATitleAndACloseButtonAndTheSizeOfItsContent) {
    present();
    const auto flags = window()->windowFlags();
    EXPECT_TRUE(flags & Qt::WindowTitleHint);
    EXPECT_TRUE(flags & Qt::WindowCloseButtonHint);
    EXPECT_FALSE(flags & Qt::WindowMinimizeButtonHint);
    EXPECT_FALSE(flags & Qt::WindowMaximizeButtonHint);
    EXPECT_EQ(window()->width(), 640);
    EXPECT_EQ(window()->height(),
              window()->findChild<QWidget *>(QStringLiteral("yearOverview"))->sizeHint().height());
    EXPECT_EQ(window()->minimumSize(), window()->size());
    EXPECT_EQ(window()->maximumSize(), window()->size());
}

TEST_F(YearOverviewControllerTest, standsInTheMiddleOfTheScreen) {
    present();
    const auto area = mainWindow.screen()->availableGeometry();
    const auto rest = area.size() - window()->size();
    EXPECT_EQ(window()->pos(), area.topLeft() + QPoint(rest.width() / 2, std::max(0, rest.height() / 2)));
}

TEST_F(YearOverviewControllerTest, showsTheFiguresAsSoonAsTheyAreRead) {
    present();
    EXPECT_EQ(summary(), QStringLiteral("…"));
    EXPECT_EQ(heat(2)->cellName(29), QStringLiteral("February 29"));
    finishReading();
    EXPECT_EQ(summary(), QStringLiteral("2 / 365"));
    EXPECT_EQ(heat(2)->cellName(29), QStringLiteral("February 29, Years written: 2"));
    EXPECT_EQ(heat(3)->cellName(14), QStringLiteral("March 14, Years written: 1"));
}

TEST_F(YearOverviewControllerTest, readsTheFiguresAnewEachTime) {
    present();
    finishReading();
    window()->close();
    vault.write("12-31.md", "# 12-31\n\n## 2025\n\nThe last.\n");
    present();
    EXPECT_EQ(summary(), QStringLiteral("…"));
    finishReading();
    EXPECT_EQ(summary(), QStringLiteral("3 / 365"));
}

TEST_F(YearOverviewControllerTest, speaksTheLanguageInUseEachTime) {
    present();
    const auto footnote = [this] {
        return window()->findChild<QLabel *>(QStringLiteral("footnote"))->text();
    };
    const auto english = footnote();
    Localization::setBundle(
        Localization::resolveBundle(Localization::resourceBundle(), {QStringLiteral("de")}));
    present();
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("Jahreskalender"));
    EXPECT_NE(footnote(), english);
    Localization::setBundle(Localization::resolveBundle());
}

TEST_F(YearOverviewControllerTest, dropsTheFiguresOfAnEarlierPresentation) {
    present();
    executor.runBackground();
    const testing::TemporaryFolder otherVault;
    DiaryStore::Options options;
    options.executor = &executor;
    DiaryStore other(otherVault.path(), options);
    controller->present(other, Formatters::Context());
    executor.runMain();
    EXPECT_EQ(summary(), QStringLiteral("…"));
    finishReading();
    EXPECT_EQ(summary(), QStringLiteral("0 / 365"));
}

TEST_F(YearOverviewControllerTest, mayGoBeforeTheFiguresAreRead) {
    present();
    controller.reset();
    finishReading();
    EXPECT_TRUE(mainWindow.isVisible());
}

TEST_F(YearOverviewControllerTest, outlivesTheStore) {
    present();
    executor.runBackground();
    store.reset();
    executor.runMain();
    EXPECT_EQ(summary(), QStringLiteral("…"));
}

TEST_F(YearOverviewControllerTest, tellsThePickedDayAndCloses) {
    present();
    finishReading();
    QTest::mouseClick(heat(2), Qt::LeftButton, {}, heat(2)->cells()[28].center().toPoint());
    EXPECT_EQ(picked, std::vector{(MonthDay{2, 29})});
    EXPECT_TRUE(wasVisibleAtPick);
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(YearOverviewControllerTest, isReadyAgainAfterItWasClosed) {
    auto *const first = window();
    for (const auto &[key, modifiers] : {std::pair{Qt::Key_Escape, Qt::KeyboardModifiers()},
                                         {Qt::Key_W, Qt::KeyboardModifiers(Qt::ControlModifier)}}) {
        present();
        QTest::keyClick(window(), key, modifiers);
        EXPECT_FALSE(window()->isVisible());
    }
    present();
    EXPECT_EQ(window(), first);
    EXPECT_TRUE(window()->isVisible());
    EXPECT_TRUE(picked.empty());
    EXPECT_TRUE(mainWindow.isVisible());
}

TEST_F(YearOverviewControllerTest, startsTheKeyboardOnTheGivenDay) {
    present({3, 14});
    ASSERT_TRUE(heat(3)->hasFocus());
    EXPECT_EQ(heat(3)->cursorDay(), 14);
    QTest::keyClick(window()->focusWidget(), Qt::Key_Right);
    QTest::keyClick(window()->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(picked, std::vector{(MonthDay{3, 15})});
    present({2, 29});
    EXPECT_TRUE(heat(2)->hasFocus());
}

TEST_F(YearOverviewControllerTest, mayGoWhenADayIsPicked) {
    present();
    controller->onPick = [this](MonthDay) { controller.reset(); };
    QTest::keyClick(window()->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(controller, nullptr);
}

} // namespace
} // namespace diary
