// SPDX-License-Identifier: MIT
#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/RuleView.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>

namespace diary {

namespace {

constexpr double headerKern = 1.47;
constexpr double titleKern = -0.9;

ThemeLabel *addLabel(QWidget *parent, const char *name, const QFont &font, const QColor &color,
                     double kern = 0) {
    auto *label = themeLabel(QString(), font, color, kern, parent);
    label->setObjectName(QLatin1String(name));
    return label;
}

ThemeLabel *addText(QWidget *parent, const char *name, const ThemeLabel::Style &style) {
    auto *label = new ThemeLabel(QString(), style, parent);
    label->setObjectName(QLatin1String(name));
    return label;
}

ChromeButton *addChevron(QWidget *parent, const char *name, const QString &text, const QString &meaning) {
    auto *button = new ChromeButton(text,
                                    {.font = Theme::system(14),
                                     .normalColor = Theme::chevron(),
                                     .hoverColor = Theme::chevron(),
                                     .horizontalPadding = 14,
                                     .verticalPadding = 6},
                                    parent);
    button->setObjectName(QLatin1String(name));
    button->setAccessibleName(meaning);
    button->setToolTip(meaning);
    return button;
}

void setBackground(QWidget *widget, const QColor &color) {
    auto palette = widget->palette();
    palette.setColor(QPalette::Window, color);
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
}

} // namespace

// Laid out anew when what stands in it grows.
class EntryView::Column : public QWidget {
public:
    Column(EntryView *view, QWidget *parent) : QWidget(parent), m_view(view) {}

protected:
    bool event(QEvent *event) override {
        if (event->type() == QEvent::LayoutRequest)
            m_view->contentDidGrow();
        return QWidget::event(event);
    }

private:
    EntryView *m_view;
};

// With the keyboard it scrolls to its ends, too.
class EntryView::Page : public QScrollArea {
public:
    using QScrollArea::QScrollArea;

protected:
    void keyPressEvent(QKeyEvent *event) override {
        if (event->matches(QKeySequence::MoveToStartOfLine) ||
            event->matches(QKeySequence::MoveToStartOfDocument))
            verticalScrollBar()->triggerAction(QScrollBar::SliderToMinimum);
        else if (event->matches(QKeySequence::MoveToEndOfLine) ||
                 event->matches(QKeySequence::MoveToEndOfDocument))
            verticalScrollBar()->triggerAction(QScrollBar::SliderToMaximum);
        else
            QScrollArea::keyPressEvent(event);
    }
};

EntryView::EntryView(QWidget *parent)
    : QWidget(parent),
      m_scrollView(new Page(this)),
      m_documentView(new QWidget(this)),
      m_column(new Column(this, m_documentView)) {
    setBackground(this, Theme::paper());
    m_scrollView->setObjectName(QStringLiteral("scrollView"));
    m_documentView->setObjectName(QStringLiteral("documentView"));
    m_column->setObjectName(QStringLiteral("column"));
    m_scrollView->setFrameShape(QFrame::NoFrame);
    m_scrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollView->viewport()->setAutoFillBackground(false);
    m_scrollView->setWidget(m_documentView);
    m_documentView->setAutoFillBackground(false);
    new QuietScrollBar(m_scrollView);

    const auto small = Theme::mono(10.5);
    m_fileName = addLabel(m_column, "fileName", small, Theme::sectionHead(), headerKern);
    m_ordinal = addLabel(m_column, "ordinal", small, Theme::sectionHead(), headerKern);
    m_rule = new RuleView(Theme::border(), Qt::Horizontal, m_column);
    m_source =
        addText(m_column, "source",
                {.font = Theme::mono(13), .color = Theme::inkSource(), .lineSpacing = 11, .wraps = true});
    m_dayKey =
        addLabel(m_column, "dayKey", Theme::mono(46, Theme::Weight::Medium), Theme::inkStrong(), titleKern);
    m_weekday = addLabel(m_column, "weekday", Theme::serif(18), Theme::serifAside());
    m_previousDay = addChevron(m_column, "previousDay", QStringLiteral("‹"), L("Previous Day"));
    m_nextDay = addChevron(m_column, "nextDay", QStringLiteral("›"), L("Next Day"));
    m_subtitle = addLabel(m_column, "subtitle", Theme::system(12), Theme::daySubText());
    m_mark = addLabel(m_column, "mark", Theme::mono(13, Theme::Weight::Medium), Theme::accent());
    m_ago = addLabel(m_column, "ago", Theme::system(10.5), Theme::agoText());
    m_galleryView = new PhotoGalleryView(m_column);
    m_galleryView->setObjectName(QStringLiteral("galleryView"));
    m_gapLine =
        addText(m_column, "gapLine",
                {.font = Theme::mono(11), .color = Theme::faint(), .lineHeightMultiple = 1.4, .wraps = true});

    m_previousDay->onClick = [this] {
        if (onPreviousDay)
            onPreviousDay();
    };
    m_nextDay->onClick = [this] {
        if (onNextDay)
            onNextDay();
    };
    m_galleryView->onHeightChanged = [this] { layOut(); };
    m_galleryView->onTileFocused = [this](const QRect &tile) { showTile(tile); };
    connect(m_scrollView->verticalScrollBar(), &QScrollBar::valueChanged, m_galleryView,
            &PhotoGalleryView::recheckPointer);
}

EntryView::~EntryView() = default;

void EntryView::update(const Model &model) {
    m_isSource = model.sourceText.has_value();
    // What has the keyboard where there is no editor.
    m_scrollView->setAccessibleName(model.fileName);
    m_fileName->setText(model.fileName.toUpper());
    m_ordinal->setText(model.ordinal);
    m_source->setText(model.sourceText.value_or(QString()));
    m_dayKey->setText(model.dayKey);
    // The family is the user's choice and may have changed.
    m_weekday->setTextStyle({.font = Theme::serif(18), .color = Theme::serifAside()});
    m_weekday->setText(model.weekdayName);
    m_subtitle->setText(model.subtitle);
    m_gapLine->setText(model.gapLine.value_or(QString()));
    for (QWidget *widget : std::initializer_list<QWidget *>{m_dayKey, m_weekday, m_previousDay, m_nextDay,
                                                            m_subtitle, m_mark, m_ago, m_galleryView})
        widget->setVisible(!m_isSource);
    m_source->setVisible(m_isSource);
    m_gapLine->setVisible(!m_isSource && model.gapLine.has_value());
    if (m_isSource)
        removeContent();
    else
        showBlock(model.block);
    // The order among the children is the one in which assistive technologies read them.
    m_galleryView->raise();
    m_gapLine->raise();
    m_galleryView->setTabPredecessor(m_textView ? static_cast<QWidget *>(m_textView) : m_nextDay);
    // A click on the paper must not take the keyboard away from the editor.
    m_scrollView->setFocusPolicy(m_textView ? Qt::NoFocus : Qt::StrongFocus);
    layOut();
}

void EntryView::removeContent() {
    // Later: what is on the page may have asked for the change.
    for (QWidget *widget : std::initializer_list<QWidget *>{m_textView, m_placeholderLabel, m_note}) {
        if (widget) {
            widget->hide();
            widget->deleteLater();
        }
    }
    m_textView = nullptr;
    m_placeholderLabel = nullptr;
    m_note = nullptr;
}

void EntryView::showBlock(const Model::Block &block) {
    m_mark->setText(block.mark);
    m_mark->setColor(block.markColor);
    m_ago->setText(block.ago);
    if (const auto *editor = std::get_if<Model::Block::Editor>(&block.kind)) {
        showEditor(*editor, block.mark);
        return;
    }
    removeContent();
    const auto *past = std::get_if<Model::Block::Past>(&block.kind);
    m_note = addText(m_column, "note",
                     {.font = Theme::serif(14.5),
                      .color = past ? Theme::pastText() : Theme::emptyText(),
                      .lineSpacing = 11,
                      .paragraphSpacing = past ? 16.0 : 0.0,
                      .wraps = true});
    m_note->setText(past ? past->paragraphs.join(QLatin1Char('\n'))
                         : std::get<Model::Block::Empty>(block.kind).text);
    m_note->show();
}

void EntryView::showEditor(const Model::Block::Editor &editor, const QString &year) {
    const double fontSize = Settings::shared().editorFontSize();
    const auto font = Theme::serif(fontSize);
    const bool goesOn = m_textView && editor.textColor == m_editorColor && font == m_editorFont;
    const bool hadKeyboard = m_textView && m_textView->hasFocus();
    if (!goesOn) {
        removeContent();
        m_editorColor = editor.textColor;
        m_editorFont = font;
        m_textView = GrowingTextView::make(fontSize, editor.textColor, m_column);
        m_textView->setObjectName(QStringLiteral("textView"));
        m_textView->setHighlighter(
            std::make_unique<MarkdownHighlighter>(font, editor.textColor, m_textView->document()));
        m_textView->onTextChanged = [this](const QString &text) {
            if (onDraftChanged)
                onDraftChanged(text);
        };
        connect(m_textView, &QTextEdit::textChanged, this, &EntryView::showPlaceholder);
        m_textView->onCaretMoved = [this](const QRect &caret) { keepCaretVisible(caret); };
        m_placeholderLabel = GrowingTextView::make(fontSize, Theme::placeholder(), m_column);
        m_placeholderLabel->setObjectName(QStringLiteral("placeholderLabel"));
        m_placeholderLabel->setInert(true);
        const int contentWidth = entryContentWidth(width());
        m_textView->takeWidth(contentWidth);
        m_placeholderLabel->takeWidth(contentWidth);
        setTabOrder(m_nextDay, m_textView);
    }
    m_textView->setText(editor.draft);
    m_textView->setAccessibleName(year);
    m_textView->setAccessibleDescription(editor.placeholder);
    m_placeholderLabel->setText(editor.placeholder);
    m_textView->show();
    m_placeholderLabel->raise();
    showPlaceholder();
    if (hadKeyboard && !goesOn)
        m_textView->setFocus();
}

// Not below a text that is only being composed, either.
void EntryView::showPlaceholder() {
    const auto *composing = m_textView->document()->begin().layout();
    m_placeholderLabel->setVisible(m_textView->document()->isEmpty() &&
                                   composing->preeditAreaText().isEmpty());
}

void EntryView::startEntry() {
    if (m_textView) {
        // What was typed into another entry must not come back in this one.
        m_textView->document()->clearUndoRedoStacks();
        m_textView->moveCursor(QTextCursor::End);
    }
    m_scrollView->verticalScrollBar()->setValue(0);
    takeKeyboard();
}

void EntryView::takeKeyboard() {
    if (m_textView)
        m_textView->setFocus();
    else
        m_scrollView->setFocus();
}

void EntryView::keepCaretVisible(const QRect &caret) {
    // The page has to have grown before it can be scrolled.
    if (m_textView->heightForWidth(m_textView->width()) != m_textView->height())
        layOut();
    const QRect onPage(m_textView->mapTo(m_documentView, caret.topLeft()), caret.size());
    // What is clicked must not move away below the pointer.
    const bool isByMouse = QGuiApplication::mouseButtons() != Qt::NoButton;
    const int margin = isByMouse ? 0 : m_textView->fixedLineHeight();
    m_scrollView->ensureVisible(onPage.center().x(), onPage.center().y(), 0, onPage.height() / 2 + margin);
}

void EntryView::showTile(const QRect &tile) {
    const QRect onPage(m_galleryView->mapTo(m_documentView, tile.topLeft()), tile.size());
    constexpr int margin = 12;
    m_scrollView->ensureVisible(onPage.center().x(), onPage.center().y(), 0, onPage.height() / 2 + margin);
}

EntryPageMetrics EntryView::metrics() const {
    const auto heightOf = [](const ThemeLabel *label) {
        return [label](int width) { return label->heightForWidth(width); };
    };
    EntryPageMetrics metrics;
    metrics.fileName = m_fileName->sizeHint();
    metrics.fileNameBaseline = qRound(m_fileName->firstBaseline());
    metrics.ordinal = m_ordinal->sizeHint();
    metrics.ordinalBaseline = qRound(m_ordinal->firstBaseline());
    if (m_isSource) {
        metrics.source = heightOf(m_source);
        return metrics;
    }
    // A label's baseline is that at its present size.
    m_dayKey->resize(m_dayKey->sizeHint());
    m_weekday->resize(m_weekday->sizeHint());
    metrics.dayKey = m_dayKey->sizeHint();
    metrics.dayKeyBaseline = qRound(m_dayKey->firstBaseline());
    metrics.weekday = m_weekday->sizeHint();
    metrics.weekdayBaseline = qRound(m_weekday->firstBaseline());
    metrics.previousDay = m_previousDay->sizeHint();
    metrics.nextDay = m_nextDay->sizeHint();
    metrics.subtitleHeight = m_subtitle->sizeHint().height();
    metrics.mark = m_mark->sizeHint();
    metrics.ago = m_ago->sizeHint();
    if (m_textView)
        metrics.content = [this](int width) { return m_textView->heightForWidth(width); };
    else
        metrics.content = heightOf(m_note);
    metrics.gallery = [this](int width) { return m_galleryView->heightForWidth(width); };
    if (!m_gapLine->isHidden())
        metrics.gapLine = heightOf(m_gapLine);
    return metrics;
}

void EntryView::layOut() {
    if (!m_isSource && !m_textView && !m_note)
        return;
    m_scrollView->setGeometry(rect());
    const auto page = layoutEntryPage(metrics(), width());
    m_documentView->resize(width(), std::max(page.pageHeight, height()));
    m_column->setGeometry(page.column);
    m_fileName->setGeometry(page.fileName);
    m_ordinal->setGeometry(page.ordinal);
    m_rule->setGeometry(page.rule);
    m_source->setGeometry(page.source);
    m_dayKey->setGeometry(page.dayKey);
    m_weekday->setGeometry(page.weekday);
    m_previousDay->setGeometry(page.previousDay);
    m_nextDay->setGeometry(page.nextDay);
    m_subtitle->setGeometry(page.subtitle);
    m_mark->setGeometry(page.mark);
    m_ago->setGeometry(page.ago);
    m_galleryView->setGeometry(page.gallery);
    m_gapLine->setGeometry(page.gapLine);
    if (m_note)
        m_note->setGeometry(page.content);
    if (m_textView) {
        m_textView->setGeometry(page.content);
        m_placeholderLabel->setGeometry(page.content);
    }
}

void EntryView::contentDidGrow() {
    auto *bar = m_scrollView->verticalScrollBar();
    // Who went to the end of a source while its height was estimated is at the end of all of it.
    const bool isAtEnd = m_isSource && bar->value() > 0 && bar->value() == bar->maximum();
    layOut();
    if (isAtEnd)
        bar->setValue(bar->maximum());
}

// The paper below the text counts as its last line.
void EntryView::mousePressEvent(QMouseEvent *event) {
    const QPoint point = m_textView ? m_textView->mapFrom(this, event->pos()) : QPoint();
    const bool isBelow =
        m_textView && point.y() >= m_textView->height() && point.x() >= 0 && point.x() < m_textView->width();
    if (!isBelow || event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_textView->setFocus(Qt::MouseFocusReason);
    m_textView->moveCursor(QTextCursor::End);
}

void EntryView::resizeEvent(QResizeEvent *event) {
    layOut();
    QWidget::resizeEvent(event);
}

} // namespace diary
