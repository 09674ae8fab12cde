// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/SearchRowView.h>

#include <QScrollArea>

#include <cstddef>
#include <functional>
#include <vector>

class QTimer;

namespace diary {

// Where the rows lie below each other, given their heights, in a stack of that width.
struct SearchStackLayout {
    static constexpr int topInset = 4;
    static constexpr int sideInset = 8;
    static constexpr int bottomInset = 8;
    static constexpr int spacing = 2;

    static int rowWidth(int stackWidth) { return stackWidth - 2 * sideInset; }

    std::vector<QRect> rows;
    int height = 0;
};

SearchStackLayout layoutSearchStack(const std::vector<int> &rowHeights, int width);

// The rows of a search, one below the other.
//
// The first rows are there at once, as many as any screen shows; the others follow before long, a few at a
// time, so that typing does not wait for hundreds of them. The arrow, page, Home and End keys walk from row
// to row.
class SearchResultsView : public QScrollArea {
    Q_OBJECT

public:
    struct Model {
        std::vector<SearchRowView::Model> rows;
    };

    explicit SearchResultsView(QWidget *parent = nullptr);

    // Starts again from the top. The keyboard, when a row has it, goes to the first of the new rows, or out.
    using QWidget::update;
    void update(Model model);

    // The index of a row that was clicked.
    std::function<void(std::size_t)> onPick;
    // The keyboard wants to go where it came from: Up in the first row, or the rows are gone.
    std::function<void()> onLeave;

    // False when there is no row.
    bool focusFirstRow();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    static constexpr std::size_t rowsAtOnce = 40;

    void addRows(std::size_t most);
    void layOutRows();
    std::size_t focusedRow() const;
    void focusRow(std::size_t index);
    // The row to go to; the number of rows for none.
    std::size_t rowForKey(int key, std::size_t from) const;
    std::size_t rowAtDistance(std::size_t from, int pixels) const;

    Model m_model;
    QWidget *m_resultsStack;
    QTimer *m_rowTimer; // the next few rows
    std::vector<SearchRowView *> m_rows;
};

} // namespace diary
