// SPDX-License-Identifier: MIT
//
// The application's own work while the user types. Prints one share of a frame a line, with its aim.

#include "FastestTimes.h"

#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/Theme.h>

#include <QApplication>
#include <QPlainTextDocumentLayout>
#include <QTextCursor>
#include <QTextDocument>

#include <chrono>
#include <vector>

namespace {

constexpr double fontSize = 16.5;
constexpr qsizetype longEntry = 100'000; // characters

const QString plainParagraph = QStringLiteral("An ordinary paragraph, as most of a diary is written.\n");
const QString styledParagraph = QStringLiteral(
    "Some **bold** and *slanted* words, `code`, [a link](https://example.org) and ~~more~~.\n");

// Types the backtick that turns everything below into code. The layout breaks no lines: how long that takes
// is the editor's affair.
void openAFence(benchmark::State &state, const QString &paragraph) {
    QTextDocument document;
    document.setDefaultFont(diary::Theme::serif(fontSize));
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    new diary::MarkdownHighlighter(diary::Theme::serif(fontSize), diary::Theme::ink(), &document);
    document.setPlainText(QStringLiteral("``\n") + paragraph.repeated(longEntry / paragraph.size()));
    QTextCursor cursor(&document);
    cursor.setPosition(2);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        cursor.insertText(QStringLiteral("`"));
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        cursor.deletePreviousChar();
    }
}

void fenceAbovePlainText(benchmark::State &state) {
    openAFence(state, plainParagraph);
}

void fenceAboveStyledText(benchmark::State &state) {
    openAFence(state, styledParagraph);
}

BENCHMARK(fenceAbovePlainText)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(fenceAboveStyledText)->Unit(benchmark::kMillisecond)->UseManualTime();

} // namespace

int main(int argc, char *argv[]) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    std::vector<const char *> options{argv[0], "--benchmark_repetitions=5", "--benchmark_min_time=0.2"};
    int count = static_cast<int>(options.size());
    benchmark::Initialize(&count, const_cast<char **>(options.data()));
    diary::FastestTimes times;
    benchmark::RunSpecifiedBenchmarks(&times);
    times.printShareOfAFrame("code fence above 100,000 characters / a frame", "fenceAbovePlainText", "1.0");
    times.printShareOfAFrame("the same, with marks in every line / a frame", "fenceAboveStyledText", "1.0");
    return 0;
}
