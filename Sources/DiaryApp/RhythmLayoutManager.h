// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QFont>
#include <QRectF>
#include <QTextBlock>
#include <QTextCursor>
#include <QTimer>

#include <chrono>
#include <optional>
#include <vector>

namespace diary {

// Lays a plain text out on a fixed vertical rhythm: every line stands in a box of the same height, centred by
// the font it is styled with, so that neither a heading nor a fallback font makes the lines dance. Only a
// font that needs more than the box gets more.
//
// A change costs the paragraphs that it touches, and a new position for those below when the height changed.
// When the styling of many paragraphs changes at once, those far below the change follow in idle moments, or
// as soon as somebody looks at them. Belongs to its document; main thread only. Lengths are in logical
// pixels.
class RhythmLayoutManager : public QAbstractTextDocumentLayout {
    Q_OBJECT

public:
    explicit RhythmLayoutManager(QTextDocument *document);

    // 0 lets every line be as high as its font, and is what there is at first.
    double fixedLineHeight() const { return m_fixedLineHeight; }
    void setFixedLineHeight(double height);

    void setCaretColor(const QColor &color) { m_caretColor = color; }
    void setSelectionColor(const QColor &color) { m_selectionColor = color; }

    // As high as the text beside it, in the middle of the line's box; behind so many characters of a text
    // that is being composed there.
    QRectF caretRect(int position, int composed = 0) const;
    // The box of the line that the position is in.
    QRectF lineRect(int position) const;

    // What has to be painted anew where glyphs, a caret or a selection in the rectangle have changed: the
    // boxes of their lines, and more only where letters stand out of these.
    QRectF repaintedWith(const QRectF &rect) const;

    void draw(QPainter *painter, const PaintContext &context) override;
    int hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override { return m_size; }
    QRectF frameBoundingRect(QTextFrame *frame) const override;
    QRectF blockBoundingRect(const QTextBlock &block) const override;

protected:
    void documentChanged(int from, int oldLength, int length) override;

private:
    struct LineBox {
        double top = 0; // within the block
        double height = 0;
    };
    class BlockBoxes;

    static const std::vector<LineBox> &boxesOf(const QTextBlock &block);
    static bool reachesOut(const QTextBlock &block);
    QTextBlock blockAt(double y) const;
    QFont fontAt(const QTextBlock &block, int position) const;
    void layOut(const QTextBlock &block);
    void placeFrom(const QTextBlock &block, double y);
    void layOutAll();
    void layOutLater(const QTextBlock &block);
    // Until the time is over or, without one, through the block.
    void layOutStale(std::optional<std::chrono::milliseconds> limit, const QTextBlock &through = {});
    void catchUpWith(const QTextBlock &block) const;
    void tellSize();
    void drawSelections(QPainter *painter, const QTextBlock &block, const PaintContext &context) const;
    QRectF caretRectIn(const QTextBlock &block, int positionInBlock) const;

    double m_fixedLineHeight = 0;
    double m_width = -1;
    QFont m_font; // that the present layout was made with
    double m_tabWidth = 0;
    bool m_isStale = true;
    // The first paragraph whose lines are those of an earlier styling; none when all are as they should be.
    std::optional<QTextCursor> m_firstStale;
    QTimer m_idle;
    int m_changedTextEnd = -1; // where the new text ends, while a change is being told
    QSizeF m_size;
    QColor m_caretColor;
    QColor m_selectionColor;
};

} // namespace diary
