// SPDX-License-Identifier: MIT
//
// The application's own work while the user types. Prints one share of a frame a line, with its aim.

#include "FastestTimes.h"

#include <DiaryApp/EntryView.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/Theme.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>

#include <chrono>
#include <vector>

namespace {

constexpr double fontSize = 16.5;
constexpr qsizetype usualEntry = 2'000; // characters
constexpr qsizetype longEntry = 100'000;

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

QString entryOf(qsizetype length) {
    return plainParagraph.repeated(length / plainParagraph.size());
}

diary::EntryView::Model modelOf(const QString &draft) {
    diary::EntryView::Model model;
    model.block.kind = diary::EntryView::Model::Block::Editor{
        .draft = draft, .placeholder = {}, .textColor = diary::Theme::ink()};
    return model;
}

void showAndPaint(QWidget &window) {
    window.resize(852, 800);
    window.show();
    QApplication::processEvents();
}

void press(QWidget *editor, int key, const QString &text) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(editor, &down);
    QApplication::processEvents();
}

// In the middle of a line, each letter taken back unmeasured: the text stays as long as it is.
void typeAndPaint(benchmark::State &state, QWidget *editor) {
    editor->setFocus();
    QApplication::processEvents();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        press(editor, Qt::Key_X, QStringLiteral("x"));
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        press(editor, Qt::Key_Backspace, {});
    }
}

void typeOnThePage(benchmark::State &state, qsizetype length) {
    diary::EntryView page;
    page.update(modelOf(entryOf(length)));
    showAndPaint(page);
    auto cursor = page.textView()->textCursor();
    cursor.setPosition(static_cast<int>(3 * plainParagraph.size() + 10));
    page.textView()->setTextCursor(cursor);
    typeAndPaint(state, page.textView());
}

void keystrokeOnThePage(benchmark::State &state) {
    typeOnThePage(state, usualEntry);
}

void keystrokeInALongEntry(benchmark::State &state) {
    typeOnThePage(state, longEntry);
}

void keystrokeInABareEditor(benchmark::State &state) {
    QPlainTextEdit editor;
    editor.document()->setDefaultFont(diary::Theme::serif(fontSize));
    editor.setPlainText(entryOf(usualEntry));
    showAndPaint(editor);
    auto cursor = editor.textCursor();
    cursor.setPosition(static_cast<int>(3 * plainParagraph.size() + 10));
    editor.setTextCursor(cursor);
    typeAndPaint(state, &editor);
}

void fenceOnThePage(benchmark::State &state) {
    diary::EntryView page;
    page.update(modelOf(QStringLiteral("``\n") + entryOf(longEntry)));
    showAndPaint(page);
    auto cursor = page.textView()->textCursor();
    cursor.setPosition(2);
    page.textView()->setTextCursor(cursor);
    page.textView()->setFocus();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        press(page.textView(), Qt::Key_QuoteLeft, QStringLiteral("`"));
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        press(page.textView(), Qt::Key_Backspace, {});
    }
}

void sourceOfAMegabyte(benchmark::State &state) {
    diary::EntryView page;
    page.update(modelOf(entryOf(usualEntry)));
    showAndPaint(page);
    auto source = modelOf({});
    source.sourceText = entryOf(1'000'000);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        page.update(source);
        QApplication::processEvents();
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        page.update(modelOf({}));
        QApplication::processEvents();
    }
}

BENCHMARK(keystrokeOnThePage)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(keystrokeInABareEditor)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(keystrokeInALongEntry)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(fenceOnThePage)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(sourceOfAMegabyte)->Unit(benchmark::kMillisecond)->UseManualTime();
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
    times.printRatio("keystroke to painted, page / bare QPlainTextEdit", "keystrokeOnThePage",
                     "keystrokeInABareEditor", "1.5");
    times.printRatio("the same, 100,000 characters / 2,000", "keystrokeInALongEntry", "keystrokeOnThePage",
                     "1.5");
    times.printShareOfAFrame("code fence above 100,000 characters, page / a frame", "fenceOnThePage", "1.0");
    times.printShareOfAFrame("source of a megabyte shown / a frame", "sourceOfAMegabyte", "6.0");
    return 0;
}
