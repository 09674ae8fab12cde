// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QRect>
#include <QRectF>
#include <QString>
#include <QTextEdit>

#include <functional>
#include <memory>

class QMimeData;
class QSyntaxHighlighter;

namespace diary {

class RhythmLayoutManager;

// A plain-text editor that never scrolls: it is as high as its text and leaves the scrolling to the page that
// it stands on. Its lines keep a fixed rhythm, whatever fonts a highlighter styles them with.
//
// The text is what was typed, to the character; styling is no part of it, nor of what can be undone.
class GrowingTextView : public QTextEdit {
    Q_OBJECT

public:
    // The size is the body font's, in logical pixels.
    static GrowingTextView *make(double fontSize, const QColor &textColor, QWidget *parent = nullptr);

    // With the whole text; only for what the user changed, never for `setText`.
    std::function<void(const QString &)> onTextChanged;
    // Where the user's caret now is, in this view's coordinates.
    std::function<void(const QRect &)> onCaretMoved;

    int fixedLineHeight() const;

    // Starts a new undo history, unless the text is the one already shown. The caret stays where it is, as
    // far as the text reaches.
    void setText(const QString &text);
    QString text() const;

    // Neither pointer nor keyboard nor assistive technologies notice an inert view; the latter only when it
    // is inert before it has a text.
    bool isInert() const { return m_isInert; }
    void setInert(bool isInert);

    // Styles the text from now on; belongs to this view's document.
    void setHighlighter(std::unique_ptr<QSyntaxHighlighter> highlighter);

    // At least the height of two lines.
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    // At once, though it is not shown yet, so that its text is laid out once.
    void takeWidth(int width);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, leastHeight}; }

    QRect caretRect() const;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    static constexpr int leastHeight = 76;

    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    explicit GrowingTextView(QWidget *parent);

    Q_SLOT void repaintAround(const QRectF &rect);
    bool moveFocus(bool next);
    void takeIn(int from, int removed, int added);
    void textDidChange();
    void caretDidMove();

    RhythmLayoutManager *m_layoutManager;
    bool m_isInert = false;
    QString m_text; // kept in step change by change: a letter costs no look at the whole text
    bool m_isTextChanged = false;
    int m_composedBeforeCaret = 0;
    int m_reportedHeight = -1;
};

} // namespace diary
