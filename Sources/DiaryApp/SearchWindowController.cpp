// SPDX-License-Identifier: MIT
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/RuleView.h>
#include <DiaryApp/SearchResultsView.h>
#include <DiaryApp/SearchWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>

#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QShortcut>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace diary {

namespace {

constexpr QSize initialSize{460, 520};
constexpr QSize minimumSize{380, 300};
constexpr int fieldInset = 14;
constexpr int fieldHeight = 30;
constexpr int fieldTextInset = 10;
constexpr double fieldCornerRadius = 7;
constexpr int resultsGap = 10;
constexpr int resultsInset = 6;
constexpr int emptyLabelGap = 60;
constexpr int awaitingInset = 26;
constexpr int awaitingMargin = 8; // above and below

// A text field with round corners.
class SearchField : public QLineEdit {
public:
    explicit SearchField(QWidget *parent) : QLineEdit(parent) {
        setFrame(false);
        setFont(Theme::system(13));
        setTextMargins(fieldTextInset, 0, fieldTextInset, 0);
        auto colors = palette();
        colors.setColor(QPalette::Base, Qt::transparent);
        setPalette(colors);
    }

protected:
    void paintEvent(QPaintEvent *event) override {
        {
            QPainter painter(this);
            paintBorderedBox(painter, rect(), fieldCornerRadius, Theme::cardBgActive(),
                             hasFocus() ? Theme::cardBorderHover() : Theme::cardBorder());
        }
        QLineEdit::paintEvent(event);
    }
};

bool isBlank(const QString &text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); });
}

} // namespace

SearchWindowLayout layoutSearchWindow(const SearchWindowMetrics &metrics, const QSize &content) {
    SearchWindowLayout layout;
    layout.field = QRect(fieldInset, fieldInset, content.width() - 2 * fieldInset, metrics.fieldHeight);
    const int fieldBottom = fieldInset + metrics.fieldHeight;
    layout.emptyLabel =
        QRect(fieldInset, fieldBottom + emptyLabelGap, layout.field.width(), metrics.emptyLabelHeight);
    const int resultsTop = fieldBottom + resultsGap;
    int resultsBottom = content.height() - resultsInset;
    if (metrics.awaitingHeight > 0) {
        const int top = content.height() - awaitingMargin - metrics.awaitingHeight;
        layout.awaiting =
            QRect(awaitingInset, top, content.width() - 2 * awaitingInset, metrics.awaitingHeight);
        layout.divider = QRect(0, top - awaitingMargin - 1, content.width(), 1);
        resultsBottom = layout.divider.top();
    }
    layout.results = QRect(resultsInset, resultsTop, content.width() - 2 * resultsInset,
                           std::max(0, resultsBottom - resultsTop));
    return layout;
}

SearchWindowController::SearchWindowController(DiaryStore &store, Clock &clock)
    : m_store(store),
      m_searchTimer(clock.makeTimer([this] { runSearch(); })),
      m_window(std::make_unique<QWidget>()) {
    buildWindow();
    addShortcuts();
}

SearchWindowController::~SearchWindowController() {
    dropSearch();
    m_window->removeEventFilter(this);
    m_searchField->removeEventFilter(this);
}

void SearchWindowController::buildWindow() {
    m_window->setObjectName(QStringLiteral("DiarySearchWindow"));
    m_window->setWindowTitle(L("Find"));
    m_window->setAttribute(Qt::WA_QuitOnClose, false);
    m_window->setMinimumSize(minimumSize);
    auto colors = m_window->palette();
    colors.setColor(QPalette::Window, Theme::paper());
    m_window->setPalette(colors);

    m_searchField = new SearchField(m_window.get());
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(L("SearchPlaceholder"));
    m_searchField->setAccessibleName(L("Search"));
    // Not only what is typed: assistive technologies and input by voice change the text too.
    connect(m_searchField, &QLineEdit::textChanged, this, [this] { queryChanged(); });

    m_results = new SearchResultsView(m_window.get());
    m_results->setObjectName(QStringLiteral("results"));
    m_results->setAccessibleName(L("Search Results"));
    m_results->onPick = [this](std::size_t index) { pick(index); };
    m_results->onLeave = [this] { m_searchField->setFocus(Qt::OtherFocusReason); };

    m_emptyLabel = new QLabel(m_window.get());
    m_emptyLabel->setObjectName(QStringLiteral("emptyLabel"));
    m_emptyLabel->setFont(Theme::system(12));
    m_emptyLabel->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    auto emptyColors = m_emptyLabel->palette();
    emptyColors.setColor(QPalette::WindowText, Theme::statLabel());
    m_emptyLabel->setPalette(emptyColors);
    m_emptyLabel->hide();

    m_awaitingLabel = new ElidedLabel(Theme::system(11), Theme::statusText(), Qt::ElideRight, m_window.get());
    m_awaitingLabel->setObjectName(QStringLiteral("awaitingLabel"));
    m_awaitingLabel->hide();
    m_awaitingDivider = new RuleView(Theme::borderSoft(), Qt::Horizontal, m_window.get());
    m_awaitingDivider->hide();

    m_searchField->installEventFilter(this);
    m_window->installEventFilter(this);
    m_window->resize(initialSize);
    layOut();
}

void SearchWindowController::addShortcuts() {
    for (const QKeySequence &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        auto *shortcut = new QShortcut(keys, m_window.get());
        connect(shortcut, &QShortcut::activated, m_window.get(), &QWidget::close);
    }
}

void SearchWindowController::layOut() {
    SearchWindowMetrics metrics;
    metrics.fieldHeight = fieldHeight;
    metrics.emptyLabelHeight = m_emptyLabel->sizeHint().height();
    metrics.awaitingHeight = m_awaitingLabel->isHidden() ? 0 : m_awaitingLabel->sizeHint().height();
    const auto layout = layoutSearchWindow(metrics, m_window->size());
    m_searchField->setGeometry(layout.field);
    m_results->setGeometry(layout.results);
    m_emptyLabel->setGeometry(layout.emptyLabel);
    m_awaitingLabel->setGeometry(layout.awaiting);
    m_awaitingDivider->setGeometry(layout.divider);
}

void SearchWindowController::present() {
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    m_searchField->setFocus();
    m_searchField->selectAll();
    // Closing may have kept a query from being answered.
    if (m_searchField->text() != m_shownQuery)
        queryChanged();
}

void SearchWindowController::setQuery(const QString &text) {
    m_searchField->setText(text);
    queryChanged();
}

void SearchWindowController::queryChanged() {
    dropSearch();
    if (m_window->isVisible())
        m_searchTimer->start(searchDelay);
}

void SearchWindowController::dropSearch() {
    m_searchTimer->stop();
    m_search.request_stop();
    m_isSearching = false;
    m_opensFirst = false;
}

void SearchWindowController::runSearch() {
    const bool opensFirst = m_opensFirst;
    dropSearch();
    const auto query = m_searchField->text();
    if (isBlank(query)) {
        show(query, {});
        return;
    }
    m_isSearching = true;
    m_opensFirst = opensFirst;
    m_search = std::stop_source();
    m_store.searchEntriesInBackground(toUtf8(query), mostResults, m_search.get_token(),
                                      [this, query](const auto &result) { show(query, result); });
}

void SearchWindowController::show(const QString &query, DiaryStore::SearchResult result) {
    m_isSearching = false;
    m_shownQuery = query;
    m_hits = std::move(result.hits);
    const bool hasQuery = !isBlank(query);
    m_emptyLabel->setText(L("SearchNoResults"));
    m_emptyLabel->setVisible(hasQuery && m_hits.empty());
    tellCounts(hasQuery, result.awaitingDownload.size());
    layOut();

    const auto utf8 = toUtf8(query);
    SearchResultsView::Model model;
    for (const auto &hit : m_hits)
        model.rows.push_back(SearchRowView::Model::of(hit, utf8));
    m_results->update(std::move(model));
    if (std::exchange(m_opensFirst, false))
        pick(0);
}

void SearchWindowController::tellCounts(bool hasQuery, std::size_t awaiting) {
    const auto awaitingText = L("Days not yet downloaded: %d", awaiting);
    m_awaitingLabel->setText(awaitingText);
    m_awaitingLabel->setVisible(hasQuery && awaiting > 0);
    m_awaitingDivider->setVisible(hasQuery && awaiting > 0);
    // A screen reader says a new description of what has the keyboard, which is the field while one types.
    QStringList told;
    if (hasQuery)
        told += m_hits.empty() ? L("SearchNoResults") : L("Entries found: %d", m_hits.size());
    if (hasQuery && awaiting > 0)
        told += awaitingText;
    const auto description = told.join(QStringLiteral(", "));
    m_searchField->setAccessibleDescription(description);
    m_results->setAccessibleDescription(description);
}

void SearchWindowController::openFirst() {
    if (!m_searchTimer->isActive() && !m_isSearching) {
        pick(0);
        return;
    }
    // What is shown answers another query than the one that Enter was pressed for.
    m_opensFirst = true;
    if (m_searchTimer->isActive())
        runSearch();
}

void SearchWindowController::pick(std::size_t index) {
    if (index >= m_hits.size())
        return;
    const QPointer<SearchWindowController> self = this;
    const auto hit = m_hits[index];
    // A copy, as the controller may be gone before the action ends.
    if (const auto action = onPick)
        action(hit.monthDay, hit.year);
    if (self)
        m_window->close();
}

bool SearchWindowController::fieldKeyPressed(int key) {
    switch (key) {
    case Qt::Key_Down:
        m_results->focusFirstRow();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        openFirst();
        return true;
    default:
        return false;
    }
}

bool SearchWindowController::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_searchField && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!(key->modifiers() & ~Qt::KeypadModifier) && fieldKeyPressed(key->key()))
            return true;
    }
    if (watched == m_window.get() && event->type() == QEvent::Resize)
        layOut();
    // A spontaneous event tells of a window that is minimised or covered.
    if (watched == m_window.get() && event->type() == QEvent::Hide && !event->spontaneous())
        dropSearch();
    return QObject::eventFilter(watched, event);
}

} // namespace diary
