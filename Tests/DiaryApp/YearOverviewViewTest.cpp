// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/Localization.h>
#include <DiaryApp/MonthHeatView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/YearOverviewView.h>

#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace diary {
namespace {

using testing::isFilledWith;
using testing::pictureOf;
using testing::pixelsOf;

class YearOverviewViewTest : public ::testing::Test {
protected:
    YearOverviewViewTest() {
        model.figures = YearOverviewView::Figures{
            .counts = {{{1, 1}, 1}, {{1, 31}, 5}, {{2, 29}, 2}, {{12, 31}, 0}}, .daysWithContent = 3};
        view.update(model);
        view.onPick = [this](MonthDay day) { picked.push_back(day); };
        view.resize(view.sizeHint());
        EXPECT_TRUE(testing::showActive(view));
    }

    QWidget *card(int month) { return view.findChild<QWidget *>(QStringLiteral("month%1").arg(month)); }
    MonthHeatView *heat(int month) { return card(month)->findChild<MonthHeatView *>(); }
    QLabel *part(int month, const char *name) {
        return card(month)->findChild<QLabel *>(QLatin1String(name));
    }
    QLabel *summary() { return view.findChild<QLabel *>(QStringLiteral("summary")); }
    QLabel *footnote() { return view.findChild<QLabel *>(QStringLiteral("footnote")); }
    QRect place(const QWidget *widget) { return {widget->mapTo(&view, QPoint(0, 0)), widget->size()}; }
    QRect square(int month, int day) {
        const auto cell = heat(month)->cells()[static_cast<std::size_t>(day - 1)];
        return cell.toAlignedRect().translated(heat(month)->mapTo(&view, QPoint(0, 0)));
    }
    // What has the keyboard.
    MonthDay focused() {
        for (int month = 1; month <= 12; ++month) {
            if (heat(month)->hasFocus())
                return {month, heat(month)->cursorDay()};
        }
        return {0, 0};
    }

    YearOverviewView::Model model;
    YearOverviewView view;
    std::vector<MonthDay> picked;
};

TEST_F(YearOverviewViewTest, namesTheMonthsAndCountsTheirDays) {
    EXPECT_EQ(part(1, "monthName")->text(), QStringLiteral("January"));
    EXPECT_EQ(part(12, "monthName")->text(), QStringLiteral("December"));
    EXPECT_EQ(part(1, "dayCount")->text(), QStringLiteral("2 d"));
    EXPECT_EQ(part(2, "dayCount")->text(), QStringLiteral("1 d"));
    EXPECT_EQ(summary()->text(), QStringLiteral("3 / 365"));
}

TEST_F(YearOverviewViewTest, countsNoDaysInAMonthWithoutContent) {
    EXPECT_EQ(part(3, "dayCount")->text(), QStringLiteral("0 d"));
    // A day that is known to have no year.
    EXPECT_EQ(part(12, "dayCount")->text(), QStringLiteral("0 d"));
}

TEST_F(YearOverviewViewTest, showsAnEmptyArchiveInTheLightestShade) {
    model.figures = YearOverviewView::Figures{};
    view.update(model);
    EXPECT_EQ(summary()->text(), QStringLiteral("0 / 365"));
    const auto picture = pictureOf(view, 1);
    for (int month = 1; month <= 12; ++month) {
        for (int day = 1; day <= heat(month)->dayCount(); ++day)
            EXPECT_TRUE(
                isFilledWith(Theme::heatShades()[0], picture, square(month, day).adjusted(3, 3, -3, -3)));
    }
}

TEST_F(YearOverviewViewTest, shadesADayByTheNumberOfItsYears) {
    const auto picture = pictureOf(view);
    const auto &shades = Theme::heatShades();
    EXPECT_TRUE(isFilledWith(shades[1], picture, square(1, 1).adjusted(3, 3, -3, -3)));
    EXPECT_TRUE(isFilledWith(shades[3], picture, square(1, 31).adjusted(3, 3, -3, -3)));
    EXPECT_TRUE(isFilledWith(shades[2], picture, square(2, 29).adjusted(3, 3, -3, -3)));
}

TEST_F(YearOverviewViewTest, leavesTheFiguresOutWhileTheyAreBeingRead) {
    view.update(YearOverviewView::Model());
    EXPECT_EQ(summary()->text(), QStringLiteral("…"));
    EXPECT_EQ(part(1, "dayCount")->text(), QStringLiteral("…"));
    EXPECT_EQ(part(1, "monthName")->text(), QStringLiteral("January"));
    EXPECT_EQ(heat(1)->cellName(1), QStringLiteral("January 1"));
    view.update(model);
    EXPECT_EQ(summary()->text(), QStringLiteral("3 / 365"));
    EXPECT_EQ(heat(1)->cellName(1), QStringLiteral("January 1, Years written: 1"));
}

TEST_F(YearOverviewViewTest, placesTheMonthsInThreeColumns) {
    for (int month = 1; month <= 12; ++month) {
        const int column = (month - 1) % 3;
        EXPECT_EQ(place(card(month)).left(), 24 + column * (184 + 20) + 0) << month;
        EXPECT_EQ(card(month)->width(), 184);
        EXPECT_EQ(heat(month)->width(), 184);
        EXPECT_EQ(heat(month)->height(), 86);
        EXPECT_EQ(heat(month)->y(), part(month, "monthName")->geometry().bottom() + 1 + 8);
        EXPECT_EQ(place(heat(month)).bottom(), place(card(month)).bottom());
        EXPECT_EQ(part(month, "dayCount")->geometry().right() + 1, 184);
    }
    EXPECT_EQ(place(card(1)).top(), 24);
    EXPECT_EQ(place(card(4)).top(), place(card(1)).bottom() + 1 + 24);
    EXPECT_EQ(place(card(10)).top(), place(card(7)).bottom() + 1 + 24);
}

TEST_F(YearOverviewViewTest, writesNameAndCountOnOneBaseline) {
    const auto *name = part(5, "monthName");
    const auto *count = part(5, "dayCount");
    EXPECT_EQ(name->y() + name->fontMetrics().ascent(), count->y() + count->fontMetrics().ascent());
    EXPECT_EQ(name->pos(), QPoint(0, 0));
}

TEST_F(YearOverviewViewTest, isAsHighAsItsContent) {
    const auto legend = place(summary()->parentWidget());
    EXPECT_EQ(legend.top(), place(card(10)).bottom() + 1 + 24);
    EXPECT_EQ(legend.left(), 24);
    EXPECT_EQ(place(summary()).right() + 1, 640 - 24);
    const auto note = place(footnote());
    EXPECT_EQ(note.topLeft(), QPoint(24, legend.bottom() + 1 + 12));
    EXPECT_EQ(note.width(), 580);
    EXPECT_EQ(view.sizeHint(), QSize(640, note.bottom() + 1 + 24));
    // Whatever the height, the text is whole.
    EXPECT_GE(note.height(), footnote()->heightForWidth(580));
    EXPECT_GT(note.height(), footnote()->fontMetrics().height() * 3 / 2);
}

TEST_F(YearOverviewViewTest, explainsTheShades) {
    const auto legend = place(summary()->parentWidget());
    const auto picture = pictureOf(view);
    for (const auto &shade : Theme::heatShades())
        EXPECT_GT(pixelsOf(shade, picture, legend), 9 * 9 * 16);
    QStringList texts;
    for (const auto *label : summary()->parentWidget()->findChildren<QLabel *>())
        texts.append(label->text());
    EXPECT_EQ(texts.join(QLatin1Char('|')), QStringLiteral("Years written|0|1|2|3+|3 / 365"));
    EXPECT_TRUE(isFilledWith(Theme::paper(), picture, {0, 0, 640, 24}));
}

TEST_F(YearOverviewViewTest, tellsTheDayThatWasPressed) {
    QTest::mouseClick(heat(2), Qt::LeftButton, {}, heat(2)->cells()[28].center().toPoint());
    EXPECT_EQ(picked, std::vector{(MonthDay{2, 29})});
}

TEST_F(YearOverviewViewTest, isWalkedThroughTheMonthsByTheArrowKeys) {
    struct Row {
        MonthDay from;
        Qt::Key key;
        MonthDay to;
    };
    const Row rows[] = {
        {{1, 31}, Qt::Key_Right, {2, 1}},    {{2, 1}, Qt::Key_Left, {1, 31}},
        {{3, 1}, Qt::Key_Left, {2, 29}},     {{3, 31}, Qt::Key_Right, {4, 1}},
        {{1, 31}, Qt::Key_Down, {4, 3}},     {{1, 25}, Qt::Key_Down, {4, 4}},
        {{4, 1}, Qt::Key_Up, {1, 29}},       {{4, 3}, Qt::Key_Up, {1, 31}},
        {{4, 7}, Qt::Key_Up, {1, 28}},       {{5, 2}, Qt::Key_Up, {2, 23}},
        {{1, 3}, Qt::Key_Up, {1, 3}},        {{1, 1}, Qt::Key_Left, {1, 1}},
        {{12, 31}, Qt::Key_Right, {12, 31}}, {{11, 30}, Qt::Key_Down, {11, 30}},
        {{6, 15}, Qt::Key_Right, {6, 16}},
    };
    for (const auto &row : rows) {
        view.focusDay(row.from);
        ASSERT_EQ(focused(), row.from);
        QTest::keyClick(view.focusWidget(), row.key);
        EXPECT_EQ(focused(), row.to) << row.from.headerTitle();
    }
}

TEST_F(YearOverviewViewTest, isWalkedMonthByMonthByTab) {
    view.focusDay({11, 5});
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(focused(), (MonthDay{12, 1}));
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(focused(), (MonthDay{1, 1}));
}

TEST_F(YearOverviewViewTest, mirrorsWhereReadingRunsFromRightToLeft) {
    view.setLayoutDirection(Qt::RightToLeft);
    ASSERT_TRUE(QTest::qWaitFor([&] { return place(card(1)).left() == 24 + 2 * 204; }));
    EXPECT_EQ(part(1, "dayCount")->x(), 0);
    EXPECT_EQ(place(footnote()).right() + 1, 640 - 24);
    view.focusDay({1, 31});
    QTest::keyClick(view.focusWidget(), Qt::Key_Left);
    EXPECT_EQ(focused(), (MonthDay{2, 1}));
    QTest::keyClick(view.focusWidget(), Qt::Key_Right);
    EXPECT_EQ(focused(), (MonthDay{1, 31}));
}

class YearOverviewLanguages : public ::testing::Test {
protected:
    void TearDown() override { Localization::setBundle(Localization::resolveBundle()); }
};

TEST_F(YearOverviewLanguages, showEveryTextWhole) {
    for (const auto &code : Localization::supported()) {
        Localization::setBundle(Localization::resolveBundle(Localization::resourceBundle(), {code}));
        YearOverviewView::Figures figures;
        for (std::int64_t month = 1; month <= 12; ++month) {
            for (std::int64_t day = 1; day <= 28; ++day)
                figures.counts[{month, day}] = 20;
        }
        figures.daysWithContent = 366;
        YearOverviewView view;
        view.update({.figures = figures, .names = Formatters::Context(code, QLocale(code))});
        view.resize(view.sizeHint());
        view.show();
        QCoreApplication::processEvents();
        EXPECT_EQ(view.width(), 640);
        for (const auto *label : view.findChildren<QLabel *>()) {
            const int needed = label->wordWrap() ? 0 : label->fontMetrics().horizontalAdvance(label->text());
            EXPECT_GE(label->width(), needed) << code.toStdString() << ' ' << label->text().toStdString();
            EXPECT_GE(label->height(), label->wordWrap() ? label->heightForWidth(label->width()) : 0);
        }
    }
}

} // namespace
} // namespace diary
