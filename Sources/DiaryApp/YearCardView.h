// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/BoxShadow.h>
#include <DiaryApp/HoverView.h>
#include <DiaryApp/TextBlock.h>
#include <DiaryApp/TextLine.h>

#include <QColor>
#include <QFont>
#include <QRect>
#include <QString>

#include <cstdint>
#include <functional>

namespace diary {

// What the texts of a card take.
struct YearCardMetrics {
    QSize year;
    int yearAscent = 0;
    QSize meta;
    int metaAscent = 0;
    int snippetHeight = 0; // at the card's width less both insets
    QSize ago;
};

struct YearCardLayout {
    static constexpr int sideInset = 16;

    QRect year;
    QRect meta; // on the year's baseline
    QRect divider;
    QRect snippet;
    QRect ago;
    int height = 0;
};

YearCardLayout layoutYearCard(const YearCardMetrics &metrics, int width);

// One year of the rail: its number, how much there is, how it begins, and how long ago.
//
// The shadow lies outside its bounds; the parent paints it.
class YearCardView : public HoverView {
    Q_OBJECT

public:
    struct Model {
        std::int64_t year = 0;
        QColor yearColor;
        QString meta;
        QString snippet;
        QColor snippetColor;
        QString ago;
        QColor background;
        QColor border; // while the pointer is elsewhere
        std::function<void()> onClick;

        // Whether both look the same, wherever a click leads.
        bool looksLike(const Model &other) const;
    };
    struct Fonts {
        QFont year;
        QFont meta;
        QFont snippet;
        QFont ago;

        static Fonts current();
        bool operator==(const Fonts &) const = default;
    };

    explicit YearCardView(QWidget *parent = nullptr);

    // Looks as a new card would, unhovered; costs little when nothing changed.
    using QWidget::update;
    void update(const Model &model, const Fonts &fonts);

    std::int64_t year() const { return m_model.year; }
    YearCardLayout layoutForWidth(int width);
    BoxShadow shadow() const;
    // Black, below the card.
    void paintShadow(QPainter &painter) const;

protected:
    void hoverDidChange() override;
    void paintEvent(QPaintEvent *event) override;

private:
    Model m_model;
    Fonts m_fonts;
    YearCardMetrics m_metrics; // but for the snippet's height, which depends on the width
    TextLine m_year;
    TextLine m_meta;
    TextBlock m_snippet;
    TextLine m_ago;
};

} // namespace diary
