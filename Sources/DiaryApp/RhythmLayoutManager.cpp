// SPDX-License-Identifier: MIT
#include <DiaryApp/RhythmLayoutManager.h>
#include <DiaryApp/SimpleScripts.h>

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QTextBlock>
#include <QTextBlockUserData>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace diary {

namespace {

constexpr double caretWidth = 2;
// How far the selection of a line break reaches behind the text.
constexpr double lineBreakWidth = 6;
// Less spare room than this is not worth centring in.
constexpr double leastSpareHeight = 1;
// How far a caret may stand out of a line's box.
constexpr double caretReach = 1;
// More than any window shows below a change.
constexpr int paragraphsRestyledAtOnce = 100;
// Less than a frame, so that nobody waits for an idle moment to end.
constexpr std::chrono::milliseconds idleSlice{4};

double textHeight(const QFontMetricsF &metrics) {
    return metrics.ascent() + metrics.descent();
}

} // namespace

// What the lines of a block stand in; kept with the block.
class RhythmLayoutManager::BlockBoxes : public QTextBlockUserData {
public:
    std::vector<LineBox> lines;
    bool isStale = false;
    bool reachesOut = false; // letters may stand out of the boxes, up to a line's height

    // The last that does not begin below, by its distance from the block's top.
    const LineBox &lineAt(double y) const {
        const auto below =
            std::upper_bound(lines.begin() + 1, lines.end(), y,
                             [](double height, const LineBox &line) { return height < line.top; });
        return *(below - 1);
    }

    double height() const { return lines.empty() ? 0 : lines.back().top + lines.back().height; }
};

RhythmLayoutManager::RhythmLayoutManager(QTextDocument *document) : QAbstractTextDocumentLayout(document) {
    connect(document, &QTextDocument::contentsChange, this, [this](int from, int, int added) {
        m_isStale = true;
        m_changedTextEnd = from + added;
    });
    m_idle.setSingleShot(true);
    m_idle.setInterval(0);
    connect(&m_idle, &QTimer::timeout, this, [this] { layOutStale(idleSlice); });
}

void RhythmLayoutManager::setFixedLineHeight(double height) {
    m_fixedLineHeight = height;
    m_isStale = true;
    if (m_width >= 0)
        documentChanged(0, 0, document()->characterCount());
}

const std::vector<RhythmLayoutManager::LineBox> &RhythmLayoutManager::boxesOf(const QTextBlock &block) {
    static const std::vector<LineBox> none;
    const auto *boxes = static_cast<const BlockBoxes *>(block.userData());
    return boxes ? boxes->lines : none;
}

// The font that the character is styled with, not the one that the shaper found its glyph in.
QFont RhythmLayoutManager::fontAt(const QTextBlock &block, int position) const {
    for (const auto &range : block.layout()->formats()) {
        if (position >= range.start && position < range.start + range.length &&
            range.format.hasProperty(QTextFormat::FontPixelSize))
            return range.format.font().resolve(document()->defaultFont());
    }
    return document()->defaultFont();
}

void RhythmLayoutManager::layOut(const QTextBlock &block) {
    auto *boxes = new BlockBoxes;
    auto *layout = block.layout();
    auto option = document()->defaultTextOption();
    const auto direction = block.textDirection();
    option.setTextDirection(direction);
    option.setAlignment(direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    layout->setTextOption(option);
    QFont lastFont = document()->defaultFont();
    QFontMetricsF metrics(lastFont, paintDevice());
    double top = 0;
    const auto text = block.text();
    // Letters of simple scripts stay within their font's ascent and descent.
    boxes->reachesOut =
        !layout->preeditAreaText().isEmpty() || !std::all_of(text.begin(), text.end(), isOfSimpleScript);
    layout->beginLayout();
    for (auto line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLeadingIncluded(false);
        line.setLineWidth(std::max(m_width, 1.0));
        if (const auto font = fontAt(block, line.textStart()); font != lastFont) {
            lastFont = font;
            metrics = QFontMetricsF(font, paintDevice());
        }
        const double natural = textHeight(metrics);
        const double height = std::max(m_fixedLineHeight, std::ceil(natural));
        const double spare = height - natural;
        const double above = spare > leastSpareHeight ? spare / 2 : spare;
        // A whole pixel, or the lines would not look alike.
        const double baseline = std::round(top + above + metrics.ascent());
        line.setPosition({0, baseline - line.ascent()});
        boxes->lines.push_back({top, height});
        boxes->reachesOut |= line.y() < top + 2 * caretReach ||
                             line.y() + line.ascent() + line.descent() > top + height - 2 * caretReach;
        top += height;
    }
    layout->endLayout();
    // The block's handle is a value; what it stands for belongs to the document.
    QTextBlock(block).setUserData(boxes);
}

// Moves the blocks from this one on to where they belong, as far as they are not there already.
void RhythmLayoutManager::placeFrom(const QTextBlock &first, double y) {
    auto block = first;
    while (block.isValid() && (block.layout()->position().y() != y || !block.userData())) {
        if (!block.userData())
            layOut(block);
        block.layout()->setPosition({0, y});
        y += static_cast<const BlockBoxes *>(block.userData())->height();
        block = block.next();
    }
}

void RhythmLayoutManager::layOutAll() {
    m_firstStale.reset();
    double y = 0;
    for (auto block = document()->begin(); block.isValid(); block = block.next()) {
        layOut(block);
        block.layout()->setPosition({0, y});
        y += static_cast<const BlockBoxes *>(block.userData())->height();
    }
}

void RhythmLayoutManager::layOutLater(const QTextBlock &block) {
    static_cast<BlockBoxes *>(block.userData())->isStale = true;
    if (!m_firstStale || block.position() < m_firstStale->position())
        m_firstStale = QTextCursor(block);
    m_idle.start();
}

void RhythmLayoutManager::layOutStale(std::optional<std::chrono::milliseconds> limit,
                                      const QTextBlock &through) {
    if (!m_firstStale)
        return;
    const auto deadline = std::chrono::steady_clock::now() + limit.value_or(std::chrono::hours(1));
    auto block = m_firstStale->block();
    const double top = block.layout()->position().y();
    double y = top;
    const auto isDone = [&] {
        return limit ? std::chrono::steady_clock::now() >= deadline : block.position() > through.position();
    };
    for (; block.isValid() && !isDone(); block = block.next()) {
        if (static_cast<const BlockBoxes *>(block.userData())->isStale)
            layOut(block);
        block.layout()->setPosition({0, y});
        y += static_cast<const BlockBoxes *>(block.userData())->height();
    }
    if (block.isValid()) {
        m_firstStale->setPosition(block.position());
        placeFrom(block, y);
        m_idle.start();
    } else {
        m_firstStale.reset();
    }
    tellSize();
    emit update(QRectF(0, top - m_fixedLineHeight, m_width, 1e9));
}

// Before anybody is told where its lines are.
void RhythmLayoutManager::catchUpWith(const QTextBlock &block) const {
    if (m_firstStale && block.isValid() && block.position() >= m_firstStale->position())
        const_cast<RhythmLayoutManager *>(this)->layOutStale(std::nullopt, block);
}

void RhythmLayoutManager::tellSize() {
    const QSizeF size(m_width, blockBoundingRect(document()->lastBlock()).bottom());
    if (size != m_size) {
        m_size = size;
        emit documentSizeChanged(m_size);
    }
}

void RhythmLayoutManager::documentChanged(int from, int oldLength, int length) {
    const double width = document()->pageSize().width();
    const double tabWidth = document()->defaultTextOption().tabStopDistance();
    const bool isAnotherWidth =
        width != m_width || document()->defaultFont() != m_font || tabWidth != m_tabWidth;
    // A resize says that everything changed, like a new text does; where the width is the same, nothing has.
    if (!m_isStale && !isAnotherWidth && from == 0 && oldLength == 0)
        return;
    m_isStale = false;
    m_width = width;
    m_font = document()->defaultFont();
    m_tabWidth = tabWidth;

    QRectF dirty(0, 0, m_width, 1e9);
    if (isAnotherWidth || !document()->begin().userData()) {
        layOutAll();
    } else {
        const auto first = document()->findBlock(from);
        // Also the paragraph behind a line break that was put in.
        auto last = document()->findBlock(std::max(from + length - 1, m_changedTextEnd));
        if (!last.isValid())
            last = document()->lastBlock();
        const auto previous = first.previous();
        double y = previous.isValid() ? blockBoundingRect(previous).bottom() : 0;
        dirty.setTop(y);
        const bool reachedOut = reachesOut(first);
        const auto end = last.next();
        const int textEnd = std::max(from, m_changedTextEnd);
        // Where one types, the glyphs are soon wanted again: for the caret, and to be drawn.
        if (first == last)
            first.layout()->setCacheEnabled(true);
        int restyled = 0;
        for (auto block = first; block.isValid() && block != end; block = block.next()) {
            if (block.position() > textEnd && block.userData() && ++restyled > paragraphsRestyledAtOnce)
                layOutLater(block);
            else
                layOut(block);
            block.layout()->setPosition({0, y});
            y += static_cast<const BlockBoxes *>(block.userData())->height();
        }
        if (!end.isValid() || end.layout()->position().y() == y)
            dirty.setBottom(std::max(y, m_size.height()));
        if (end.isValid() && end.layout()->position().y() == y)
            dirty.setBottom(y);
        placeFrom(end, y);
        // What stood out of paragraphs that are no longer what they were goes, too.
        if (first != last || reachedOut || dirty.bottom() != y)
            dirty.adjust(0, -m_fixedLineHeight, 0, m_fixedLineHeight);
    }
    m_changedTextEnd = -1;
    tellSize();
    emit update(dirty);
}

QRectF RhythmLayoutManager::frameBoundingRect(QTextFrame *) const {
    return {{0, 0}, m_size};
}

QRectF RhythmLayoutManager::blockBoundingRect(const QTextBlock &block) const {
    const auto *boxes = block.isValid() ? static_cast<const BlockBoxes *>(block.userData()) : nullptr;
    return boxes ? QRectF(0, block.layout()->position().y(), m_width, boxes->height()) : QRectF();
}

QRectF RhythmLayoutManager::repaintedWith(const QRectF &rect) const {
    const auto first = blockAt(rect.top());
    const auto last = blockAt(rect.bottom() - caretReach);
    if (reachesOut(first) || reachesOut(last))
        return rect.adjusted(0, -m_fixedLineHeight, 0, m_fixedLineHeight);
    const auto lineAt = [](const QTextBlock &block, double y) {
        const double top = block.layout()->position().y();
        const auto &line = static_cast<const BlockBoxes *>(block.userData())->lineAt(y - top);
        return LineBox{top + line.top, line.height};
    };
    const auto topLine = lineAt(first, rect.top());
    const auto bottomLine = lineAt(last, rect.bottom() - caretReach);
    const double top = std::min(rect.top(), topLine.top);
    const double bottom = std::max(rect.bottom(), bottomLine.top + bottomLine.height);
    return {QPointF(rect.left(), top - caretReach), QPointF(rect.right(), bottom + caretReach)};
}

// Also while nothing is known of it.
bool RhythmLayoutManager::reachesOut(const QTextBlock &block) {
    const auto *boxes = static_cast<const BlockBoxes *>(block.userData());
    return !boxes || boxes->reachesOut;
}

// The one that the height is in, else the first or the last.
QTextBlock RhythmLayoutManager::blockAt(double y) const {
    int low = 0;
    int high = document()->blockCount() - 1;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (blockBoundingRect(document()->findBlockByNumber(middle)).bottom() > y)
            high = middle;
        else
            low = middle + 1;
    }
    return document()->findBlockByNumber(low);
}

int RhythmLayoutManager::hitTest(const QPointF &point, Qt::HitTestAccuracy accuracy) const {
    auto block = blockAt(point.y());
    catchUpWith(block);
    block = blockAt(point.y());
    const auto &boxes = boxesOf(block);
    if (boxes.empty())
        return -1;
    const double y = point.y() - block.layout()->position().y();
    const auto box = std::find_if(boxes.begin(), boxes.end() - 1, [y](const LineBox &candidate) {
        return y < candidate.top + candidate.height;
    });
    const auto line = block.layout()->lineAt(static_cast<int>(box - boxes.begin()));
    const auto text = line.naturalTextRect();
    const bool isOutside = y < 0 || y > boxes.back().top + boxes.back().height || point.x() < text.left() ||
                           point.x() > text.right();
    if (accuracy == Qt::ExactHit && isOutside)
        return -1;
    // Below the last line is the end of the text.
    if (y > boxes.back().top + boxes.back().height)
        return block.position() + block.length() - 1;
    // What is being composed is no part of the text yet: all of it is the place where it will stand.
    const int hit = line.xToCursor(point.x());
    const int composed = block.layout()->preeditAreaPosition();
    const int composedLength = static_cast<int>(block.layout()->preeditAreaText().size());
    if (composedLength == 0 || hit <= composed)
        return block.position() + hit;
    return block.position() + std::max(composed, hit - composedLength);
}

QRectF RhythmLayoutManager::lineRect(int position) const {
    const auto block = document()->findBlock(position);
    catchUpWith(block);
    const auto line =
        block.isValid() ? block.layout()->lineForTextPosition(position - block.position()) : QTextLine();
    if (!line.isValid())
        return {};
    const auto &box = boxesOf(block)[static_cast<std::size_t>(line.lineNumber())];
    return {0, block.layout()->position().y() + box.top, m_width, box.height};
}

QRectF RhythmLayoutManager::caretRect(int position, int composed) const {
    const auto block = document()->findBlock(position);
    catchUpWith(block);
    return block.isValid() ? caretRectIn(block, position - block.position() + composed) : QRectF();
}

QRectF RhythmLayoutManager::caretRectIn(const QTextBlock &block, int positionInBlock) const {
    const auto line = block.layout()->lineForTextPosition(positionInBlock);
    if (!line.isValid())
        return {};
    // By the character before, which is what writing goes on from; at the beginning by the first one.
    const auto font = fontAt(block, std::max(positionInBlock, 1) - 1);
    const auto &box = boxesOf(block)[static_cast<std::size_t>(line.lineNumber())];
    const double height = std::ceil(textHeight(QFontMetricsF(font, paintDevice()))) + 2;
    const double top = std::round(block.layout()->position().y() + box.top + (box.height - height) / 2);
    const double x =
        std::clamp(std::round(line.cursorToX(positionInBlock)), 0.0, std::max(0.0, m_width - caretWidth));
    return {x, top, caretWidth, height};
}

void RhythmLayoutManager::drawSelections(QPainter *painter, const QTextBlock &block,
                                         const PaintContext &context) const {
    const auto *layout = block.layout();
    const auto &boxes = boxesOf(block);
    for (const auto &selection : context.selections) {
        const int start = selection.cursor.selectionStart() - block.position();
        const int end = selection.cursor.selectionEnd() - block.position();
        if (end <= 0 || start >= block.length())
            continue;
        for (int index = 0; index < layout->lineCount(); ++index) {
            const auto line = layout->lineAt(index);
            const int lineEnd = line.textStart() + line.textLength();
            const auto &box = boxes[static_cast<std::size_t>(index)];
            const double y = layout->position().y() + box.top;
            if (context.clip.isValid() && (y > context.clip.bottom() || y + box.height < context.clip.top()))
                continue;
            const auto fill = [&](double left, double right) {
                painter->fillRect(
                    QRectF(QPointF(std::floor(left), y), QPointF(std::ceil(right), y + box.height)),
                    m_selectionColor);
            };
            // In text of both directions a selection is several pieces.
            const int from = std::max(start, line.textStart());
            const int to = std::min(end, lineEnd);
            if (from < to) {
                for (const auto &run : line.glyphRuns(from, to - from))
                    fill(run.boundingRect().left(), run.boundingRect().right());
            }
            // Tabs have no glyphs.
            for (int at = from; at < to; ++at) {
                if (document()->characterAt(block.position() + at) != QLatin1Char('\t'))
                    continue;
                const double leading = line.cursorToX(at);
                const double trailing = line.cursorToX(at + 1);
                fill(std::min(leading, trailing), std::max(leading, trailing));
            }
            const bool isLastLine = index == layout->lineCount() - 1;
            if (isLastLine && start <= lineEnd && end > lineEnd) {
                const bool isRightToLeft = block.textDirection() == Qt::RightToLeft;
                const double x = line.cursorToX(lineEnd);
                painter->fillRect(
                    QRectF(std::floor(isRightToLeft ? x - lineBreakWidth : x), y, lineBreakWidth, box.height),
                    m_selectionColor);
            }
        }
    }
}

void RhythmLayoutManager::draw(QPainter *painter, const PaintContext &context) {
    const auto clip = context.clip.isValid() ? context.clip : QRectF(0, 0, m_width, m_size.height());
    painter->setPen(context.palette.color(QPalette::Text));
    // Letters may stand out of the lines next to those to be painted.
    const auto around = clip.adjusted(0, -m_fixedLineHeight, 0, m_fixedLineHeight);
    catchUpWith(blockAt(around.top()));
    for (auto block = blockAt(around.top()); block.isValid(); block = block.next()) {
        catchUpWith(block);
        const auto rect = blockBoundingRect(block);
        if (rect.top() > around.bottom())
            break;
        if (!reachesOut(block) && (rect.bottom() < clip.top() || rect.top() > clip.bottom()))
            continue;
        drawSelections(painter, block, context);
        block.layout()->draw(painter, {0, 0}, {}, reachesOut(block) ? around : clip);

        int caret = context.cursorPosition;
        if (caret < -1) // within a text that is being composed
            caret = block.layout()->preeditAreaPosition() < 0 || block.layout()->preeditAreaText().isEmpty()
                        ? -1
                        : block.position() + block.layout()->preeditAreaPosition() - (caret + 2);
        if (caret >= block.position() &&
            caret < block.position() + block.length() + block.layout()->preeditAreaText().size())
            painter->fillRect(caretRectIn(block, caret - block.position()), m_caretColor);
    }
}

} // namespace diary
