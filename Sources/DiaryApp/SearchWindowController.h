// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>
#include <DiaryKit/DiaryStore.h>

#include <QObject>
#include <QRect>
#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

class QEvent;
class QLabel;
class QLineEdit;
class QWidget;

namespace diary {

class ElidedLabel;
class RuleView;
class SearchResultsView;

// What the parts of the search window take.
struct SearchWindowMetrics {
    int fieldHeight = 0;
    int emptyLabelHeight = 0;
    int awaitingHeight = 0; // 0 while there is nothing to say
};

struct SearchWindowLayout {
    QRect field;
    QRect results;
    QRect emptyLabel;
    QRect divider; // between results and the line below
    QRect awaiting;
};

SearchWindowLayout layoutSearchWindow(const SearchWindowMetrics &metrics, const QSize &content);

// The window in which words are typed and the entries that have them are shown meanwhile, to be picked.
//
// Searches run in the background, a moment after the last letter; typing on drops the search under way, so
// that what is shown is never the answer to an older question than the last one answered. A closed window
// keeps its text and rows and does not search. Main thread only; store and clock must outlive it.
class SearchWindowController : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds searchDelay{200};
    static constexpr int mostResults = 200;

    // Shows nothing yet.
    SearchWindowController(DiaryStore &store, Clock &clock);
    ~SearchWindowController() override;

    // The entry that was picked; the window closes after. May destroy the controller.
    std::function<void(MonthDay, std::int64_t)> onPick;

    QWidget *window() const { return m_window.get(); }

    // In front of the other windows, with the field ready for another query.
    void present();
    // As if it had been typed.
    void setQuery(const QString &text);
    // Searches now for what the field holds.
    void runSearch();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildWindow();
    void addShortcuts();
    void layOut();
    bool fieldKeyPressed(int key);
    void queryChanged();
    void dropSearch();
    void openFirst();
    void show(const QString &query, DiaryStore::SearchResult result);
    void tellCounts(bool hasQuery, std::size_t awaiting);
    void pick(std::size_t index);

    DiaryStore &m_store;
    std::unique_ptr<Timer> m_searchTimer;
    std::stop_source m_search; // the search under way
    bool m_isSearching = false;
    bool m_opensFirst = false; // as soon as the search under way has found it
    QString m_shownQuery;      // whose rows are shown
    std::vector<DiaryStore::SearchHit> m_hits;

    std::unique_ptr<QWidget> m_window;
    QLineEdit *m_searchField = nullptr;
    SearchResultsView *m_results = nullptr;
    QLabel *m_emptyLabel = nullptr;
    ElidedLabel *m_awaitingLabel = nullptr;
    RuleView *m_awaitingDivider = nullptr;
};

} // namespace diary
