// SPDX-License-Identifier: MIT
#include <DiaryApp/AddYearCardView.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/GridNavigation.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>
#include <DiaryApp/YearRailView.h>

#include <QEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <optional>
#include <utility>

namespace diary {

namespace {

constexpr int titleTop = 26;
constexpr int scrollViewGap = 14;
constexpr int footBottom = 20;
constexpr int footRuleGap = 14;
constexpr double titleLetterSpacing = 1.47;
constexpr double footLineHeight = 1.3;
constexpr int cardMargin = 8; // beside the cards and below them
constexpr int cardSpacing = 8;
constexpr int wheelStep = 24;

} // namespace

YearRailLayout layoutYearRail(const YearRailMetrics &metrics, QSize rail) {
    constexpr int inset = YearRailLayout::sideInset;
    const int inner = std::max(0, rail.width() - 2 * inset);
    YearRailLayout layout;
    layout.leadingRule = QRect(0, 0, 1, rail.height());
    layout.title = QRect(inset, titleTop, std::min(metrics.title.width(), inner), metrics.title.height());
    layout.foot = QRect(inset, rail.height() - footBottom - metrics.foot.height(),
                        std::min(metrics.foot.width(), inner), metrics.foot.height());
    layout.footRule = QRect(1, layout.foot.top() - footRuleGap - 1, rail.width() - 1, 1);
    const int top = titleTop + metrics.title.height() + scrollViewGap;
    layout.scrollView = QRect(1, top, rail.width() - 1, std::max(0, layout.footRule.top() - top));
    return layout;
}

CardsStackLayout layoutCardsStack(const std::vector<int> &heights, int width) {
    CardsStackLayout layout;
    int y = 0;
    for (const int height : heights) {
        if (!layout.cards.empty())
            y += cardSpacing;
        layout.cards.emplace_back(cardMargin, y, width - 2 * cardMargin, height);
        y += height;
    }
    layout.height = y + cardMargin;
    return layout;
}

// The scrolled part. The cards are kept from one update to the next, so that a keystroke in the editor costs
// no more than what it changed; each shows what a new one would.
class YearRailView::CardsStack : public QWidget {
public:
    explicit CardsStack(QScrollArea *scrollView) : m_scrollView(scrollView) {
        setObjectName(QStringLiteral("cardsStack"));
        setAttribute(Qt::WA_OpaquePaintEvent);
        connect(scrollView->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
            for (auto *view : views())
                view->recheckPointer();
        });
    }

    // So many further cards follow, about as high as these.
    void update(const Model &model, std::size_t furtherCards = 0);
    void layOut();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    // All cards as they stand, from the top.
    std::vector<HoverView *> views() const;
    std::optional<std::size_t> focusedIndex() const;
    void keepFocus(std::size_t index, std::optional<std::int64_t> year);
    bool updateCards(const std::vector<Card> &models);
    bool updateAddCard(const Model &model);
    void takeIn(HoverView *view);
    void retire(HoverView *view);
    void bringInOrder();
    void showWhole(const QWidget *view);

    QScrollArea *m_scrollView;
    YearCardView::Fonts m_fonts;
    std::vector<YearCardView *> m_cards;
    AddYearCardView *m_addCard = nullptr;
    int m_furtherCards = 0;
};

void YearRailView::CardsStack::update(const Model &model, std::size_t furtherCards) {
    m_furtherCards = static_cast<int>(furtherCards);
    auto fonts = YearCardView::Fonts::current();
    // Equal fonts that share their data compare at once.
    if (fonts != m_fonts)
        m_fonts = std::move(fonts);

    const auto focused = focusedIndex();
    std::optional<std::int64_t> focusedYear;
    if (focused && *focused < m_cards.size())
        focusedYear = m_cards[*focused]->year();

    const bool haveCardsChanged = updateCards(model.cards);
    const bool hasAddCardChanged = updateAddCard(model);
    layOut();
    if (!haveCardsChanged && !hasAddCardChanged)
        return;
    bringInOrder();

    if (focused)
        keepFocus(*focused, focusedYear);
}

// The keyboard was at a card in this place, which showed this year, or none when it was the card to add one.
void YearRailView::CardsStack::keepFocus(std::size_t index, std::optional<std::int64_t> year) {
    const auto all = views();
    const auto showsYear = [&](const YearCardView *card) { return card->year() == year; };
    if (const auto now = focusedIndex(); now && (*now < m_cards.size() ? showsYear(m_cards[*now]) : !year))
        return;
    const auto card = std::find_if(m_cards.begin(), m_cards.end(), showsYear);
    if (card != m_cards.end())
        (*card)->setFocus(Qt::OtherFocusReason);
    else if (!all.empty())
        all[std::min(index, all.size() - 1)]->setFocus(Qt::OtherFocusReason);
}

// Whether other cards stand in other places now.
bool YearRailView::CardsStack::updateCards(const std::vector<Card> &models) {
    auto spare = m_cards;
    const auto take = [&](auto claim) -> YearCardView * {
        const auto found = std::find_if(spare.begin(), spare.end(), claim);
        return found == spare.end() ? nullptr : std::exchange(*found, nullptr);
    };
    std::vector<YearCardView *> cards;
    cards.reserve(models.size());
    // A year keeps its card, and with it the keyboard. Whatever is left over serves the other years.
    for (const auto &model : models)
        cards.push_back(take([&](const YearCardView *card) { return card && card->year() == model.year; }));
    for (auto &card : cards) {
        if (!card)
            card = take([](const YearCardView *other) { return other != nullptr; });
        if (!card) {
            card = new YearCardView(this);
            takeIn(card);
        }
    }
    for (auto *card : spare) {
        if (card)
            retire(card);
    }
    bool areOthers = cards != m_cards;
    for (std::size_t index = 0; index < cards.size(); ++index) {
        areOthers = areOthers || cards[index]->year() != models[index].year;
        cards[index]->update(models[index], m_fonts);
    }
    m_cards = std::move(cards);
    return areOthers;
}

bool YearRailView::CardsStack::updateAddCard(const Model &model) {
    const bool isOffered = !model.addYears.empty() && model.onAddYear;
    const bool isChanged = isOffered != (m_addCard != nullptr);
    if (!isOffered) {
        if (m_addCard)
            retire(std::exchange(m_addCard, nullptr));
        return isChanged;
    }
    if (!m_addCard) {
        m_addCard = new AddYearCardView(this);
        takeIn(m_addCard);
    }
    m_addCard->update({L("Add a past year"), model.addYears, model.onAddYear});
    return isChanged;
}

void YearRailView::CardsStack::takeIn(HoverView *view) {
    view->installEventFilter(this);
    // It gets its size when all are laid out; without any it would ask for the one it would like, which takes
    // the fonts of texts that may stand below what is seen.
    view->resize(0, 0);
    view->show();
}

void YearRailView::CardsStack::retire(HoverView *view) {
    // It may be the one that is being clicked. Until it is gone it must not be found by name.
    view->removeEventFilter(this);
    view->hide();
    view->setObjectName(QString());
    view->deleteLater();
}

void YearRailView::CardsStack::bringInOrder() {
    QWidget *previous = this;
    for (auto *view : views()) {
        // The order among the children is the one in which assistive technologies read them.
        view->raise();
        setTabOrder(previous, view);
        previous = view;
    }
    for (auto *card : m_cards)
        card->setObjectName(QStringLiteral("yearCard%1").arg(card->year()));
    if (m_addCard)
        m_addCard->setObjectName(QStringLiteral("addYearCard"));
}

void YearRailView::CardsStack::layOut() {
    // The viewport learns its width only when it is shown; it has all of the area.
    const int width = m_scrollView->width();
    const auto all = views();
    std::vector<int> heights;
    heights.reserve(all.size());
    for (auto *card : m_cards)
        heights.push_back(card->layoutForWidth(width - 2 * cardMargin).height);
    if (m_addCard)
        heights.push_back(AddYearCardView::cardHeight);
    const auto layout = layoutCardsStack(heights, width);
    bool hasMoved = false;
    for (std::size_t index = 0; index < all.size(); ++index) {
        hasMoved = hasMoved || all[index]->geometry() != layout.cards[index];
        all[index]->setGeometry(layout.cards[index]);
    }
    const int further =
        m_cards.empty() ? 0 : m_furtherCards * layout.height / static_cast<int>(m_cards.size());
    resize(width, layout.height + further);
    if (hasMoved) {
        QWidget::update(); // the shadows
        for (auto *view : all)
            view->recheckPointer();
    }
}

std::vector<HoverView *> YearRailView::CardsStack::views() const {
    std::vector<HoverView *> views(m_cards.begin(), m_cards.end());
    if (m_addCard)
        views.push_back(m_addCard);
    return views;
}

std::optional<std::size_t> YearRailView::CardsStack::focusedIndex() const {
    const auto all = views();
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (all[index]->hasFocus())
            return index;
    }
    return std::nullopt;
}

bool YearRailView::CardsStack::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::FocusIn)
        showWhole(static_cast<QWidget *>(watched));
    return QWidget::eventFilter(watched, event);
}

void YearRailView::CardsStack::keyPressEvent(QKeyEvent *event) {
    const auto all = views();
    const auto focused = focusedIndex();
    const auto target = focused ? gridTarget(*event, *focused, all.size(), 1) : std::nullopt;
    if (!target) {
        QWidget::keyPressEvent(event);
        return;
    }
    all[*target]->setFocus(Qt::TabFocusReason);
    showWhole(all[*target]);
}

void YearRailView::CardsStack::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Theme::panel());
    constexpr int reach = 12; // of the widest shadow
    for (const auto *card : m_cards) {
        if (card->geometry().adjusted(-reach, -reach, reach, reach).intersects(event->rect()))
            card->paintShadow(painter);
    }
}

void YearRailView::CardsStack::showWhole(const QWidget *view) {
    auto *bar = m_scrollView->verticalScrollBar();
    // The beginning of a card that is taller than the rail.
    bar->setValue(std::max(bar->value(), view->geometry().bottom() + 1 + cardMargin - bar->pageStep()));
    bar->setValue(std::min(bar->value(), view->y()));
}

YearRailView::YearRailView(QWidget *parent) : QWidget(parent) {
    setAccessibleName(L("On This Day"));
    m_titleLabel = new ElidedLabel(Theme::mono(10.5, Theme::Weight::Regular, titleLetterSpacing),
                                   Theme::sectionHead(), Qt::ElideRight, this);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setText(L("On This Day"));

    m_scrollView = new QScrollArea(this);
    m_scrollView->setObjectName(QStringLiteral("scrollView"));
    m_scrollView->setFrameShape(QFrame::NoFrame);
    m_scrollView->setFocusPolicy(Qt::NoFocus);
    m_scrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollView->verticalScrollBar()->setSingleStep(wheelStep);
    m_scrollView->viewport()->setAutoFillBackground(false);
    m_cardsStack = new CardsStack(m_scrollView);
    m_scrollView->setWidget(m_cardsStack);
    m_cardsStack->setAutoFillBackground(false);
    new QuietScrollBar(m_scrollView);

    m_footLabel = new ThemeLabel(QString(),
                                 {.font = Theme::system(11),
                                  .color = Theme::railFoot(),
                                  .lineHeightMultiple = footLineHeight,
                                  .wraps = true},
                                 this);
    m_footLabel->setObjectName(QStringLiteral("footLabel"));
    layOut();
}

void YearRailView::update(const Model &model) {
    m_footLabel->setText(model.footer);
    layOut();
    if (!m_whole) {
        m_cardsStack->update(model);
        return;
    }
    m_whole = model;
    const auto seen = inSight(model);
    m_cardsStack->update(seen, model.cards.size() - seen.cards.size());
}

void YearRailView::showOnlyCardsInSight() {
    m_whole.emplace();
}

void YearRailView::showAllCards() {
    if (const auto whole = std::exchange(m_whole, std::nullopt))
        m_cardsStack->update(*whole);
}

YearRailView::Model YearRailView::inSight(Model model) const {
    // No card is lower than one without texts.
    const int leastHeight = layoutYearCard({}, 0).height + cardSpacing;
    const auto most =
        1 + static_cast<std::size_t>(m_scrollView->height()) / static_cast<std::size_t>(leastHeight);
    if (model.cards.size() > most) {
        model.cards.resize(most);
        model.addYears.clear(); // below them
    }
    return model;
}

void YearRailView::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Theme::panel());
    const auto layout = currentLayout();
    painter.fillRect(layout.leadingRule, Theme::border());
    painter.fillRect(layout.footRule, Theme::border());
}

void YearRailView::resizeEvent(QResizeEvent *) {
    layOut();
    m_cardsStack->layOut();
}

YearRailLayout YearRailView::currentLayout() const {
    const int inner = width() - 2 * YearRailLayout::sideInset;
    const QSize foot(m_footLabel->sizeHint().width(), m_footLabel->heightForWidth(inner));
    return layoutYearRail({m_titleLabel->sizeHint(), foot}, size());
}

void YearRailView::layOut() {
    const auto layout = currentLayout();
    m_titleLabel->setGeometry(layout.title);
    m_scrollView->setGeometry(layout.scrollView);
    m_footLabel->setGeometry(layout.foot);
}

} // namespace diary
