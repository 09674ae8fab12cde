// SPDX-License-Identifier: MIT
//
// The search window against the search itself: search-window-benchmark VAULT
// Prints one line a query: the time from the last letter typed to the first row painted, against the kit's
// own search and the wait for another letter; and the longest that one event kept the main thread, against a
// frame.

#include "WatchedApplication.h"

#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/SearchRowView.h>
#include <DiaryApp/SearchWindowController.h>
#include <DiaryKit/LinuxCloudFiles.h>

#include <QLineEdit>
#include <QTest>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

using diary::DiaryStore;
using diary::SearchRowView;
using diary::SearchWindowController;
using diary::benchmarks::WatchedApplication;
using Clock = WatchedApplication::Clock;
using Milliseconds = WatchedApplication::Milliseconds;

constexpr int rounds = 9;
constexpr Milliseconds frame = WatchedApplication::frame;

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
    return values[rounds / 2];
}

// Watches when a row is painted, too.
class WatchedSearch : public WatchedApplication {
public:
    using WatchedApplication::WatchedApplication;

    std::optional<Clock::time_point> firstRowPainted;

protected:
    void wasHandled(QObject *receiver, const QEvent &event, Clock::time_point end) override {
        if (event.type() == QEvent::Paint && !firstRowPainted && qobject_cast<SearchRowView *>(receiver))
            firstRowPainted = end;
    }
};

Milliseconds kitSearch(const std::filesystem::path &vault, const std::string &query) {
    const auto start = Clock::now();
    DiaryStore::search(vault, DiaryStore::dayFiles(vault), query, SearchWindowController::mostResults,
                       diary::LinuxCloudFiles());
    return Clock::now() - start;
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc != 2) {
        std::fputs("usage: search-window-benchmark VAULT\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    WatchedSearch application(argc, argv);
    const std::filesystem::path vault = argv[1];
    diary::SystemClock clock;
    diary::QtExecutor executor;
    DiaryStore store(vault, {.executor = &executor});
    SearchWindowController controller(store, clock);
    controller.present();
    auto *field = controller.window()->findChild<QLineEdit *>(QStringLiteral("searchField"));
    if (!field || !QTest::qWaitForWindowActive(controller.window()))
        return 1;

    struct Query {
        const char *name;
        const char *text;
    };
    constexpr std::array<Query, 5> queries{{{"one place", "zephyr"},
                                            {"common word", "garden"},
                                            {"common Cyrillic word", "дождь"},
                                            {"common Han word", "咖啡"},
                                            {"one letter", "e"}}};
    for (const auto &query : queries) {
        std::vector<double> shown;
        std::vector<double> alone;
        std::vector<double> longest;
        const auto letters = QString::fromUtf8(query.text);
        for (int round = 0; round < rounds; ++round) {
            alone.push_back(kitSearch(vault, query.text).count());
            // The rows of the last round go first.
            controller.setQuery({});
            controller.runSearch();
            QCoreApplication::processEvents();
            application.firstRowPainted.reset();
            application.longestEvent = {};
            const auto start = Clock::now();
            for (const auto letter : letters)
                QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, QString(letter), Qt::NoModifier);
            // QTest::qWaitFor() sleeps between its looks.
            while (!application.firstRowPainted)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            shown.push_back(Milliseconds(*application.firstRowPainted - start).count());
            // The rows that come after the first ones.
            QTest::qWait(50);
            longest.push_back(application.longestEvent.count());
        }
        const double wait = Milliseconds(SearchWindowController::searchDelay).count();
        const std::string name = query.name;
        const double withSearch = wait + median(alone);
        std::printf("%-52s %8.2f %8.1f   (%.1f ms / %.1f ms)\n",
                    ("search window, " + name + ": shown / search").c_str(), median(shown) / withSearch, 1.3,
                    median(shown), withSearch);
        const double longestOfAll = *std::max_element(longest.begin(), longest.end());
        std::printf("%-52s %8.2f %8.1f   (%.1f ms / %.1f ms)\n",
                    ("search window, " + name + ": longest event / frame").c_str(),
                    longestOfAll / frame.count(), 1.0, longestOfAll, frame.count());
    }
    return 0;
}
