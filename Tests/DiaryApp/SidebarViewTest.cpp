// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/DayGridView.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/SidebarView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TodayButton.h>

#include <QAccessible>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace diary {
namespace {

using testing::isFilledWith;
using testing::pictureOf;
using testing::pixelsOf;

TEST(SidebarLayout, stacksItsPartsAtTheirDistances) {
    const SidebarMetrics metrics{.previousMonth = {20, 24},
                                 .monthButton = {80, 22},
                                 .nextMonth = {20, 24},
                                 .gridHeight = 217,
                                 .todayHeight = 34,
                                 .statLabels = {QSize(70, 16), QSize(80, 16), QSize(60, 18)},
                                 .statValues = {QSize(66, 14), QSize(40, 14), QSize(30, 14)},
                                 .icon = {34, 26}};
    for (const int height : {547, 800, 1400}) {
        const auto layout = layoutSidebar(metrics, {236, height});
        EXPECT_EQ(layout.previousMonth, QRect(18, 22, 20, 24));
        EXPECT_EQ(layout.monthButton, QRect(78, 23, 80, 22));
        EXPECT_EQ(layout.nextMonth, QRect(198, 22, 20, 24));
        EXPECT_EQ(layout.grid, QRect(18, 64, 200, 217));
        EXPECT_EQ(layout.today, QRect(18, 303, 200, 34));
        EXPECT_EQ(layout.upperDivider, QRect(18, 357, 200, 1));
        EXPECT_EQ(layout.statLabels[0], QRect(18, 376, 70, 16));
        EXPECT_EQ(layout.statValues[0], QRect(152, 377, 66, 14));
        EXPECT_EQ(layout.statLabels[1].top(), 376 + 16 + 9);
        EXPECT_EQ(layout.statLabels[2].top(), 376 + 2 * (16 + 9));
        EXPECT_EQ(layout.statValues[2].top() - layout.statLabels[2].top(), 2);
        EXPECT_EQ(layout.icons[0], QRect(18, height - 12 - 26, 34, 26));
        EXPECT_EQ(layout.icons[1], QRect(101, height - 12 - 26, 34, 26));
        EXPECT_EQ(layout.icons[2], QRect(184, height - 12 - 26, 34, 26));
        EXPECT_EQ(layout.lowerDivider, QRect(18, height - 12 - 26 - 10 - 1, 200, 1));
        EXPECT_EQ(layout.edge, QRect(235, 0, 1, height));
    }
}

TEST(SidebarLayout, letsLabelsAndTheMonthGiveWay) {
    const SidebarMetrics metrics{.previousMonth = {20, 24},
                                 .monthButton = {300, 22},
                                 .nextMonth = {20, 24},
                                 .gridHeight = 217,
                                 .todayHeight = 34,
                                 .statLabels = {QSize(150, 16), QSize(150, 16), QSize(150, 16)},
                                 .statValues = {QSize(42, 14), QSize(43, 14), QSize(300, 14)},
                                 .icon = {34, 26}};
    const auto layout = layoutSidebar(metrics, {236, 600});
    EXPECT_EQ(layout.monthButton, QRect(38, 23, 160, 22));
    EXPECT_EQ(layout.statLabels[0].width(), 150);
    EXPECT_EQ(layout.statLabels[1].width(), 149);
    EXPECT_EQ(layout.statLabels[2].width(), 0);
    EXPECT_EQ(layout.statValues[2].width(), 300);
}

TEST(SidebarLayout, keepsItsPartsApartWhenThereIsTooLittleHeight) {
    const SidebarMetrics metrics{.previousMonth = {20, 24},
                                 .monthButton = {80, 22},
                                 .nextMonth = {20, 24},
                                 .gridHeight = 217,
                                 .todayHeight = 34,
                                 .statLabels = {QSize(70, 16), QSize(80, 16), QSize(60, 16)},
                                 .statValues = {QSize(66, 14), QSize(40, 14), QSize(30, 14)},
                                 .icon = {34, 26}};
    const auto layout = layoutSidebar(metrics, {236, 100});
    EXPECT_GT(layout.lowerDivider.top(), layout.statLabels[2].bottom());
    EXPECT_EQ(layout.icons[0].bottom() + 1 + 12, layout.minimumHeight);
    EXPECT_EQ(layoutSidebar(metrics, {236, layout.minimumHeight}).icons, layout.icons);
}

class SidebarViewTest : public ::testing::Test {
protected:
    SidebarViewTest() {
        model.monthTitle = QStringLiteral("March");
        model.month = 3;
        model.year = 2026;
        model.selectedDay = 14;
        model.daysWithContent = {14};
        model.overview = DiaryStore::Overview{.daysWithContent = 217, .earliestYear = 2009, .fileCount = 243};
        model.todayText = QStringLiteral("07-01");
        model.week = Formatters::week(QLocale(QLocale::English, QLocale::UnitedStates));
        // As high as in the smallest main window.
        view->setFixedSize(236, 547);
        view->update(model);
        EXPECT_TRUE(testing::showActive(*view));
    }

    template <typename Widget = QWidget>
    Widget *find(const char *name) {
        return view->findChild<Widget *>(QLatin1String(name));
    }
    // Where a part stands in the sidebar.
    QRect place(const QWidget *part) { return {part->mapTo(view.get(), QPoint(0, 0)), part->size()}; }
    QRect place(const char *name) { return place(find(name)); }
    QString valueOf(const char *name) { return find<QLabel>(name)->text(); }
    ElidedLabel *labelWith(const QString &text) {
        const auto labels = view->findChildren<ElidedLabel *>();
        const auto found = std::find_if(labels.begin(), labels.end(),
                                        [&](const auto *label) { return label->text() == text; });
        return found == labels.end() ? nullptr : *found;
    }
    void click(const char *name) { QTest::mouseClick(find(name), Qt::LeftButton); }

    SidebarView::Model model;
    std::unique_ptr<SidebarView> view = std::make_unique<SidebarView>();
};

TEST_F(SidebarViewTest, showsTheMonthTodayAndTheFigures) {
    EXPECT_EQ(find<ElidedLabel>("monthLabel")->shownText(), QStringLiteral("March"));
    EXPECT_EQ(view->gridView()->model().month, 3);
    EXPECT_EQ(view->gridView()->model().year, 2026);
    EXPECT_EQ(view->gridView()->model().selectedDay, 14);
    EXPECT_EQ(view->gridView()->model().daysWithContent, model.daysWithContent);
    EXPECT_EQ(view->gridView()->model().week, model.week);
    EXPECT_EQ(find<ElidedLabel>("titleLabel")->shownText(), QStringLiteral("Back to Today"));
    EXPECT_EQ(find<ElidedLabel>("dateLabel")->shownText(), QStringLiteral("07-01"));
    EXPECT_EQ(valueOf("statDaysValue"), QStringLiteral("217 / 365"));
    EXPECT_EQ(valueOf("statEarliestValue"), QStringLiteral("2009"));
    EXPECT_EQ(valueOf("statFilesValue"), QStringLiteral("243"));
}

TEST_F(SidebarViewTest, showsAnArchiveWithoutFiles) {
    model.overview = DiaryStore::Overview{};
    view->update(model);
    EXPECT_EQ(valueOf("statDaysValue"), QStringLiteral("0 / 365"));
    EXPECT_EQ(valueOf("statEarliestValue"), QStringLiteral("—"));
    EXPECT_EQ(valueOf("statFilesValue"), QStringLiteral("0"));
}

TEST_F(SidebarViewTest, showsNoFiguresWhileTheyAreBeingRead) {
    model.overview.reset();
    view->update(model);
    for (const char *name : {"statDaysValue", "statEarliestValue", "statFilesValue"})
        EXPECT_EQ(valueOf(name), QStringLiteral("…")) << name;
}

TEST_F(SidebarViewTest, showsAnotherMonthWhole) {
    model.monthTitle = QStringLiteral("August");
    model.month = 8;
    model.selectedDay = 1;
    model.daysWithContent = {};
    view->update(model);
    EXPECT_EQ(find<ElidedLabel>("monthLabel")->text(), QStringLiteral("August"));
    EXPECT_EQ(find("monthButton")->accessibleName(), QStringLiteral("August"));
    EXPECT_EQ(view->gridView()->cells().front(), QRectF(174, 22, 26, 30));
}

TEST_F(SidebarViewTest, placesItsPartsAtTheirDistances) {
    EXPECT_EQ(place("previousMonth").left(), 18);
    EXPECT_EQ(place("nextMonth").right() + 1, 236 - 18);
    const auto header = place("previousMonth").united(place("monthButton"));
    EXPECT_EQ(header.top(), 22);
    EXPECT_NEAR(place("monthButton").center().x(), 236 / 2.0, 1);
    EXPECT_EQ(place("monthButton").size() - place("monthLabel").size(), QSize(12, 4));

    const auto grid = place("gridView");
    EXPECT_EQ(grid, QRect(18, header.bottom() + 1 + 18, 200, 217));
    const auto today = place("todayButton");
    EXPECT_EQ(today.topLeft(), QPoint(18, grid.bottom() + 1 + 22));
    EXPECT_EQ(today.width(), 200);
    const auto days = place(labelWith(QStringLiteral("Days written")));
    EXPECT_EQ(days.topLeft(), QPoint(18, today.bottom() + 1 + 20 + 1 + 18));
    EXPECT_EQ(place("statDaysValue").right() + 1, 236 - 18);

    const auto icons = place("searchButton");
    EXPECT_EQ(icons.bottom() + 1, 547 - 12);
    EXPECT_EQ(icons.left(), 18);
    EXPECT_NEAR(place("yearOverviewButton").center().x(), 118, 1);
    EXPECT_EQ(place("settingsButton").right() + 1, 236 - 18);
    EXPECT_GE(icons.top() - 10 - place("statFilesValue").bottom(), 10);
}

TEST_F(SidebarViewTest, drawsItsLines) {
    const auto picture = pictureOf(*view);
    EXPECT_TRUE(isFilledWith(Theme::panel(), picture, {0, 0, 235, 20}));
    EXPECT_TRUE(isFilledWith(Theme::border(), picture, {235, 0, 1, 547}));
    for (const int y : {place("todayButton").bottom() + 1 + 20, place("searchButton").top() - 10 - 1}) {
        EXPECT_TRUE(isFilledWith(Theme::border(), picture, {18, y, 200, 1}));
        EXPECT_TRUE(isFilledWith(Theme::panel(), picture, {18, y - 1, 200, 1}));
        EXPECT_TRUE(isFilledWith(Theme::panel(), picture, {18, y + 1, 200, 1}));
        EXPECT_TRUE(isFilledWith(Theme::panel(), picture, {0, y, 18, 1}));
    }
}

TEST_F(SidebarViewTest, writesInItsColours) {
    const auto picture = pictureOf(*view);
    EXPECT_GT(pixelsOf(Theme::inkTitle(), picture, place("monthLabel")), 0);
    EXPECT_GT(pixelsOf(Theme::chevron(), picture, place("previousMonth")), 0);
    EXPECT_GT(pixelsOf(Theme::statLabel(), picture, place(labelWith(QStringLiteral("Earliest year")))), 0);
    EXPECT_GT(pixelsOf(Theme::inkMed(), picture, place("statEarliestValue")), 0);
}

TEST_F(SidebarViewTest, tellsWhatWasClicked) {
    std::vector<std::string> intents;
    const auto record = [&](const char *intent) {
        return [&intents, intent] { intents.emplace_back(intent); };
    };
    for (const char *name : {"previousMonth", "monthButton", "settingsButton"})
        click(name);
    view->onPreviousMonth = record("previous");
    view->onNextMonth = record("next");
    view->onShowYearOverview = record("overview");
    view->onShowSearch = record("search");
    view->onShowSettings = record("settings");
    for (const char *name : {"previousMonth", "nextMonth", "monthButton", "searchButton",
                             "yearOverviewButton", "settingsButton"})
        click(name);
    EXPECT_EQ(intents,
              (std::vector<std::string>{"previous", "next", "overview", "search", "overview", "settings"}));
}

TEST_F(SidebarViewTest, stepsMonthsByThePageKeysOfTheCalendar) {
    std::string steps;
    view->onPreviousMonth = [&] { steps += '-'; };
    view->onNextMonth = [&] { steps += '+'; };
    QTest::keyClick(view->gridView(), Qt::Key_PageUp);
    QTest::keyClick(view->gridView(), Qt::Key_PageDown);
    EXPECT_EQ(steps, "-+");
}

TEST_F(SidebarViewTest, mayGoWhenClicked) {
    view->onShowSettings = [this] { view.reset(); };
    click("settingsButton");
    EXPECT_EQ(view, nullptr);
}

TEST_F(SidebarViewTest, isWalkedFromTopToBottomByTab) {
    QStringList names;
    for (int step = 0; step < 8; ++step) {
        QTest::keyClick(view.get(), Qt::Key_Tab);
        names.append(view->focusWidget() ? view->focusWidget()->objectName() : QString());
    }
    EXPECT_EQ(names.join(QLatin1Char(' ')),
              QStringLiteral("previousMonth monthButton nextMonth gridView todayButton searchButton "
                             "yearOverviewButton settingsButton"));
}

TEST_F(SidebarViewTest, namesItsButtons) {
    const std::pair<const char *, const char *> rows[] = {
        {"previousMonth", "Previous Month"},
        {"nextMonth", "Next Month"},
        {"monthButton", "March"},
        {"todayButton", "Back to Today"},
        {"searchButton", "Find"},
        {"yearOverviewButton", "Year Calendar"},
        {"settingsButton", "Settings"},
    };
    for (const auto &[name, expected] : rows) {
        const auto *accessible = QAccessible::queryAccessibleInterface(find(name));
        EXPECT_EQ(accessible->role(), QAccessible::Button) << name;
        EXPECT_EQ(accessible->text(QAccessible::Name), QLatin1String(expected));
    }
    for (const char *name :
         {"previousMonth", "nextMonth", "searchButton", "yearOverviewButton", "settingsButton"})
        EXPECT_EQ(find(name)->toolTip(), find(name)->accessibleName());
}

TEST_F(SidebarViewTest, keepsEveryValueWholeAndShortensTheLabel) {
    model.overview =
        DiaryStore::Overview{.daysWithContent = 366, .earliestYear = -123456789012345678, .fileCount = 366};
    view->update(model);
    const auto *label = labelWith(QStringLiteral("Earliest year"));
    EXPECT_NE(label->shownText(), label->text());
    const auto *value = find<QLabel>("statEarliestValue");
    EXPECT_GE(value->width(), value->fontMetrics().horizontalAdvance(value->text()));
    EXPECT_EQ(place(value).right() + 1, 236 - 18);
    EXPECT_EQ(view->width(), 236);
}

TEST_F(SidebarViewTest, mirrorsWhereReadingRunsFromRightToLeft) {
    view->setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(place("previousMonth").right() + 1, 236 - 18);
    EXPECT_EQ(place("nextMonth").left(), 18);
    EXPECT_EQ(place(labelWith(QStringLiteral("Total files"))).right() + 1, 236 - 18);
    EXPECT_EQ(place("statFilesValue").left(), 18);
    EXPECT_EQ(view->gridView()->cells().front(), QRectF(174, 22, 26, 30));
    const auto picture = pictureOf(*view);
    EXPECT_TRUE(isFilledWith(Theme::border(), picture, {0, 0, 1, 547}));
    EXPECT_TRUE(isFilledWith(Theme::panel(), picture, {1, 0, 235, 20}));
}

// Every language in turn, in a sidebar of its own.
class SidebarLanguages : public ::testing::Test {
protected:
    void TearDown() override { Localization::setBundle(Localization::resolveBundle()); }
};

TEST_F(SidebarLanguages, showEveryTextWhole) {
    for (const auto &code : Localization::supported()) {
        Localization::setBundle(Localization::resolveBundle(Localization::resourceBundle(), {code}));
        const Formatters::Context names(code, QLocale(code));
        SidebarView view;
        view.setFixedSize(236, 547);
        for (std::int64_t month = 1; month <= 12; ++month) {
            SidebarView::Model model;
            model.month = month;
            model.monthTitle = names.monthName(month);
            model.overview = DiaryStore::Overview{366, 1899, 366};
            model.todayText = QStringLiteral("12-30");
            model.names = names;
            view.update(model);
            const auto labels = view.findChildren<ElidedLabel *>();
            EXPECT_EQ(labels.size(), 9);
            for (const auto *label : labels)
                EXPECT_EQ(label->shownText(), label->text()) << code.toStdString();
            for (const auto *label : view.findChildren<QLabel *>())
                EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
        }
    }
}

} // namespace
} // namespace diary
