// SPDX-License-Identifier: MIT
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/TextLine.h>
#include <DiaryApp/Theme.h>

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr int buttonHeight = 22;
constexpr int buttonPadding = 11; // at each side
constexpr double buttonCornerRadius = 6;
constexpr double buttonFontSize = 11;
constexpr double fontSize = 13;
constexpr int leastMenuWidth = 160;

} // namespace

QString withoutMnemonics(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

SettingsButton::SettingsButton(const QString &text, QWidget *parent)
    : QPushButton(withoutMnemonics(text), parent), m_shownText(text) {
    setFont(Theme::system(buttonFontSize));
    setAccessibleName(text);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    // So that Return presses it too.
    setAutoDefault(true);
}

QSize SettingsButton::sizeHint() const {
    return {TextLine{m_shownText, font()}.naturalSize().width() + 2 * buttonPadding, buttonHeight};
}

QSize SettingsButton::minimumSizeHint() const {
    return {std::min(4 * buttonPadding, sizeHint().width()), buttonHeight};
}

bool SettingsButton::event(QEvent *event) {
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QPushButton::event(event);
}

void SettingsButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const bool isOver = isEnabled() && underMouse();
    const auto ground = isDown() ? Theme::hoverBg() : Theme::cardBgActive();
    const auto border = !isEnabled() ? Theme::borderSoft()
                        : isOver     ? Theme::cardBorderActive()
                                     : Theme::cardBorderHover();
    paintBorderedBox(painter, rect(), buttonCornerRadius, isEnabled() ? ground : Theme::cardBg(), border);
    const TextLine line{m_shownText, font()};
    const int room = std::max(0, width() - 2 * buttonPadding);
    const int textWidth = std::min(room, line.naturalSize().width());
    line.paint(painter, QRect((width() - textWidth) / 2, 0, textWidth, height()),
               isEnabled() ? Theme::ink() : Theme::faint());
    if (hasFocus())
        paintFocusRing(painter, rect(), buttonCornerRadius);
}

SettingsMenu::SettingsMenu(const QStringList &choices, QWidget *parent) : QComboBox(parent) {
    setFont(Theme::system(fontSize));
    setMinimumWidth(leastMenuWidth);
    setFocusPolicy(Qt::StrongFocus);
    addItems(choices);
}

void SettingsMenu::wheelEvent(QWheelEvent *event) {
    event->ignore();
}

void SettingsMenu::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        showPopup();
    else
        QComboBox::keyPressEvent(event);
}

SettingsRowLabel::SettingsRowLabel(const QString &text, QWidget *parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    m_block.set(text, {.font = Theme::system(fontSize)});
    m_block.layOut(columnWidth);
    setFixedSize(columnWidth, static_cast<int>(std::ceil(m_block.height())));
}

void SettingsRowLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setFont(Theme::system(fontSize));
    painter.setPen(Theme::ink());
    const auto lines = m_block.lines();
    for (const auto &line : lines) {
        const auto text = line.text.trimmed();
        const double textWidth = QFontMetricsF(painter.font()).horizontalAdvance(text);
        const double baseline = line.rect.top() - lines.front().rect.top() + firstBaseline();
        painter.drawText(QPointF(columnWidth - textWidth, baseline), text);
    }
}

} // namespace diary
