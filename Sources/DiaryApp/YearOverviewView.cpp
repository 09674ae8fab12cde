// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>
#include <DiaryApp/MonthHeatView.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/YearOverviewView.h>

#include <QEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace diary {

namespace {

constexpr int viewWidth = 640;
constexpr int margin = 24;
constexpr int monthsPerRow = 3;
constexpr int footnoteWidth = 580;

const auto unknown = QStringLiteral("…");

QLabel *makeLabel(const QFont &font, const QColor &color, const QString &text = {}) {
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    auto palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

// A shade of the heat map in the legend.
class Swatch : public QWidget {
public:
    explicit Swatch(const QColor &color) : m_color(color) { setFixedSize(11, 11); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        paintFilledBox(painter, rect(), 3, m_color);
    }

private:
    QColor m_color;
};

} // namespace

// A month's name, the number of its days with an entry, and the days.
class MonthCard : public QWidget {
public:
    MonthCard() {
        m_name = makeLabel(Theme::serif(13), Theme::inkTitle());
        m_name->setObjectName(QStringLiteral("monthName"));
        m_count = makeLabel(Theme::mono(9.5), Theme::agoText());
        m_count->setObjectName(QStringLiteral("dayCount"));
        m_heatView = new MonthHeatView;
        m_heatView->setObjectName(QStringLiteral("heatView"));
        for (QWidget *part : {static_cast<QWidget *>(m_name), static_cast<QWidget *>(m_count),
                              static_cast<QWidget *>(m_heatView)})
            part->setParent(this);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    MonthHeatView *heatView() const { return m_heatView; }

    using QWidget::update;
    void update(std::int64_t month, const YearOverviewView::Model &model) {
        m_name->setFont(Theme::serif(13));
        m_name->setText(model.names.monthName(month));
        MonthHeatView::Model heat;
        heat.month = month;
        heat.names = model.names;
        heat.areCountsKnown = model.figures.has_value();
        m_count->setText(unknown);
        if (model.figures) {
            const auto &counts = model.figures->counts;
            std::copy_if(counts.begin(), counts.end(), std::inserter(heat.counts, heat.counts.end()),
                         [month](const auto &entry) { return entry.first.month == month; });
            const auto daysWritten = std::count_if(heat.counts.begin(), heat.counts.end(),
                                                   [](const auto &entry) { return entry.second >= 1; });
            m_count->setText(L("%d d", daysWritten));
        }
        m_heatView->update(heat);
        layOut();
    }

    QSize sizeHint() const override {
        const auto heat = m_heatView->sizeHint();
        return {heat.width(), m_name->sizeHint().height() + headerGap + heat.height()};
    }

protected:
    void changeEvent(QEvent *event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::LayoutDirectionChange)
            layOut();
    }
    void resizeEvent(QResizeEvent *) override { layOut(); }

private:
    static constexpr int headerGap = 8;

    void layOut() {
        const auto count = m_count->sizeHint();
        const QSize name(std::min(m_name->sizeHint().width(), std::max(0, width() - count.width())),
                         m_name->sizeHint().height());
        // On one baseline.
        const int countTop = QFontMetrics(m_name->font()).ascent() - QFontMetrics(m_count->font()).ascent();
        const auto place = [this](QWidget *part, const QRect &rectangle) {
            part->setGeometry(QStyle::visualRect(layoutDirection(), rect(), rectangle));
        };
        place(m_name, {QPoint(0, 0), name});
        place(m_count, {QPoint(width() - count.width(), countTop), count});
        place(m_heatView, {0, name.height() + headerGap, width(), m_heatView->sizeHint().height()});
    }

    QLabel *m_name;
    QLabel *m_count;
    MonthHeatView *m_heatView;
};

YearOverviewView::YearOverviewView(QWidget *parent) : QWidget(parent) {
    m_footnote = makeLabel(Theme::system(11), Theme::sectionHead());
    m_footnote->setObjectName(QStringLiteral("footnote"));
    m_footnote->setWordWrap(true);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(0);
    layout->addWidget(buildMonths());
    layout->addSpacing(24);
    layout->addWidget(buildLegend());
    layout->addSpacing(12);
    auto *footnoteRow = new QHBoxLayout;
    footnoteRow->addWidget(m_footnote, 1);
    footnoteRow->addSpacing(viewWidth - 2 * margin - footnoteWidth);
    layout->addLayout(footnoteRow);
}

QWidget *YearOverviewView::buildMonths() {
    auto *months = new QWidget;
    auto *layout = new QGridLayout(months);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(20);
    layout->setVerticalSpacing(24);
    for (std::size_t index = 0; index < m_cards.size(); ++index) {
        auto *card = new MonthCard;
        card->setObjectName(QStringLiteral("month%1").arg(index + 1));
        card->heatView()->onPick = [this](MonthDay monthDay) {
            if (const auto action = onPick)
                action(monthDay);
        };
        card->heatView()->onWalkOut = [this, index](Qt::Key key, int day) { walk(index, key, day); };
        m_cards[index] = card;
        const int place = static_cast<int>(index);
        layout->addWidget(card, place / monthsPerRow, place % monthsPerRow);
        layout->setColumnStretch(place % monthsPerRow, 1);
    }
    return months;
}

QWidget *YearOverviewView::buildLegend() {
    auto *legend = new QWidget;
    auto *layout = new QHBoxLayout(legend);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(14);
    m_legend = makeLabel(Theme::mono(10, Theme::Weight::Regular, 1.0), Theme::sectionHead());
    layout->addWidget(m_legend);
    const auto labels = {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3+")};
    auto shade = Theme::heatShades().begin();
    for (const auto &label : labels) {
        auto *pair = new QHBoxLayout;
        pair->setSpacing(4);
        pair->addWidget(new Swatch(*shade++));
        pair->addWidget(makeLabel(Theme::mono(9.5), Theme::statLabel(), label));
        layout->addLayout(pair);
    }
    layout->addStretch(1);
    m_summary = makeLabel(Theme::mono(11), Theme::inkMed());
    m_summary->setObjectName(QStringLiteral("summary"));
    layout->addWidget(m_summary);
    return legend;
}

void YearOverviewView::update(const Model &model) {
    m_legend->setText(L("YearsWrittenLegend"));
    m_footnote->setText(L("YearFootnote"));
    std::int64_t month = 0;
    for (auto *card : m_cards)
        card->update(++month, model);
    m_summary->setText(
        model.figures ? QString::number(model.figures->daysWithContent) + QStringLiteral(" / 365") : unknown);
}

void YearOverviewView::focusDay(MonthDay monthDay) {
    auto *heatView = m_cards.at(static_cast<std::size_t>(monthDay.month - 1))->heatView();
    heatView->setCursorDay(static_cast<int>(monthDay.day));
    heatView->setFocus(Qt::OtherFocusReason);
}

QSize YearOverviewView::sizeHint() const {
    return {viewWidth, layout()->totalHeightForWidth(viewWidth)};
}

void YearOverviewView::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), Theme::paper());
}

// Left and right by days, up and down by what one sees.
void YearOverviewView::walk(std::size_t fromMonth, Qt::Key key, int day) {
    constexpr int columns = DayCellsView::columns;
    const int column = (day - 1) % columns;
    const int step = key == Qt::Key_Up || key == Qt::Key_Down ? monthsPerRow : 1;
    const bool isBack = key == Qt::Key_Up || key == (isRightToLeft() ? Qt::Key_Right : Qt::Key_Left);
    const int month = static_cast<int>(fromMonth) + (isBack ? -step : step);
    if (month < 0 || month >= static_cast<int>(m_cards.size()))
        return;
    const int lastDay = m_cards[static_cast<std::size_t>(month)]->heatView()->dayCount();
    int to = isBack ? lastDay : 1;
    if (key == Qt::Key_Down)
        to = column + 1;
    else if (key == Qt::Key_Up)
        to = lastDay - (lastDay - 1 - column) % columns;
    focusDay(MonthDay{month + 1, to});
}

} // namespace diary
