// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

#include <functional>

namespace diary {

// The editor of one entry: plain text in, plain text out, to the character.
class EntryTextEdit : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit EntryTextEdit(QWidget *parent = nullptr);

    // Only for what the user changed, never for `setText`.
    std::function<void(const QString &)> onTextChanged;

    // Starts a new undo history, unless the text is the one already shown. Caret and page stay where they
    // are, as far as the text reaches.
    void setText(const QString &text);

    // With every character kept, no-break spaces too, which toPlainText() would replace.
    QString text() const;

protected:
    void insertFromMimeData(const QMimeData *source) override;
    // Keeps the lines short enough to read, in the middle of a wide window.
    void resizeEvent(QResizeEvent *event) override;
    bool focusNextPrevChild(bool next) override;
};

} // namespace diary
