// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/YearCardView.h>

#include <QRect>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QScrollArea;

namespace diary {

class ElidedLabel;
class ThemeLabel;

// What the texts around the cards take.
struct YearRailMetrics {
    QSize title;
    QSize foot;
};

struct YearRailLayout {
    static constexpr int sideInset = 20;

    QRect leadingRule;
    QRect title;
    QRect scrollView;
    QRect footRule;
    QRect foot;
};

YearRailLayout layoutYearRail(const YearRailMetrics &metrics, QSize rail);

// The rectangles of the cards one below the other, and the height of all with the space below.
struct CardsStackLayout {
    std::vector<QRect> cards;
    int height = 0;
};
CardsStackLayout layoutCardsStack(const std::vector<int> &heights, int width);

// The pane beside the page: a card for each year that has something for this day, a card to add a year, and a
// small text below.
//
// It has the keyboard by Tab; Up, Down, Home and End then go from card to card. An update keeps the keyboard
// at the year that had it.
class YearRailView : public QWidget {
    Q_OBJECT

public:
    using Card = YearCardView::Model;

    struct Model {
        std::vector<Card> cards;
        QString footer;
        std::vector<std::int64_t> addYears;               // in the order to offer
        std::function<void(std::int64_t year)> onAddYear; // without it there is no card to add a year
    };

    explicit YearRailView(QWidget *parent = nullptr);

    using QWidget::update;
    void update(const Model &model);

    // Until all are wanted, only those cards are made that can be seen without scrolling, and the others'
    // height is estimated: of a day with many years, the first picture would otherwise wait for all.
    void showOnlyCardsInSight();
    void showAllCards();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    class CardsStack;

    YearRailLayout currentLayout() const;
    void layOut();
    Model inSight(Model model) const;

    ElidedLabel *m_titleLabel;
    QScrollArea *m_scrollView;
    CardsStack *m_cardsStack;
    std::optional<Model> m_whole; // while only a part is shown
    ThemeLabel *m_footLabel;
};

} // namespace diary
