// SPDX-License-Identifier: MIT
#include <DiaryApp/EntryTextEdit.h>

#include <QMimeData>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace diary {

namespace {

constexpr int columnWidth = 780;

} // namespace

EntryTextEdit::EntryTextEdit(QWidget *parent) : QPlainTextEdit(parent) {
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (onTextChanged)
            onTextChanged(text());
    });
}

void EntryTextEdit::setText(const QString &text) {
    if (text == this->text())
        return;
    const QSignalBlocker quiet(this);
    const int scrolledTo = verticalScrollBar()->value();
    const int caret = textCursor().position();
    setPlainText(text);
    auto cursor = textCursor();
    cursor.setPosition(std::min(caret, document()->characterCount() - 1));
    setTextCursor(cursor);
    verticalScrollBar()->setValue(scrolledTo);
}

QString EntryTextEdit::text() const {
    auto text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    return text;
}

void EntryTextEdit::insertFromMimeData(const QMimeData *source) {
    if (source->hasText())
        insertPlainText(source->text());
}

void EntryTextEdit::resizeEvent(QResizeEvent *event) {
    const int margin = std::max(0, (width() - columnWidth) / 2);
    setViewportMargins(margin, 0, margin, 0);
    QPlainTextEdit::resizeEvent(event);
}

bool EntryTextEdit::focusNextPrevChild(bool next) {
    // Tab is text here; Shift+Tab is the keyboard's way out.
    setTabChangesFocus(!next);
    return QPlainTextEdit::focusNextPrevChild(next);
}

} // namespace diary
