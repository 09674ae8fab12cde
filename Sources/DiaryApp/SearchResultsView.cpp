// SPDX-License-Identifier: MIT
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/SearchResultsView.h>

#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace diary {

namespace {

constexpr int scrollStep = 24;

} // namespace

SearchStackLayout layoutSearchStack(const std::vector<int> &rowHeights, int width) {
    SearchStackLayout layout;
    int y = SearchStackLayout::topInset;
    for (const int height : rowHeights) {
        layout.rows.emplace_back(SearchStackLayout::sideInset, y, SearchStackLayout::rowWidth(width), height);
        y += height + SearchStackLayout::spacing;
    }
    layout.height =
        y + SearchStackLayout::bottomInset - (rowHeights.empty() ? 0 : SearchStackLayout::spacing);
    return layout;
}

SearchResultsView::SearchResultsView(QWidget *parent)
    : QScrollArea(parent), m_resultsStack(new QWidget), m_rowTimer(new QTimer(this)) {
    m_resultsStack->setObjectName(QStringLiteral("resultsStack"));
    setWidget(m_resultsStack);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setSingleStep(scrollStep);
    m_resultsStack->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    new QuietScrollBar(this);

    m_rowTimer->setSingleShot(true);
    m_rowTimer->setInterval(std::chrono::milliseconds(0));
    connect(m_rowTimer, &QTimer::timeout, this, [this] { addRows(rowsAtOnce); });
}

void SearchResultsView::update(Model model) {
    const bool hadFocus = focusedRow() < m_rows.size();
    m_model = std::move(model);
    if (hadFocus && m_model.rows.empty() && onLeave)
        onLeave();
    const auto old = std::exchange(m_rows, {});
    addRows(rowsAtOnce);
    if (hadFocus)
        focusFirstRow();
    // Only now, as Qt would give the keyboard of a hidden row to the next one. A row may be the one that
    // was just clicked and is not done with it.
    for (auto *row : old) {
        row->hide();
        row->deleteLater();
    }
    verticalScrollBar()->setValue(0);
}

bool SearchResultsView::focusFirstRow() {
    if (m_rows.empty())
        return false;
    focusRow(0);
    return true;
}

void SearchResultsView::addRows(std::size_t most) {
    const auto end = m_rows.size() + std::min(most, m_model.rows.size() - m_rows.size());
    // Asked for once, as they depend on the settings.
    const auto fonts = SearchRowView::Fonts::current();
    const auto begin = m_rows.size();
    for (auto index = begin; index < end; ++index) {
        auto *row = new SearchRowView(m_resultsStack);
        row->update(m_model.rows[index], fonts);
        row->onClick = [this, index] {
            if (onPick)
                onPick(index);
        };
        m_rows.push_back(row);
    }
    layOutRows();
    for (auto index = begin; index < end; ++index)
        m_rows[index]->show();
    if (end < m_model.rows.size())
        m_rowTimer->start();
    else
        m_rowTimer->stop();
}

void SearchResultsView::layOutRows() {
    const int width = viewport()->width();
    std::vector<int> heights;
    heights.reserve(m_rows.size());
    for (auto *row : m_rows)
        heights.push_back(row->layoutForWidth(SearchStackLayout::rowWidth(width)).height);
    const auto layout = layoutSearchStack(heights, width);
    for (std::size_t index = 0; index < m_rows.size(); ++index)
        m_rows[index]->setGeometry(layout.rows[index]);
    m_resultsStack->resize(width, layout.height);
}

std::size_t SearchResultsView::focusedRow() const {
    const auto found = std::find_if(m_rows.begin(), m_rows.end(), [](auto *row) { return row->hasFocus(); });
    return static_cast<std::size_t>(std::distance(m_rows.begin(), found));
}

void SearchResultsView::focusRow(std::size_t index) {
    auto *row = m_rows[index];
    row->setFocus(Qt::OtherFocusReason);
    ensureWidgetVisible(row, 0, SearchStackLayout::topInset);
}

// The row furthest from the given one that begins no further away than so many pixels; at least the next one.
std::size_t SearchResultsView::rowAtDistance(std::size_t from, int pixels) const {
    const int wanted = m_rows[from]->y() + pixels;
    auto index = from;
    if (pixels > 0) {
        while (index + 1 < m_rows.size() && (index == from || m_rows[index + 1]->y() <= wanted))
            ++index;
    } else {
        while (index > 0 && (index == from || m_rows[index - 1]->y() >= wanted))
            --index;
    }
    return index;
}

std::size_t SearchResultsView::rowForKey(int key, std::size_t from) const {
    const auto last = m_rows.size() - 1;
    const int page = viewport()->height();
    switch (key) {
    case Qt::Key_Down:
        return std::min(from + 1, last);
    case Qt::Key_Up:
        return from > 0 ? from - 1 : 0;
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    case Qt::Key_PageDown:
        return rowAtDistance(from, page);
    case Qt::Key_PageUp:
        return rowAtDistance(from, -page);
    default:
        return m_rows.size();
    }
}

// Keys come here from the row that has the keyboard, when it has no use for them.
void SearchResultsView::keyPressEvent(QKeyEvent *event) {
    const auto from = focusedRow();
    if (from == m_rows.size() || (event->modifiers() & ~Qt::KeypadModifier)) {
        event->ignore();
        return;
    }
    if (event->key() == Qt::Key_Up && from == 0) {
        if (onLeave)
            onLeave();
        return;
    }
    addRows(m_model.rows.size());
    const auto to = rowForKey(event->key(), from);
    if (to == m_rows.size())
        event->ignore();
    else
        focusRow(to);
}

void SearchResultsView::resizeEvent(QResizeEvent *event) {
    QScrollArea::resizeEvent(event);
    layOutRows();
}

} // namespace diary
