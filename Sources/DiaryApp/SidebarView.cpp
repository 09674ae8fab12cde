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
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace diary {

namespace {

constexpr int preferredWidth = 236;
constexpr int sideInset = 18;
constexpr int statisticsSpacing = 9;
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
        painter.setRenderHint(QPainter::Antialiasing);
        if (isHovered()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(Theme::hoverBg());
            painter.drawRoundedRect(rect(), buttonRadius, buttonRadius);
        }
        paintFocusRing(painter, rect(), buttonRadius);
    }
};

QFont monthTitleFont() {
    auto font = Theme::serif(monthTitleSize);
    font.setLetterSpacing(QFont::AbsoluteSpacing, monthTitleSpacing);
    return font;
}

QWidget *makeDivider() {
    auto *divider = new QWidget;
    divider->setFixedHeight(1);
    divider->setAutoFillBackground(true);
    auto palette = divider->palette();
    palette.setColor(QPalette::Window, Theme::border());
    divider->setPalette(palette);
    return divider;
}

} // namespace

SidebarView::SidebarView(QWidget *parent) : QWidget(parent) {
    auto *header = buildMonthHeader();
    m_gridView = new DayGridView;
    m_gridView->setObjectName(QStringLiteral("gridView"));
    m_gridView->onStepMonth = [this](int by) {
        forwarding(by < 0 ? &SidebarView::onPreviousMonth : &SidebarView::onNextMonth)();
    };
    m_todayButton = new TodayButton;
    m_todayButton->setObjectName(QStringLiteral("todayButton"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(sideInset, 22, sideInset, 12);
    layout->setSpacing(0);
    layout->addWidget(header);
    layout->addSpacing(18);
    layout->addWidget(m_gridView);
    layout->addSpacing(22);
    layout->addWidget(m_todayButton);
    layout->addSpacing(20);
    layout->addWidget(makeDivider());
    layout->addSpacing(18);
    m_statDaysValue = addStatistic(layout, L("Days written"), QStringLiteral("statDaysValue"));
    layout->addSpacing(statisticsSpacing);
    m_statEarliestValue = addStatistic(layout, L("Earliest year"), QStringLiteral("statEarliestValue"));
    layout->addSpacing(statisticsSpacing);
    m_statFilesValue = addStatistic(layout, L("Total files"), QStringLiteral("statFilesValue"));
    layout->addStretch(1);
    layout->addWidget(makeDivider());
    layout->addSpacing(10);
    layout->addWidget(buildIconBar());
}

// Calls what is set at that time, which may destroy the sidebar.
std::function<void()> SidebarView::forwarding(Intent intent) {
    return [this, intent] {
        if (const auto action = this->*intent)
            action();
    };
}

QWidget *SidebarView::buildMonthHeader() {
    const ChromeButton::Style arrowStyle{.font = Theme::system(14),
                                         .normalColor = Theme::chevron(),
                                         .hoverColor = Theme::chevron(),
                                         .horizontalPadding = 14,
                                         .verticalPadding = 6};
    // From right to left they are drawn the other way round, as any brackets.
    const auto makeArrow = [&](const QString &text, const char *name, const QString &label) {
        auto *arrow = new ChromeButton(text, arrowStyle);
        arrow->setObjectName(QLatin1String(name));
        arrow->setAccessibleName(label);
        arrow->setToolTip(label);
        return arrow;
    };
    m_previousMonth = makeArrow(QStringLiteral("‹"), "previousMonth", L("Previous Month"));
    m_previousMonth->onClick = forwarding(&SidebarView::onPreviousMonth);
    m_nextMonth = makeArrow(QStringLiteral("›"), "nextMonth", L("Next Month"));
    m_nextMonth->onClick = forwarding(&SidebarView::onNextMonth);

    m_monthLabel = new ElidedLabel(monthTitleFont(), Theme::inkTitle(), Qt::ElideRight);
    m_monthLabel->setObjectName(QStringLiteral("monthLabel"));
    m_monthLabel->setMinimumWidth(1);
    m_monthLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_monthButton = new MonthButton;
    m_monthButton->setObjectName(QStringLiteral("monthButton"));
    m_monthButton->setToolTip(L("Year Calendar"));
    m_monthButton->onClick = forwarding(&SidebarView::onShowYearOverview);
    auto *inside = new QHBoxLayout(m_monthButton);
    inside->setContentsMargins(6, 2, 6, 2);
    inside->addWidget(m_monthLabel);

    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_previousMonth);
    layout->addStretch(1);
    layout->addWidget(m_monthButton);
    layout->addStretch(1);
    layout->addWidget(m_nextMonth);
    return header;
}

QLabel *SidebarView::addStatistic(QVBoxLayout *layout, const QString &label, const QString &valueName) {
    auto *name = new ElidedLabel(Theme::system(11.5), Theme::statLabel(), Qt::ElideRight);
    name->setText(label);
    // The label gives way, the value never does.
    name->setMinimumWidth(1);
    auto *value = new QLabel;
    value->setObjectName(valueName);
    value->setTextFormat(Qt::PlainText);
    value->setFont(Theme::mono(11.5));
    auto palette = value->palette();
    palette.setColor(QPalette::WindowText, Theme::inkMed());
    value->setPalette(palette);
    value->setFixedHeight(name->sizeHint().height());

    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(name);
    row->addStretch(1);
    row->addWidget(value);
    layout->addLayout(row);
    return value;
}

QWidget *SidebarView::buildIconBar() {
    auto *bar = new QWidget;
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const auto addIcon = [&](const char *name, const char *symbol, const QString &label, Intent intent) {
        if (layout->count() > 0)
            layout->addStretch(1);
        auto *button = new IconButton(QLatin1String(symbol), label);
        button->setObjectName(QLatin1String(name));
        button->onClick = forwarding(intent);
        layout->addWidget(button);
    };
    addIcon("searchButton", "magnifyingglass", L("Find"), &SidebarView::onShowSearch);
    addIcon("yearOverviewButton", "square.grid.3x3", L("Year Calendar"), &SidebarView::onShowYearOverview);
    addIcon("settingsButton", "gearshape", L("Settings"), &SidebarView::onShowSettings);
    return bar;
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

    const auto unknown = QStringLiteral("…");
    const auto &overview = model.overview;
    m_statDaysValue->setText(overview ? QString::number(overview->daysWithContent) + QStringLiteral(" / 365")
                                      : unknown);
    m_statEarliestValue->setText(!overview                ? unknown
                                 : overview->earliestYear ? QString::number(*overview->earliestYear)
                                                          : QStringLiteral("—"));
    m_statFilesValue->setText(overview ? QString::number(overview->fileCount) : unknown);
}

QSize SidebarView::sizeHint() const {
    return {preferredWidth, QWidget::sizeHint().height()};
}

void SidebarView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::panel());
    painter.fillRect(isRightToLeft() ? 0 : width() - 1, 0, 1, height(), Theme::border());
}

} // namespace diary
