// SPDX-License-Identifier: MIT
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/TextBlock.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLayout>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr double boxCornerRadius = 10;
constexpr double titleFontSize = 10;

QString shownText(const QWidget &control) {
    if (const auto *menu = qobject_cast<const QComboBox *>(&control))
        return menu->currentText();
    if (const auto *button = qobject_cast<const QAbstractButton *>(&control))
        return button->text();
    if (const auto *label = qobject_cast<const QLabel *>(&control))
        return label->text();
    return {};
}

int heightAt(const QWidget &control, int width) {
    if (const auto *layout = control.layout())
        return layout->hasHeightForWidth() ? layout->totalHeightForWidth(width)
                                           : layout->totalSizeHint().height();
    return control.hasHeightForWidth() ? control.heightForWidth(width) : control.sizeHint().height();
}

int widthOf(const QWidget &control, int room) {
    if (control.layout())
        return room;
    const int wanted = std::clamp(control.sizeHint().width(), control.minimumWidth(), control.maximumWidth());
    return std::min(room, wanted);
}

// Now, since a widget that was not shown yet would put it off.
void layOutParts(const QWidget &control) {
    auto *layout = control.layout();
    if (!layout)
        return;
    layout->setGeometry(control.rect());
    for (int index = 0; index < layout->count(); ++index) {
        if (const auto *part = layout->itemAt(index)->widget())
            layOutParts(*part);
    }
}

} // namespace

double firstBaseline(const QWidget &control) {
    if (const auto *label = qobject_cast<const ThemeLabel *>(&control))
        return label->firstBaseline();
    if (const auto *layout = control.layout()) {
        const auto *first = layout->itemAt(0)->widget();
        return first->y() + firstBaseline(*first);
    }
    // The text stands in the middle.
    TextBlock text;
    text.set(shownText(control), {.font = control.font(), .wraps = false});
    text.layOut(1 << 20);
    return std::floor((control.height() - text.height()) / 2) + text.firstBaseline();
}

SettingsRowsLayout layoutSettingsRows(const std::vector<SettingsRowMetrics> &rows) {
    SettingsRowsLayout layout;
    bool isFirst = true;
    for (const auto &row : rows) {
        SettingsRowsLayout::Row placed;
        if (row.isVisible) {
            const int top = layout.height + (isFirst ? 0 : SettingsCard::rowSpacing);
            isFirst = false;
            const bool hasLabel = row.labelHeight > 0;
            const auto offset =
                hasLabel ? static_cast<int>(std::lround(row.controlBaseline - row.labelBaseline)) : 0;
            placed.labelTop = top + std::max(0, offset);
            placed.controlTop = top + std::max(0, -offset);
            layout.height =
                std::max(placed.labelTop + row.labelHeight, placed.controlTop + row.controlHeight);
        }
        layout.rows.push_back(placed);
    }
    return layout;
}

SettingsCard::SettingsCard(const QString &title, int width, QWidget *parent)
    : QWidget(parent),
      m_title(new ThemeLabel(title.toUpper(),
                             {.font = Theme::mono(titleFontSize), .color = Theme::sectionHead()}, this)) {
    setAccessibleName(title);
    m_title->setObjectName(QStringLiteral("cardTitle"));
    m_title->resize(m_title->sizeHint());
    setFixedWidth(width);
    layOut();
}

int SettingsCard::controlWidth() const {
    return width() - 2 * inset - SettingsRowLabel::columnWidth - columnSpacing;
}

void SettingsCard::addRow(const QString &label, QWidget *control, QWidget *buddy) {
    control->setParent(this);
    if (!buddy)
        buddy = control;
    SettingsRowLabel *rowLabel = nullptr;
    if (!label.isEmpty()) {
        rowLabel = new SettingsRowLabel(label, this);
        rowLabel->setBuddy(buddy);
        if (buddy->accessibleName().isEmpty())
            buddy->setAccessibleName(label);
    }
    m_rows.push_back({rowLabel, control});
    layOut();
}

void SettingsCard::layOut() {
    const int room = controlWidth();
    std::vector<SettingsRowMetrics> metrics;
    for (const auto &[label, control] : m_rows) {
        SettingsRowMetrics row;
        row.isVisible = !control->isHidden();
        const int controlWidth = widthOf(*control, room);
        control->resize(controlWidth, heightAt(*control, controlWidth));
        layOutParts(*control);
        row.controlHeight = control->height();
        row.controlBaseline = firstBaseline(*control);
        if (label) {
            row.labelHeight = label->height();
            row.labelBaseline = label->firstBaseline();
        }
        metrics.push_back(row);
    }
    const auto layout = layoutSettingsRows(metrics);
    const int top = m_title->height() + titleGap + inset;
    for (std::size_t index = 0; index < m_rows.size(); ++index) {
        const auto &[label, control] = m_rows[index];
        if (label)
            label->move(inset, top + layout.rows[index].labelTop);
        control->move(inset + SettingsRowLabel::columnWidth + columnSpacing,
                      top + layout.rows[index].controlTop);
    }
    setFixedHeight(top + layout.height + inset);
}

QRect SettingsCard::boxRect() const {
    return rect().adjusted(0, m_title->height() + titleGap, 0, 0);
}

void SettingsCard::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintBorderedBox(painter, boxRect(), boxCornerRadius, Theme::cardBg(), Theme::cardBorder());
}

} // namespace diary
