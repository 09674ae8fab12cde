// SPDX-License-Identifier: MIT
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/YearCardView.h>

#include <QPainter>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr double cornerRadius = 8;
constexpr int topInset = 15;
constexpr int bottomInset = 16;
constexpr int metaGap = 8;
constexpr double snippetLineSpacing = 8;
constexpr int shadowOffset = 1; // downwards
constexpr double focusRingInset = 3;

} // namespace

YearCardLayout layoutYearCard(const YearCardMetrics &metrics, int width) {
    constexpr int inset = YearCardLayout::sideInset;
    const int inner = std::max(0, width - 2 * inset);
    YearCardLayout layout;
    layout.year = QRect(QPoint(inset, topInset), metrics.year);
    const int metaWidth = std::clamp(inner - metrics.year.width() - metaGap, 0, metrics.meta.width());
    layout.meta = QRect(width - inset - metaWidth, topInset + metrics.yearAscent - metrics.metaAscent,
                        metaWidth, metrics.meta.height());
    int y = topInset + metrics.year.height() + 9;
    layout.divider = QRect(inset, y, inner, 1);
    y += 1 + 10;
    layout.snippet = QRect(inset, y, inner, metrics.snippetHeight);
    y += metrics.snippetHeight + 10;
    layout.ago = QRect(inset, y, std::min(metrics.ago.width(), inner), metrics.ago.height());
    layout.height = y + metrics.ago.height() + bottomInset;
    return layout;
}

bool YearCardView::Model::looksLike(const Model &other) const {
    return year == other.year && snippet == other.snippet && meta == other.meta && ago == other.ago &&
           yearColor == other.yearColor && snippetColor == other.snippetColor &&
           background == other.background && border == other.border;
}

YearCardView::Fonts YearCardView::Fonts::current() {
    return {Theme::mono(17, Theme::Weight::Medium), Theme::mono(10.5), Theme::serif(13), Theme::system(10.5)};
}

YearCardView::YearCardView(QWidget *parent) : HoverView(parent) {}

void YearCardView::update(const Model &model, const Fonts &fonts) {
    forgetPointer();
    if (model.year != m_model.year)
        forgetPress();
    onClick = model.onClick;
    if (model.looksLike(m_model) && fonts == m_fonts)
        return;

    m_model = model;
    m_fonts = fonts;
    m_year = {QString::number(model.year), fonts.year};
    m_meta = {model.meta, fonts.meta};
    m_ago = {model.ago, fonts.ago};
    m_metrics.year = m_year.naturalSize();
    m_metrics.yearAscent = m_year.ascent();
    m_metrics.meta = m_meta.naturalSize();
    m_metrics.metaAscent = m_meta.ascent();
    m_metrics.ago = m_ago.naturalSize();
    m_snippet.set(model.snippet, {fonts.snippet, snippetLineSpacing});

    QStringList name{m_year.text, model.ago, model.meta};
    name.removeAll(QString());
    setAccessibleName(name.join(QLatin1String(", ")));
    setAccessibleDescription(model.snippet);
    update();
}

YearCardLayout YearCardView::layoutForWidth(int width) {
    m_snippet.layOut(width - 2 * YearCardLayout::sideInset);
    m_metrics.snippetHeight = static_cast<int>(std::ceil(m_snippet.height()));
    return layoutYearCard(m_metrics, width);
}

BoxShadow YearCardView::shadow() const {
    return isHovered() ? BoxShadow{.opacity = 0.1, .radius = 4, .offset = shadowOffset}
                       : BoxShadow{.opacity = 0.05, .radius = 2, .offset = shadowOffset};
}

void YearCardView::paintShadow(QPainter &painter) const {
    paintBoxShadow(painter, geometry(), cornerRadius, shadow());
}

void YearCardView::hoverDidChange() {
    // The shadow changes too.
    if (auto *parent = parentWidget())
        parent->update(geometry().adjusted(-12, -12, 12, 12));
}

void YearCardView::paintEvent(QPaintEvent *) {
    const auto layout = layoutForWidth(width());
    QPainter painter(this);
    paintBorderedBox(painter, rect(), cornerRadius, m_model.background,
                     isHovered() ? Theme::cardBorderHover() : m_model.border);
    painter.fillRect(layout.divider, Theme::borderSoft());

    m_year.paint(painter, layout.year, m_model.yearColor);
    m_meta.paint(painter, layout.meta, Theme::agoText());
    m_snippet.paint(painter, layout.snippet.topLeft(), m_model.snippetColor);
    m_ago.paint(painter, layout.ago, Theme::faint());
    paintFocusRing(painter,
                   QRectF(rect()).adjusted(focusRingInset, focusRingInset, -focusRingInset, -focusRingInset),
                   cornerRadius - focusRingInset);
}

} // namespace diary
