// SPDX-License-Identifier: MIT
#include <DiaryApp/SearchRowView.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/TextBlock.h>
#include <DiaryApp/Theme.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QTextCharFormat>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr double cornerRadius = 8;
constexpr int verticalInset = 10;
constexpr int titleGap = 4;
constexpr double titleSize = 12;
constexpr double snippetSize = 13;

QTextCharFormat markFormat() {
    QTextCharFormat format;
    format.setBackground(Theme::selectionBg());
    format.setForeground(Theme::inkStrong());
    return format;
}

} // namespace

SearchRowLayout layoutSearchRow(const SearchRowMetrics &metrics, int width) {
    constexpr int inset = SearchRowLayout::sideInset;
    SearchRowLayout layout;
    layout.title = QRect(QPoint(inset, verticalInset), metrics.title);
    const int snippetTop = verticalInset + metrics.title.height() + titleGap;
    layout.snippet = QRect(inset, snippetTop, std::max(0, width - 2 * inset), metrics.snippetHeight);
    layout.height = snippetTop + metrics.snippetHeight + verticalInset;
    return layout;
}

SearchRowView::Model SearchRowView::Model::of(const DiaryStore::SearchHit &hit, std::string_view query) {
    const auto day = toQString(hit.monthDay.headerTitle());
    const auto year = QString::number(hit.year);
    Model model;
    model.title = day + QStringLiteral(" · ") + year;
    model.snippet = onOneLine(toQString(hit.snippet));
    model.accessibleName = QStringList{day, year, model.snippet}.join(QLatin1Char(' '));
    const std::string_view snippet = hit.snippet;
    for (const auto &match : DiaryStore::matches(query, snippet)) {
        const auto start = toQString(snippet.substr(0, match.begin)).size();
        const auto length = toQString(match.in(snippet)).size();
        model.marks.push_back({static_cast<int>(start), static_cast<int>(length)});
    }
    return model;
}

SearchRowView::Fonts SearchRowView::Fonts::current() {
    return {Theme::mono(titleSize), Theme::serif(snippetSize)};
}

SearchRowView::SearchRowView(QWidget *parent) : HoverView(parent) {
    m_snippet.setCacheEnabled(true);
}

void SearchRowView::update(const Model &model, const Fonts &fonts) {
    m_model = model;
    m_title = {model.title, fonts.title};
    m_titleSize = m_title.naturalSize();
    m_snippet.setFont(fonts.snippet);
    m_snippet.setTextOption(wrappingOption(model.snippet));
    m_snippetWidth = -1;
    setAccessibleName(model.accessibleName);
    update();
}

SearchRowLayout SearchRowView::layoutForWidth(int width) {
    const int snippetWidth = std::max(1, width - 2 * SearchRowLayout::sideInset);
    if (snippetWidth != m_snippetWidth) {
        m_snippetWidth = snippetWidth;
        const auto &whole = m_model.snippet;
        setSnippet(whole, static_cast<int>(whole.size()));
        double height = layOutLines(snippetWidth);
        const auto last = m_snippet.lineAt(m_snippet.lineCount() - 1);
        if (last.isValid() && last.textStart() + last.textLength() < whole.size()) {
            const int lastStart = last.textStart();
            const auto ending = QFontMetricsF(m_snippet.font())
                                    .elidedText(whole.sliced(lastStart), Qt::ElideRight, snippetWidth);
            const auto shown = whole.first(lastStart) + ending;
            setSnippet(shown, static_cast<int>(shown.size()) - 1);
            height = layOutLines(snippetWidth);
        }
        m_snippetHeight = static_cast<int>(std::ceil(height));
    }
    return layoutSearchRow({m_titleSize, m_snippetHeight}, width);
}

std::vector<SearchRowView::Mark> SearchRowView::shownMarks() const {
    std::vector<Mark> marks;
    for (const auto &range : m_snippet.formats())
        marks.push_back({range.start, range.length});
    return marks;
}

void SearchRowView::setSnippet(const QString &text, int marksEnd) {
    m_snippet.setText(text);
    QList<QTextLayout::FormatRange> formats;
    for (const auto &mark : m_model.marks) {
        if (mark.start < marksEnd)
            formats.append({mark.start, std::min(mark.length, marksEnd - mark.start), markFormat()});
    }
    m_snippet.setFormats(formats);
}

// Returns the height of the lines, as many as are shown.
double SearchRowView::layOutLines(double width) {
    double y = 0;
    m_snippet.beginLayout();
    for (int count = 0; count < mostSnippetLines; ++count) {
        auto line = m_snippet.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += std::ceil(line.height());
    }
    m_snippet.endLayout();
    return y;
}

void SearchRowView::paintEvent(QPaintEvent *) {
    const auto layout = layoutForWidth(width());
    QPainter painter(this);
    paintHoverBackground(painter, cornerRadius);
    m_title.paint(painter, layout.title, Theme::ink());
    painter.setPen(Theme::pastText());
    m_snippet.draw(&painter, layout.snippet.topLeft());
    paintFocusRing(painter, rect(), cornerRadius);
}

} // namespace diary
