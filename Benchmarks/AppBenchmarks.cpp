// SPDX-License-Identifier: MIT
//
// The application's own work while the user types. Prints one share of a frame a line, with its aim.

#include "FastestTimes.h"

#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/Theme.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

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

// Two days whose files are a megabyte each: 500 years of 2,000 characters.
void openingADayOfAMegabyte(benchmark::State &state) {
    const auto folder = std::filesystem::temp_directory_path() / ("tavelo-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    for (const auto *name : {"03-14", "03-15"}) {
        std::ofstream file(folder / (std::string(name) + ".md"));
        file << "# " << name << "\n";
        for (int year = 1500; year < 2000; ++year)
            file << "\n## " << year << "\n\n" << entryOf(usualEntry).toStdString() << "\n";
    }
    {
        diary::SystemClock clock;
        diary::DesktopFileManager fileManager;
        diary::MainWindowController controller(std::make_unique<diary::DiaryStore>(folder), clock,
                                               fileManager);
        controller.showWindow();
        QApplication::processEvents();
        std::int64_t day = 14;
        for (auto _ : state) {
            day = 29 - day;
            const auto start = std::chrono::steady_clock::now();
            controller.session().open({3, day});
            state.SetIterationTime(
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
            QApplication::processEvents();
        }
    }
    std::filesystem::remove_all(folder);
}

BENCHMARK(openingADayOfAMegabyte)->Unit(benchmark::kMillisecond)->UseManualTime();
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
    // 30 ms.
    times.printShareOfAFrame("opening a day of a megabyte / a frame", "openingADayOfAMegabyte", "1.9");
    times.printShareOfAFrame("source of a megabyte shown / a frame", "sourceOfAMegabyte", "6.0");
    return 0;
}
