// SPDX-License-Identifier: MIT
#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/DayGridView.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/IconButton.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/SidebarView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TodayButton.h>

#include <QEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace diary {

namespace {

constexpr int headerTop = 22;
constexpr int gridTop = 18; // this and the next: below the part above
constexpr int todayTop = 22;
constexpr int dividerTop = 20;
constexpr int statisticsTop = 18;
constexpr int statisticsSpacing = 9;
constexpr int labelGap = 8;
constexpr int iconsBottom = 12;
constexpr int iconsTop = 10;
constexpr QSize monthPadding{12, 4};
constexpr double monthTitleSize = 14;
constexpr double monthTitleSpacing = 1.96;
constexpr int buttonRadius = 5;

// The month's name, to click.
class MonthButton : public HoverView {
public:
    using HoverView::HoverView;

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        paintHoverBackground(painter, buttonRadius);
        paintFocusRing(painter, rect(), buttonRadius);
    }
};

QFont monthTitleFont() {
    auto font = Theme::serif(monthTitleSize);
    font.setLetterSpacing(QFont::AbsoluteSpacing, monthTitleSpacing);
    return font;
}

} // namespace

SidebarLayout layoutSidebar(const SidebarMetrics &metrics, QSize sidebar) {
    constexpr int left = SidebarLayout::sideInset;
    const int right = sidebar.width() - SidebarLayout::sideInset; // the first pixel outside
    const int room = std::max(0, right - left);
    SidebarLayout layout;

    const int headerHeight =
        std::max({metrics.previousMonth.height(), metrics.monthButton.height(), metrics.nextMonth.height()});
    const auto inHeader = [headerHeight](int x, QSize size) {
        return QRect(QPoint(x, headerTop + (headerHeight - size.height()) / 2), size);
    };
    layout.previousMonth = inHeader(left, metrics.previousMonth);
    layout.nextMonth = inHeader(right - metrics.nextMonth.width(), metrics.nextMonth);
    const int arrowWidth = std::max(metrics.previousMonth.width(), metrics.nextMonth.width());
    const QSize month(std::clamp(room - 2 * arrowWidth, 0, metrics.monthButton.width()),
                      metrics.monthButton.height());
    layout.monthButton = inHeader(left + (room - month.width()) / 2, month);

    layout.grid = QRect(left, headerTop + headerHeight + gridTop, room, metrics.gridHeight);
    layout.today = QRect(left, layout.grid.y() + layout.grid.height() + todayTop, room, metrics.todayHeight);
    layout.upperDivider = QRect(left, layout.today.y() + layout.today.height() + dividerTop, room, 1);

    int y = layout.upperDivider.y() + 1 + statisticsTop;
    for (std::size_t row = 0; row < layout.statLabels.size(); ++row) {
        const auto label = metrics.statLabels.at(row);
        const auto value = metrics.statValues.at(row);
        const int labelWidth = std::clamp(room - labelGap - value.width(), 0, label.width());
        layout.statLabels.at(row) = QRect(left, y, labelWidth, label.height());
        layout.statValues.at(row) = QRect(right - value.width(), y + (label.height() - value.height()) / 2,
                                          value.width(), value.height());
        y += label.height() + statisticsSpacing;
    }
    layout.minimumHeight = y + 1 + iconsTop + metrics.icon.height() + iconsBottom;

    const int iconY = std::max(sidebar.height(), layout.minimumHeight) - iconsBottom - metrics.icon.height();
    layout.lowerDivider = QRect(left, iconY - iconsTop - 1, room, 1);
    for (std::size_t index = 0; index < layout.icons.size(); ++index) {
        const int place = static_cast<int>(index);
        layout.icons.at(index) =
            QRect(QPoint(left + place * (room - metrics.icon.width()) / 2, iconY), metrics.icon);
    }
    layout.edge = QRect(sidebar.width() - 1, 0, 1, sidebar.height());
    return layout;
}

SidebarView::SidebarView(QWidget *parent) : QWidget(parent) {
    // In the order in which Tab goes.
    buildMonthHeader();
    m_gridView = new DayGridView(this);
    m_gridView->setObjectName(QStringLiteral("gridView"));
    m_gridView->onStepMonth = [this](int by) {
        forwarding(by < 0 ? &SidebarView::onPreviousMonth : &SidebarView::onNextMonth)();
    };
    m_todayButton = new TodayButton(this);
    m_todayButton->setObjectName(QStringLiteral("todayButton"));
    m_statistics = {makeStatistic(L("Days written"), "statDaysValue"),
                    makeStatistic(L("Earliest year"), "statEarliestValue"),
                    makeStatistic(L("Total files"), "statFilesValue")};
    m_icons = {makeIcon("searchButton", "magnifyingglass", L("Find"), &SidebarView::onShowSearch),
               makeIcon("yearOverviewButton", "square.grid.3x3", L("Year Calendar"),
                        &SidebarView::onShowYearOverview),
               makeIcon("settingsButton", "gearshape", L("Settings"), &SidebarView::onShowSettings)};
    layOut();
}

// Calls what is set at that time, which may destroy the sidebar.
std::function<void()> SidebarView::forwarding(Intent intent) {
    return [this, intent] {
        if (const auto action = this->*intent)
            action();
    };
}

void SidebarView::buildMonthHeader() {
    const ChromeButton::Style arrowStyle{.font = Theme::system(14),
                                         .normalColor = Theme::chevron(),
                                         .hoverColor = Theme::chevron(),
                                         .horizontalPadding = 14,
                                         .verticalPadding = 6};
    // From right to left they are drawn the other way round, as any brackets.
    const auto makeArrow = [&](const QString &text, const char *name, const QString &label, Intent intent) {
        auto *arrow = new ChromeButton(text, arrowStyle, this);
        arrow->setObjectName(QLatin1String(name));
        arrow->setAccessibleName(label);
        arrow->setToolTip(label);
        arrow->onClick = forwarding(intent);
        return arrow;
    };
    m_previousMonth =
        makeArrow(QStringLiteral("‹"), "previousMonth", L("Previous Month"), &SidebarView::onPreviousMonth);
    m_monthButton = new MonthButton(this);
    m_monthButton->setObjectName(QStringLiteral("monthButton"));
    m_monthButton->setToolTip(L("Year Calendar"));
    m_monthButton->onClick = forwarding(&SidebarView::onShowYearOverview);
    m_monthLabel = new ElidedLabel(monthTitleFont(), Theme::inkTitle(), Qt::ElideRight, m_monthButton);
    m_monthLabel->setObjectName(QStringLiteral("monthLabel"));
    m_monthLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_nextMonth = makeArrow(QStringLiteral("›"), "nextMonth", L("Next Month"), &SidebarView::onNextMonth);
}

SidebarView::Statistic SidebarView::makeStatistic(const QString &label, const char *valueName) {
    Statistic statistic{new ElidedLabel(Theme::system(11.5), Theme::statLabel(), Qt::ElideRight, this),
                        new ElidedLabel(Theme::mono(11.5), Theme::inkMed(), Qt::ElideRight, this)};
    statistic.label->setText(label);
    statistic.value->setObjectName(QLatin1String(valueName));
    return statistic;
}

IconButton *SidebarView::makeIcon(const char *name, const char *symbol, const QString &label, Intent intent) {
    auto *button = new IconButton(QLatin1String(symbol), label, this);
    button->setObjectName(QLatin1String(name));
    button->onClick = forwarding(intent);
    return button;
}

void SidebarView::update(const Model &model) {
    m_monthLabel->setAppearance(monthTitleFont(), Theme::inkTitle(), Qt::ElideRight);
    m_monthLabel->setText(model.monthTitle);
    m_monthButton->setAccessibleName(model.monthTitle);

    m_gridView->update({.month = model.month,
                        .year = model.year,
                        .selectedDay = model.selectedDay,
                        .daysWithContent = model.daysWithContent,
                        .week = model.week,
                        .names = model.names});

    m_todayButton->update({.title = L("Back to Today"), .dateText = model.todayText});

    std::array<QString, 3> values;
    values.fill(QStringLiteral("…"));
    if (const auto &overview = model.overview)
        values = {QString::number(overview->daysWithContent) + QStringLiteral(" / 365"),
                  overview->earliestYear ? QString::number(*overview->earliestYear) : QStringLiteral("—"),
                  QString::number(overview->fileCount)};
    for (std::size_t row = 0; row < values.size(); ++row)
        m_statistics.at(row).value->setText(values.at(row));
    layOut();
}

QSize SidebarView::sizeHint() const {
    return minimumSizeHint();
}

QSize SidebarView::minimumSizeHint() const {
    return {SidebarLayout::width, currentLayout().minimumHeight};
}

void SidebarView::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        layOut();
}

void SidebarView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::panel());
    const auto layout = currentLayout();
    for (const auto &line : {layout.upperDivider, layout.lowerDivider, layout.edge})
        painter.fillRect(mirrored(line), Theme::border());
}

void SidebarView::resizeEvent(QResizeEvent *) {
    layOut();
}

SidebarLayout SidebarView::currentLayout() const {
    SidebarMetrics metrics{.previousMonth = m_previousMonth->sizeHint(),
                           .monthButton = m_monthLabel->sizeHint() + monthPadding,
                           .nextMonth = m_nextMonth->sizeHint(),
                           .gridHeight = m_gridView->sizeHint().height(),
                           .todayHeight = m_todayButton->sizeHint().height(),
                           .statLabels = {},
                           .statValues = {},
                           .icon = m_icons.front()->sizeHint()};
    for (std::size_t row = 0; row < m_statistics.size(); ++row) {
        metrics.statLabels.at(row) = m_statistics.at(row).label->sizeHint();
        metrics.statValues.at(row) = m_statistics.at(row).value->sizeHint();
    }
    return layoutSidebar(metrics, size());
}

QRect SidebarView::mirrored(const QRect &rectangle) const {
    return QStyle::visualRect(layoutDirection(), rect(), rectangle);
}

void SidebarView::layOut() {
    const auto layout = currentLayout();
    const auto place = [this](QWidget *part, const QRect &rectangle) {
        part->setGeometry(mirrored(rectangle));
    };
    place(m_previousMonth, layout.previousMonth);
    place(m_monthButton, layout.monthButton);
    place(m_nextMonth, layout.nextMonth);
    place(m_gridView, layout.grid);
    place(m_todayButton, layout.today);
    for (std::size_t row = 0; row < m_statistics.size(); ++row) {
        place(m_statistics.at(row).label, layout.statLabels.at(row));
        place(m_statistics.at(row).value, layout.statValues.at(row));
    }
    for (std::size_t index = 0; index < m_icons.size(); ++index)
        place(m_icons.at(index), layout.icons.at(index));
    m_monthLabel->setGeometry(
        m_monthButton->rect().adjusted(monthPadding.width() / 2, monthPadding.height() / 2,
                                       -monthPadding.width() / 2, -monthPadding.height() / 2));
    m_monthButton->recheckPointer();
    update();
}

} // namespace diary
