// SPDX-License-Identifier: MIT
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/RhythmLayoutManager.h>
#include <DiaryApp/Theme.h>

#include <QAccessibleWidget>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSyntaxHighlighter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr double lineHeightPerFontSize = 2.05;
constexpr int extraHeight = 4;
constexpr int spacesPerTab = 4;

// Of an inert view, which shows what another tells.
class AccessibleNothing : public QAccessibleWidget {
public:
    explicit AccessibleNothing(QWidget *widget) : QAccessibleWidget(widget, QAccessible::NoRole) {}

    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QString text(QAccessible::Text) const override { return {}; }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invisible = true;
        return state;
    }
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object) {
    auto *view = qobject_cast<GrowingTextView *>(object);
    return view && view->isInert() ? new AccessibleNothing(view) : nullptr;
}

} // namespace

GrowingTextView *GrowingTextView::make(double fontSize, const QColor &textColor, QWidget *parent) {
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    auto *view = new GrowingTextView(parent);
    view->m_layoutManager->setFixedLineHeight(std::round(fontSize * lineHeightPerFontSize));
    const auto font = Theme::serif(fontSize);
    view->setFont(font);
    view->document()->setDefaultFont(font);
    view->setTabStopDistance(spacesPerTab * QFontMetricsF(font).horizontalAdvance(QLatin1Char(' ')));
    auto palette = view->palette();
    palette.setColor(QPalette::Text, textColor);
    palette.setColor(QPalette::Highlight, Theme::selectionBg());
    palette.setColor(QPalette::HighlightedText, textColor);
    view->setPalette(palette);
    return view;
}

GrowingTextView::GrowingTextView(QWidget *parent)
    : QTextEdit(parent), m_layoutManager(new RhythmLayoutManager(document())) {
    setFrameShape(QFrame::NoFrame);
    setAcceptRichText(false);
    setAutoFormatting(QTextEdit::AutoNone);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);

    m_layoutManager->setCaretColor(Theme::accent());
    m_layoutManager->setSelectionColor(Theme::selectionBg());
    document()->setDocumentLayout(m_layoutManager);
    m_layoutManager->setPaintDevice(viewport());

    // The text is always shown from its top: a page around it does the scrolling.
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this] { verticalScrollBar()->setRange(0, 0); });
    connect(m_layoutManager, &QAbstractTextDocumentLayout::documentSizeChanged, this, [this] {
        if (const int height = sizeHint().height(); height != std::exchange(m_reportedHeight, height))
            updateGeometry();
    });
    // What the text control wants repainted is as high as the glyphs; caret and selection are higher.
    for (auto *child : children()) {
        if (child->inherits("QWidgetTextControl"))
            connect(child, SIGNAL(updateRequest(QRectF)), this, SLOT(repaintAround(QRectF)));
    }
    connect(document(), &QTextDocument::contentsChange, this, &GrowingTextView::takeIn);
    connect(this, &QTextEdit::textChanged, this, &GrowingTextView::textDidChange);
    connect(this, &QTextEdit::cursorPositionChanged, this, &GrowingTextView::caretDidMove);
}

int GrowingTextView::fixedLineHeight() const {
    return static_cast<int>(m_layoutManager->fixedLineHeight());
}

void GrowingTextView::setText(const QString &text) {
    if (text == this->text())
        return;
    const QSignalBlocker quiet(this);
    const int caret = textCursor().position();
    setPlainText(text);
    auto cursor = textCursor();
    cursor.setPosition(std::min(caret, document()->characterCount() - 1));
    setTextCursor(cursor);
    m_isTextChanged = false;
}

QString GrowingTextView::text() const {
    // toPlainText() would replace no-break spaces.
    auto text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    return text;
}

void GrowingTextView::setInert(bool isInert) {
    m_isInert = isInert;
    if (isInert)
        clearFocus();
    setReadOnly(isInert);
    setTextInteractionFlags(isInert ? Qt::NoTextInteraction : Qt::TextEditorInteraction);
    setFocusPolicy(isInert ? Qt::NoFocus : Qt::StrongFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents, isInert);
}

void GrowingTextView::setHighlighter(std::unique_ptr<QSyntaxHighlighter> highlighter) {
    highlighter->setParent(document());
    highlighter.release()->setDocument(document());
}

int GrowingTextView::heightForWidth(int width) const {
    if (document()->pageSize().width() != width)
        document()->setPageSize(QSizeF(width, -1));
    return std::max(static_cast<int>(std::ceil(m_layoutManager->documentSize().height())) + extraHeight,
                    leastHeight);
}

void GrowingTextView::takeWidth(int width) {
    resize(width, height());
    // Else the viewport, whose width the text has, would follow only when it is shown.
    setViewportMargins({});
    document()->setPageSize(QSizeF(width, -1));
}

QSize GrowingTextView::sizeHint() const {
    return {0, std::max(static_cast<int>(std::ceil(m_layoutManager->documentSize().height())) + extraHeight,
                        leastHeight)};
}

QRect GrowingTextView::caretRect() const {
    return m_layoutManager->caretRect(textCursor().position(), m_composedBeforeCaret).toAlignedRect();
}

QVariant GrowingTextView::inputMethodQuery(Qt::InputMethodQuery query) const {
    if (query == Qt::ImCursorRectangle && !m_isInert)
        return caretRect();
    return QTextEdit::inputMethodQuery(query);
}

bool GrowingTextView::event(QEvent *event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // A few keys of command lines that Qt takes for editing belong to the menu.
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers() == Qt::ControlModifier && (key->key() == Qt::Key_U || key->key() == Qt::Key_Y)) {
            event->ignore();
            return true;
        }
    }
    return QTextEdit::event(event);
}

void GrowingTextView::keyPressEvent(QKeyEvent *event) {
    const bool isPageKey = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isTab = event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab;
    if (isPageKey && event->modifiers() == Qt::NoModifier)
        event->ignore(); // the page's
    else if (isTab && event->modifiers().testFlag(Qt::ControlModifier))
        moveFocus(event->key() == Qt::Key_Tab && !event->modifiers().testFlag(Qt::ShiftModifier));
    else if (isReturn && event->modifiers().testFlag(Qt::ShiftModifier) && !isReadOnly())
        textCursor().insertBlock(); // no line separator, at which other programs break no line
    else
        QTextEdit::keyPressEvent(event);
}

void GrowingTextView::inputMethodEvent(QInputMethodEvent *event) {
    m_composedBeforeCaret = static_cast<int>(event->preeditString().size());
    for (const auto &attribute : event->attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor)
            m_composedBeforeCaret = attribute.start;
    }
    QTextEdit::inputMethodEvent(event);
}

void GrowingTextView::wheelEvent(QWheelEvent *event) {
    event->ignore();
}

void GrowingTextView::resizeEvent(QResizeEvent *event) {
    QTextEdit::resizeEvent(event);
    verticalScrollBar()->setRange(0, 0);
}

// As a widget that is no text does: the text edit would keep the keyboard.
bool GrowingTextView::moveFocus(bool next) {
    return QWidget::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}

bool GrowingTextView::focusNextPrevChild(bool next) {
    // Tab is text here; Shift+Tab leads back, Ctrl+Tab on.
    return !next && moveFocus(false);
}

bool GrowingTextView::canInsertFromMimeData(const QMimeData *source) const {
    return source->hasText();
}

void GrowingTextView::insertFromMimeData(const QMimeData *source) {
    if (!source->hasText() || isReadOnly())
        return;
    auto text = source->text();
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    textCursor().insertText(text);
    ensureCursorVisible();
}

QMimeData *GrowingTextView::createMimeDataFromSelection() const {
    auto text = textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    auto *content = new QMimeData;
    content->setText(text);
    return content;
}

void GrowingTextView::repaintAround(const QRectF &rect) {
    const int beside = fixedLineHeight();
    if (rect.isValid())
        viewport()->update(
            m_layoutManager->repaintedWith(rect).adjusted(-beside, 0, beside, 0).toAlignedRect());
    else
        viewport()->update();
}

void GrowingTextView::takeIn(int from, int removed, int added) {
    // The document also counts the separator at its end.
    const int length = document()->characterCount() - 1;
    removed = std::min(removed, static_cast<int>(m_text.size()) - from);
    added = std::min(added, length - from);
    if (removed < 0 || added < 0) {
        m_isTextChanged = true;
        m_text = text();
        return;
    }
    QTextCursor changed(document());
    changed.setPosition(from);
    changed.setPosition(from + added, QTextCursor::KeepAnchor);
    auto now = changed.selectedText();
    now.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    // Styling and composing report themselves as changes, too.
    if (QStringView(m_text).sliced(from, removed) == now)
        return;
    m_isTextChanged = true;
    m_text.replace(from, removed, now);
    if (m_text.size() != length)
        m_text = text();
}

void GrowingTextView::textDidChange() {
    if (std::exchange(m_isTextChanged, false) && onTextChanged)
        onTextChanged(m_text);
    caretDidMove(); // or its line did
}

void GrowingTextView::caretDidMove() {
    if (hasFocus() && onCaretMoved)
        onCaretMoved(caretRect());
}

} // namespace diary
