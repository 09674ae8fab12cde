// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/AddYearCardView.h>
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/YearRailView.h>

#include <QAccessible>
#include <QFontMetricsF>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

TEST(YearRailLayout, standsAsMeasured) {
    const auto layout = layoutYearRail({{90, 13}, {150, 30}}, {272, 700});
    EXPECT_EQ(layout.leadingRule, QRect(0, 0, 1, 700));
    EXPECT_EQ(layout.title, QRect(20, 26, 90, 13));
    EXPECT_EQ(layout.foot, QRect(20, 700 - 20 - 30, 150, 30));
    EXPECT_EQ(layout.footRule, QRect(1, 650 - 14 - 1, 271, 1));
    EXPECT_EQ(layout.scrollView, QRect(1, 39 + 14, 271, 635 - 53));
}

TEST(YearRailLayout, keepsTheTextsInsideANarrowRail) {
    const auto layout = layoutYearRail({{900, 13}, {900, 30}}, {272, 60});
    EXPECT_EQ(layout.title.width(), 232);
    EXPECT_EQ(layout.foot.width(), 232);
    EXPECT_EQ(layout.scrollView.height(), 0);
}

TEST(CardsStackLayout, putsTheCardsBelowOneAnother) {
    const auto layout = layoutCardsStack({100, 120, 46}, 271);
    EXPECT_EQ(layout.cards, (std::vector<QRect>{{8, 0, 255, 100}, {8, 108, 255, 120}, {8, 236, 255, 46}}));
    EXPECT_EQ(layout.height, 236 + 46 + 8);
    EXPECT_TRUE(layoutCardsStack({}, 271).cards.empty());
}

class YearRailViewTest : public ::testing::Test {
protected:
    YearRailViewTest() {
        rail.resize(272, 600);
        window.resize(400, 600);
        EXPECT_TRUE(testing::showActive(window));
    }

    YearRailView::Card card(std::int64_t year, const QString &snippet = QStringLiteral("A walk")) {
        YearRailView::Card card;
        card.year = year;
        card.yearColor = Theme::railYear();
        card.meta = QStringLiteral("6 chars");
        card.snippet = snippet;
        card.snippetColor = Theme::railSnippet();
        card.ago = QStringLiteral("some years ago");
        card.background = Theme::cardBg();
        card.border = Theme::cardBorder();
        card.onClick = [this, year] { clicked.push_back(year); };
        return card;
    }
    YearRailView::Model model(const std::vector<std::int64_t> &years,
                              const std::vector<std::int64_t> &addYears = {}) {
        YearRailView::Model model;
        for (const auto year : years)
            model.cards.push_back(card(year));
        model.footer = QStringLiteral("Spanning 8 years · earliest 2019");
        model.addYears = addYears;
        model.onAddYear = [this](std::int64_t year) { added.push_back(year); };
        return model;
    }
    static std::vector<std::int64_t> manyYears(int count) {
        std::vector<std::int64_t> years(static_cast<std::size_t>(count));
        std::generate(years.begin(), years.end(), [year = std::int64_t{2026}]() mutable { return year--; });
        return years;
    }

    // From the top.
    std::vector<YearCardView *> cards() {
        std::vector<YearCardView *> found;
        for (auto *view : rail.findChildren<YearCardView *>()) {
            if (view->isVisibleTo(&rail))
                found.push_back(view);
        }
        std::sort(found.begin(), found.end(), [](const auto *a, const auto *b) { return a->y() < b->y(); });
        return found;
    }
    std::vector<std::int64_t> shownYears() {
        std::vector<std::int64_t> years;
        for (const auto *view : cards())
            years.push_back(view->year());
        return years;
    }
    YearCardView &cardOf(std::int64_t year) {
        const auto all = cards();
        return **std::find_if(all.begin(), all.end(), [&](const auto *view) { return view->year() == year; });
    }
    AddYearCardView *addCard() { return rail.findChild<AddYearCardView *>(QStringLiteral("addYearCard")); }
    QWidget &stack() { return *rail.findChild<QWidget *>(QStringLiteral("cardsStack")); }
    QScrollArea &scrollView() { return *rail.findChild<QScrollArea *>(QStringLiteral("scrollView")); }
    QLabel &label(const char *name) { return *rail.findChild<QLabel *>(QLatin1String(name)); }
    int scrolledTo() { return scrollView().verticalScrollBar()->value(); }
    bool isWhollyShown(const QWidget &view) {
        const QRect place(view.mapTo(scrollView().viewport(), QPoint()), view.size());
        return scrollView().viewport()->rect().contains(place);
    }

    std::vector<std::int64_t> clicked;
    std::vector<std::int64_t> added;
    QWidget window;
    YearRailView rail{&window};
};

TEST_F(YearRailViewTest, showsACardForEachYearInTheOrderGiven) {
    rail.update(model({2026, 2019, 2024}));
    EXPECT_EQ(shownYears(), (std::vector<std::int64_t>{2026, 2019, 2024}));
    EXPECT_FALSE(addCard());
    std::vector<int> heights;
    for (auto *view : cards())
        heights.push_back(view->layoutForWidth(255).height);
    const auto layout = layoutCardsStack(heights, 271);
    for (std::size_t index = 0; index < layout.cards.size(); ++index)
        EXPECT_EQ(cards()[index]->geometry(), layout.cards[index]);
    EXPECT_EQ(stack().size(), QSize(271, layout.height));
}

TEST_F(YearRailViewTest, liesAsLaidOutWithATitleAndAFoot) {
    rail.update(model({2026}));
    auto &title = label("titleLabel");
    auto &foot = label("footLabel");
    EXPECT_EQ(title.text(), QStringLiteral("On This Day"));
    EXPECT_EQ(title.font(), Theme::mono(10.5, Theme::Weight::Regular, 1.47));
    EXPECT_EQ(foot.text(), QStringLiteral("Spanning 8 years · earliest 2019"));
    const auto layout = layoutYearRail({title.sizeHint(), foot.size()}, rail.size());
    EXPECT_EQ(title.geometry(), layout.title);
    EXPECT_EQ(scrollView().geometry(), layout.scrollView);
    EXPECT_EQ(foot.geometry(), layout.foot);
    const QFontMetricsF metrics(Theme::system(11));
    EXPECT_EQ(foot.height(), std::round(1.3 * (std::ceil(metrics.ascent()) + std::ceil(metrics.descent()))));
    // The scroll bar takes nothing of the cards' width.
    EXPECT_EQ(scrollView().viewport()->width(), 271);
}

TEST_F(YearRailViewTest, wrapsALongFooterWithoutLimit) {
    auto shown = model({2026});
    rail.update(shown);
    const int oneLine = label("footLabel").height();
    shown.footer = QStringLiteral("many words ").repeated(20);
    rail.update(shown);
    EXPECT_GE(label("footLabel").height(), 4 * oneLine);
    EXPECT_LE(label("footLabel").geometry().right() + 1, 272 - 20);
    EXPECT_EQ(label("footLabel").geometry().bottom() + 1, 600 - 20);
    EXPECT_LT(scrollView().geometry().bottom(), label("footLabel").y() - 14);
}

TEST_F(YearRailViewTest, isPaintedInItsColours) {
    auto shown = model({2026}, {2025});
    rail.update(shown);
    const auto picture = pictureOf(rail);
    const auto layout =
        layoutYearRail({label("titleLabel").sizeHint(), label("footLabel").size()}, rail.size());
    EXPECT_TRUE(testing::isFilledWith(Theme::border(), picture, layout.leadingRule));
    EXPECT_TRUE(testing::isFilledWith(Theme::border(), picture, layout.footRule));
    EXPECT_TRUE(testing::isFilledWith(Theme::panel(), picture, {1, 0, 271, 20}));
    EXPECT_TRUE(testing::isFilledWith(Theme::panel(), picture, {1, 582, 271, 18}));
    EXPECT_TRUE(testing::isFilledWith(Theme::panel(), picture, {1, 400, 271, 80}));
    EXPECT_GT(pixelsOf(Theme::sectionHead(), picture, layout.title), 0);
    EXPECT_GT(pixelsOf(Theme::railFoot(), picture, layout.foot), 0);
}

TEST_F(YearRailViewTest, showsTheShadowsOfTheCards) {
    rail.update(model({2026, 2025}));
    const auto below = [this] {
        const auto picture = pictureOf(rail, 1);
        const auto place = cards()[0]->mapTo(&rail, QPoint(100, cards()[0]->height() + 1));
        return picture.pixelColor(place).lightness();
    };
    const int atRest = below();
    EXPECT_LT(atRest, Theme::panel().lightness());
    movePointerTo(*cards()[0]);
    EXPECT_LT(below(), atRest);
}

TEST_F(YearRailViewTest, offersToAddAYearOnlyWhenThereIsOneAndSomeoneToAddIt) {
    auto shown = model({2026, 2024}, {2025, 2023});
    rail.update(shown);
    ASSERT_TRUE(addCard());
    EXPECT_EQ(addCard()->geometry().top(), cards().back()->geometry().bottom() + 1 + 8);
    EXPECT_EQ(addCard()->size(), QSize(255, 46));
    EXPECT_EQ(addCard()->accessibleName(), QStringLiteral("Add a past year"));

    shown.addYears.clear();
    rail.update(shown);
    EXPECT_FALSE(addCard());
    EXPECT_EQ(shownYears().size(), 2U);

    shown.addYears = {2025};
    shown.onAddYear = nullptr;
    rail.update(shown);
    EXPECT_FALSE(addCard());
    EXPECT_EQ(shownYears().size(), 2U);
}

TEST_F(YearRailViewTest, showsOnlyTheAddCardForADayWithoutYears) {
    rail.update(model({}, {2025, 2024}));
    EXPECT_TRUE(cards().empty());
    ASSERT_TRUE(addCard());
    EXPECT_EQ(addCard()->geometry(), QRect(8, 0, 255, 46));
    EXPECT_EQ(addCard()->mapTo(&rail, QPoint()).y(), label("titleLabel").geometry().bottom() + 1 + 14);
}

TEST_F(YearRailViewTest, tellsWhichYearWasClicked) {
    rail.update(model({2026, 2024, 2019}));
    QTest::mouseClick(&cardOf(2024), Qt::LeftButton);
    QTest::mouseClick(&cardOf(2019), Qt::LeftButton);
    EXPECT_EQ(clicked, (std::vector<std::int64_t>{2024, 2019}));
}

TEST_F(YearRailViewTest, tellsWhichYearIsToBeAdded) {
    rail.update(model({2026}, {2023, 2025, 2021}));
    addCard()->click();
    auto *menu = addCard()->findChild<QMenu *>();
    ASSERT_TRUE(menu);
    QStringList titles;
    for (const auto *action : menu->actions())
        titles.append(action->text());
    EXPECT_EQ(titles, QStringList({QStringLiteral("2023"), QStringLiteral("2025"), QStringLiteral("2021")}));
    menu->actions().at(2)->trigger();
    EXPECT_EQ(added, std::vector<std::int64_t>{2021});
}

TEST_F(YearRailViewTest, mayBeUpdatedByAClickOnACardThatThenIsGone) {
    auto shown = model({2026, 2024});
    shown.cards[1].onClick = [this] { rail.update(model({2026})); };
    rail.update(shown);
    QTest::mouseClick(&cardOf(2024), Qt::LeftButton);
    EXPECT_EQ(shownYears(), std::vector<std::int64_t>{2026});

    auto adding = model({2026}, {2025});
    adding.onAddYear = [this](std::int64_t year) { rail.update(model({2026, year})); };
    rail.update(adding);
    addCard()->click();
    auto *menu = addCard()->findChild<QMenu *>();
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(shownYears(), (std::vector<std::int64_t>{2026, 2025}));
    EXPECT_FALSE(addCard());
    EXPECT_TRUE(QTest::qWaitFor([this] { return rail.findChildren<AddYearCardView *>().isEmpty(); }));
}

TEST_F(YearRailViewTest, scrollsWhenALongSnippetMakesACardGrow) {
    auto shown = model({2026, 2024});
    rail.update(shown);
    QCoreApplication::processEvents();
    EXPECT_EQ(scrollView().verticalScrollBar()->maximum(), 0);
    EXPECT_FALSE(rail.findChild<QuietScrollBar *>()->isVisible());
    const int height = cardOf(2026).height();
    shown.cards[0].snippet = QStringLiteral("word ").repeated(500);
    rail.update(shown);
    EXPECT_GT(cardOf(2026).height(), height + 1000);
    EXPECT_EQ(cardOf(2024).y(), cardOf(2026).height() + 8);
    EXPECT_TRUE(QTest::qWaitFor([this] { return scrollView().verticalScrollBar()->maximum() > 500; }));
    EXPECT_TRUE(rail.findChild<QuietScrollBar *>()->isVisible());
}

TEST_F(YearRailViewTest, scrollsByTheWheel) {
    rail.update(model(manyYears(20)));
    QCoreApplication::processEvents();
    const QPointF center = cards()[1]->mapTo(&window, cards()[1]->rect().center());
    QWheelEvent event(center, window.mapToGlobal(center), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    // As from a real wheel: others do not reach the parents of the widget below the pointer.
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(window.windowHandle(), &event);
    EXPECT_GE(scrolledTo(), 24);
}

TEST_F(YearRailViewTest, forgetsHoverOfACardThatScrollsAwayFromThePointer) {
    rail.update(model(manyYears(20)));
    QCoreApplication::processEvents();
    movePointerTo(*cards()[1]);
    ASSERT_TRUE(cards()[1]->isHovered());
    scrollView().verticalScrollBar()->setValue(400);
    EXPECT_FALSE(cards()[1]->isHovered());
    scrollView().verticalScrollBar()->setValue(0);
    movePointerTo(*cards()[1], {20, 20});
    EXPECT_TRUE(cards()[1]->isHovered());
}

TEST_F(YearRailViewTest, startsUnhoveredWithEachUpdate) {
    rail.update(model({2026, 2024}, {2025}));
    movePointerTo(cardOf(2024));
    ASSERT_TRUE(cardOf(2024).isHovered());
    rail.update(model({2026, 2024}, {2025}));
    EXPECT_FALSE(cardOf(2024).isHovered());
    movePointerTo(*addCard());
    ASSERT_TRUE(addCard()->isHovered());
    rail.update(model({2026, 2024}, {2025}));
    EXPECT_FALSE(addCard()->isHovered());
}

// What a rail shows must not depend on what it showed before.
TEST_F(YearRailViewTest, looksAfterAnyUpdateLikeANewRail) {
    auto changed = model({2026, 2024, 2019}, {2025});
    changed.cards[1].snippet = QStringLiteral("word ").repeated(30);
    changed.cards[0].border = Theme::accent();
    changed.cards[2].background = Theme::cardBgActive();
    changed.cards[2].meta.clear();
    auto twice = model({2026, 2024, 2024, 2019});
    twice.cards[2].snippet = QStringLiteral("the second of this year");
    auto otherFooter = model({2024});
    otherFooter.footer = QStringLiteral("words ").repeated(30);
    const YearRailView::Model models[] = {
        model({2026, 2024, 2019}),
        changed,
        model({2019, 2024}),
        model({2020, 2026, 2018}, {2025}),
        twice,
        model({}),
        model({}, {2001}),
        otherFooter,
        model(manyYears(12), {1999}),
        changed,
    };
    for (const auto &shown : models) {
        rail.update(shown);
        QWidget otherWindow;
        YearRailView fresh(&otherWindow);
        fresh.resize(rail.size());
        fresh.update(shown);
        EXPECT_EQ(pictureOf(rail, 1), pictureOf(fresh, 1));
        EXPECT_EQ(shownYears().size(), shown.cards.size());
    }
}

TEST_F(YearRailViewTest, keepsItsCardsFromOneUpdateToTheNext) {
    const auto years = manyYears(60);
    rail.update(model(years));
    const auto before = cards();
    auto shown = model(years);
    shown.cards[0].snippet = QStringLiteral("A longer walk");
    rail.update(shown);
    EXPECT_EQ(cards(), before);
    EXPECT_EQ(rail.findChildren<YearCardView *>().size(), 60);
    EXPECT_EQ(before[0]->accessibleDescription(), QStringLiteral("A longer walk"));
}

TEST_F(YearRailViewTest, goesFromCardToCardByKeyboard) {
    rail.update(model({2026, 2024, 2019}, {2025}));
    cardOf(2026).setFocus();
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    press(Qt::Key_Up);
    EXPECT_TRUE(cardOf(2026).hasFocus());
    press(Qt::Key_Down);
    EXPECT_TRUE(cardOf(2024).hasFocus());
    press(Qt::Key_End);
    EXPECT_TRUE(addCard()->hasFocus());
    press(Qt::Key_Down);
    EXPECT_TRUE(addCard()->hasFocus());
    press(Qt::Key_Up);
    EXPECT_TRUE(cardOf(2019).hasFocus());
    press(Qt::Key_Return);
    press(Qt::Key_Home);
    EXPECT_TRUE(cardOf(2026).hasFocus());
    press(Qt::Key_Space);
    EXPECT_EQ(clicked, (std::vector<std::int64_t>{2019, 2026}));
}

TEST_F(YearRailViewTest, goesThroughItsCardsByTabFromTheTop) {
    QLineEdit edit(&window);
    edit.show();
    QWidget::setTabOrder(&edit, &rail);
    rail.update(model({2026, 2024}, {2025}));
    rail.update(model({2026, 2019, 2024, 2018}, {2025}));
    edit.setFocus();
    std::vector<QWidget *> visited;
    for (int step = 0; step < 5; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        visited.push_back(QApplication::focusWidget());
    }
    std::vector<QWidget *> expected;
    for (auto *view : cards())
        expected.push_back(view);
    expected.push_back(addCard());
    EXPECT_EQ(visited, expected);
}

TEST_F(YearRailViewTest, showsTheCardThatHasTheKeyboard) {
    rail.update(model(manyYears(20), {1999}));
    QCoreApplication::processEvents();
    cards()[0]->setFocus();
    EXPECT_EQ(scrolledTo(), 0);
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    for (int step = 0; step < 20; ++step) {
        press(Qt::Key_Down);
        EXPECT_TRUE(isWhollyShown(*QApplication::focusWidget())) << step;
    }
    EXPECT_EQ(scrolledTo(), scrollView().verticalScrollBar()->maximum());
    press(Qt::Key_Home);
    EXPECT_EQ(scrolledTo(), 0);
    press(Qt::Key_End);
    EXPECT_TRUE(isWhollyShown(*addCard()));
    cards()[10]->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(isWhollyShown(*cards()[10]));
}

TEST_F(YearRailViewTest, showsTheBeginningOfACardThatIsTallerThanTheRail) {
    auto shown = model({2026, 2024, 2019});
    shown.cards[1].snippet = QStringLiteral("word ").repeated(500);
    rail.update(shown);
    QCoreApplication::processEvents();
    cardOf(2026).setFocus();
    QTest::keyClick(&cardOf(2026), Qt::Key_Down);
    EXPECT_EQ(scrolledTo(), cardOf(2024).y());
}

TEST_F(YearRailViewTest, keepsTheKeyboardAtItsYear) {
    rail.update(model({2026, 2024, 2019}, {2025}));
    cardOf(2019).setFocus();
    rail.update(model({2026, 2025, 2024, 2020, 2019}, {2018}));
    EXPECT_TRUE(cardOf(2019).hasFocus());
    rail.update(model({2019}, {2018}));
    EXPECT_TRUE(cardOf(2019).hasFocus());
    rail.update(model({2026, 2019}));
    EXPECT_TRUE(cardOf(2019).hasFocus());
}

TEST_F(YearRailViewTest, keepsTheKeyboardNearAYearThatIsGone) {
    rail.update(model({2026, 2024, 2019}, {2025}));
    cardOf(2024).setFocus();
    rail.update(model({2026, 2019}));
    EXPECT_TRUE(cardOf(2019).hasFocus());
    rail.update(model({2015}));
    EXPECT_TRUE(cardOf(2015).hasFocus());

    rail.update(model({2026, 2024}, {2025}));
    addCard()->setFocus();
    rail.update(model({2026, 2024, 2023}, {2025}));
    EXPECT_TRUE(addCard()->hasFocus());
    rail.update(model({2026, 2024}));
    EXPECT_TRUE(cardOf(2024).hasFocus());
}

TEST_F(YearRailViewTest, keepsTheKeyboardAtTheSecondOfTwoCardsOfOneYear) {
    rail.update(model({2026, 2024, 2024}));
    auto *second = cards()[2];
    second->setFocus();
    rail.update(model({2026, 2025, 2024, 2024}));
    EXPECT_TRUE(cards()[3]->hasFocus());
}

TEST_F(YearRailViewTest, takesTheKeyboardFromNoOne) {
    QLineEdit edit(&window);
    edit.show();
    edit.setFocus();
    rail.update(model({2026, 2024}, {2025}));
    rail.update(model({2019}));
    EXPECT_TRUE(edit.hasFocus());
}

TEST_F(YearRailViewTest, isLaidOutAnewWithItsSize) {
    auto shown = model({2026});
    shown.cards[0].snippet = QStringLiteral("word ").repeated(20);
    rail.update(shown);
    const int height = cardOf(2026).height();
    rail.resize(200, 500);
    EXPECT_EQ(cardOf(2026).width(), 200 - 1 - 16);
    EXPECT_GT(cardOf(2026).height(), height);
    EXPECT_EQ(label("footLabel").geometry().bottom() + 1, 500 - 20);
}

TEST_F(YearRailViewTest, isReadFromTheTopByAssistiveTechnologies) {
    rail.update(model({2024, 2019}, {2025}));
    rail.update(model({2026, 2024, 2020, 2019}, {2025}));
    auto *accessible = QAccessible::queryAccessibleInterface(&stack());
    ASSERT_EQ(accessible->childCount(), 5);
    const char *const names[] = {"2026", "2024", "2020", "2019", "Add a past year"};
    for (int index = 0; index < 5; ++index) {
        auto *child = accessible->child(index);
        EXPECT_EQ(child->role(), QAccessible::Button);
        EXPECT_TRUE(child->text(QAccessible::Name).startsWith(QLatin1String(names[index]))) << index;
        EXPECT_TRUE(
            child->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    }
    EXPECT_EQ(accessible->child(1)->text(QAccessible::Name), QStringLiteral("2024, some years ago, 6 chars"));
    EXPECT_EQ(accessible->child(1)->text(QAccessible::Description), QStringLiteral("A walk"));
    for (const char *name : {"titleLabel", "footLabel"}) {
        const auto *text = QAccessible::queryAccessibleInterface(&label(name));
        EXPECT_EQ(text->role(), QAccessible::StaticText);
        EXPECT_EQ(text->text(QAccessible::Name), label(name).text());
    }
}

TEST_F(YearRailViewTest, makesTheCardsOutOfSightWhenAllAreWanted) {
    std::vector<std::int64_t> all(40);
    std::iota(all.rbegin(), all.rend(), 1987);
    rail.showOnlyCardsInSight();
    rail.update(model(all, {1950}));
    const auto first = shownYears();
    ASSERT_LT(first.size(), all.size());
    EXPECT_TRUE(std::equal(first.begin(), first.end(), all.begin()));
    EXPECT_FALSE(addCard());
    // They fill what is seen, and the scroll bar is about what it will be.
    const auto *stack = cards().front()->parentWidget();
    EXPECT_GT(cards().back()->geometry().bottom(), rail.height());
    const int estimated = stack->height();

    rail.showAllCards();
    EXPECT_EQ(shownYears(), all);
    EXPECT_TRUE(addCard());
    EXPECT_NEAR(estimated, stack->height(), 100);
    // From now on there is nothing to wait for.
    rail.update(model({2026}));
    rail.update(model(all));
    EXPECT_EQ(shownYears(), all);
}

} // namespace
} // namespace diary
