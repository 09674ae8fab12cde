// SPDX-License-Identifier: MIT
#include <DiaryApp/ThemeLabel.h>

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace diary {

namespace {

constexpr double unlimited = 1 << 22; // wider than any label; greater numbers overflow in the text engine

} // namespace

// The lines of a text at a width.
class ThemeLabel::Layout {
public:
    struct Key {
        QString text;
        Style style;
        Qt::Alignment alignment;
        double width;
        bool operator==(const Key &) const = default;
    };

    explicit Layout(Key key) : m_key(std::move(key)) {
        const QFontMetricsF metrics(m_key.style.font);
        m_ascent = metrics.ascent();
        m_descent = metrics.descent();
        breakIntoLines();
        stackLines();
    }

    const Key &key() const { return m_key; }
    double height() const { return m_height; }
    double naturalWidth() const { return m_naturalWidth; }
    double firstBaseline() const { return m_lines.front().baseline; }

    std::vector<Line> lines(QPointF origin) const {
        std::vector<Line> result;
        for (const auto &place : m_lines) {
            const auto &paragraph = *m_paragraphs[place.paragraph];
            const auto line = paragraph.lineAt(place.line);
            const auto text = paragraph.text().mid(line.textStart(), line.textLength());
            const auto rect = line.naturalTextRect();
            result.push_back(
                {text, QRectF(rect.left(), place.baseline - m_ascent, rect.width(), m_ascent + m_descent)
                           .translated(origin)});
        }
        return result;
    }

    void paint(QPainter &painter, QPointF origin) const {
        painter.setPen(m_key.style.color);
        for (const auto &place : m_lines) {
            const auto line = m_paragraphs[place.paragraph]->lineAt(place.line);
            line.draw(&painter, origin + QPointF(0, place.baseline - line.ascent() - line.y()));
        }
    }

private:
    struct Place {
        std::size_t paragraph;
        int line;
        bool beginsParagraph;
        double baseline;
    };

    QTextOption optionFor(const QString &text) const {
        QTextOption option;
        option.setWrapMode(m_key.style.wraps ? QTextOption::WrapAtWordBoundaryOrAnywhere
                                             : QTextOption::ManualWrap);
        option.setTextDirection(Qt::LayoutDirectionAuto);
        const auto across = m_key.alignment & (Qt::AlignRight | Qt::AlignHCenter);
        const auto leading = text.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
        option.setAlignment(across ? across : leading);
        return option;
    }

    std::unique_ptr<QTextLayout> laidOut(const QString &text) const {
        auto paragraph = std::make_unique<QTextLayout>(text, m_key.style.font);
        paragraph->setTextOption(optionFor(text));
        paragraph->beginLayout();
        for (auto line = paragraph->createLine(); line.isValid(); line = paragraph->createLine())
            line.setLineWidth(m_key.width);
        paragraph->endLayout();
        return paragraph;
    }

    bool isFull() const {
        const auto &style = m_key.style;
        return style.maximumLines > 0 && static_cast<int>(m_lines.size()) >= style.maximumLines;
    }

    void breakIntoLines() {
        const auto paragraphs = m_key.text.split(QLatin1Char('\n'));
        for (const auto &text : paragraphs) {
            if (isFull()) {
                elideLast(true);
                return;
            }
            const auto &style = m_key.style;
            const bool isElided = !style.wraps && style.elideMode != Qt::ElideNone;
            m_paragraphs.push_back(isElided ? laidOutElided(text, style.elideMode) : laidOut(text));
            for (int line = 0; line < m_paragraphs.back()->lineCount(); ++line) {
                if (isFull()) {
                    elideLast(false);
                    return;
                }
                m_lines.push_back({m_paragraphs.size() - 1, line, line == 0, 0});
            }
        }
    }

    std::unique_ptr<QTextLayout> laidOutElided(const QString &text, Qt::TextElideMode mode) const {
        const QFontMetricsF metrics(m_key.style.font);
        // The metrics measure the text a little narrower than the layout does.
        for (double room = m_key.width;;) {
            auto paragraph = laidOut(metrics.elidedText(text, mode, room));
            const double excess = paragraph->lineAt(0).naturalTextWidth() - m_key.width;
            if (excess <= 0 || room <= 0)
                return paragraph;
            room -= excess;
        }
    }

    // The last line, which stands for everything behind it.
    void elideLast(bool isWholeParagraph) {
        auto &place = m_lines.back();
        const auto &paragraph = *m_paragraphs[place.paragraph];
        const auto line = paragraph.lineAt(place.line);
        auto rest = paragraph.text().mid(line.textStart());
        if (isWholeParagraph)
            rest = rest.trimmed() + QChar(0x2026);
        m_paragraphs.push_back(laidOutElided(rest, Qt::ElideRight));
        place.paragraph = m_paragraphs.size() - 1;
        place.line = 0;
    }

    void stackLines() {
        const auto &style = m_key.style;
        for (const auto &place : m_lines) {
            const auto line = m_paragraphs[place.paragraph]->lineAt(place.line);
            m_ascent = std::max(m_ascent, line.ascent());
            m_descent = std::max(m_descent, line.descent());
            m_naturalWidth = std::max(m_naturalWidth, line.naturalTextWidth());
        }
        // Whole pixels keep the letters of all lines equally sharp.
        m_ascent = std::ceil(m_ascent);
        m_descent = std::ceil(m_descent);
        const double natural = m_ascent + m_descent;
        const double lineHeight = std::round(natural * style.lineHeightMultiple);
        double y = 0;
        for (std::size_t index = 0; index < m_lines.size(); ++index) {
            if (index > 0) {
                y += style.lineSpacing;
                if (m_lines[index].beginsParagraph)
                    y += style.paragraphSpacing;
            }
            y += lineHeight;
            m_lines[index].baseline = y - m_descent;
        }
        m_height = y;
    }

    Key m_key;
    std::vector<std::unique_ptr<QTextLayout>> m_paragraphs;
    std::vector<Place> m_lines;
    double m_ascent = 0;
    double m_descent = 0;
    double m_height = 0;
    double m_naturalWidth = 0;
};

ThemeLabel::ThemeLabel(const QString &text, const Style &style, QWidget *parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setText(text);
    setTextStyle(style);
}

ThemeLabel::~ThemeLabel() = default;

void ThemeLabel::setTextStyle(const Style &style) {
    m_style = style;
    setFont(style.font);
    auto colors = palette();
    colors.setColor(QPalette::WindowText, style.color);
    setPalette(colors);
    setWordWrap(style.wraps);
    updateGeometry();
    update();
}

void ThemeLabel::setColor(const QColor &color) {
    auto style = m_style;
    style.color = color;
    setTextStyle(style);
}

const ThemeLabel::Layout &ThemeLabel::layoutFor(double width) const {
    Layout::Key key{text(), m_style, alignment(), width};
    if (!m_layout || m_layout->key() != key)
        m_layout = std::make_unique<Layout>(std::move(key));
    return *m_layout;
}

QPointF ThemeLabel::textOrigin(const Layout &layout) const {
    const QRectF area = contentsRect();
    const double spare = area.height() - layout.height();
    if (alignment() & Qt::AlignTop)
        return area.topLeft();
    return area.topLeft() + QPointF(0, (alignment() & Qt::AlignBottom) ? spare : std::floor(spare / 2));
}

double ThemeLabel::firstBaseline() const {
    const auto &layout = layoutFor(contentsRect().width());
    return textOrigin(layout).y() + layout.firstBaseline();
}

std::vector<ThemeLabel::Line> ThemeLabel::lines() const {
    const auto &layout = layoutFor(contentsRect().width());
    return layout.lines(textOrigin(layout));
}

bool ThemeLabel::hasHeightForWidth() const {
    return m_style.wraps;
}

int ThemeLabel::heightForWidth(int width) const {
    const auto margins = contentsMargins();
    const int across = margins.left() + margins.right();
    const int along = margins.top() + margins.bottom();
    return static_cast<int>(std::ceil(layoutFor(std::max(0, width - across)).height())) + along;
}

QSize ThemeLabel::sizeHint() const {
    const auto margins = contentsMargins();
    const auto &layout = layoutFor(unlimited);
    return QSize(static_cast<int>(std::ceil(layout.naturalWidth())),
                 static_cast<int>(std::ceil(layout.height()))) +
           QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

QSize ThemeLabel::minimumSizeHint() const {
    const auto size = sizeHint();
    const bool canShrink = m_style.wraps || m_style.elideMode != Qt::ElideNone;
    return canShrink ? QSize(0, size.height()) : size;
}

void ThemeLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const auto &layout = layoutFor(contentsRect().width());
    layout.paint(painter, textOrigin(layout));
}

ThemeLabel *themeLabel(const QString &text, QFont font, const QColor &color, double kern, QWidget *parent) {
    font.setLetterSpacing(QFont::AbsoluteSpacing, kern);
    ThemeLabel::Style style;
    style.font = font;
    style.color = color;
    return new ThemeLabel(text, style, parent);
}

} // namespace diary
