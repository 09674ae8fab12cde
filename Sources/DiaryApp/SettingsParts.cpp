// SPDX-License-Identifier: MIT
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/SettingsParts.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>

namespace diary {

namespace {

constexpr int hintWidth = 330;
constexpr double smallFontSize = 11;
constexpr double pathFontSize = 11;

template <typename Layout>
QWidget *arranged(int spacing, std::initializer_list<QWidget *> parts) {
    auto *whole = new QWidget;
    auto *layout = new Layout(whole);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    for (auto *part : parts)
        layout->addWidget(part);
    return whole;
}

} // namespace

QWidget *stacked(std::initializer_list<QWidget *> parts) {
    return arranged<QVBoxLayout>(settingsSpacing, parts);
}

QWidget *inARow(int spacing, std::initializer_list<QWidget *> parts) {
    auto *row = fillingARow(spacing, parts);
    static_cast<QHBoxLayout *>(row->layout())->addStretch();
    return row;
}

QWidget *fillingARow(int spacing, std::initializer_list<QWidget *> parts) {
    return arranged<QHBoxLayout>(spacing, parts);
}

ThemeLabel *smallLabel(const QString &text, const QColor &color) {
    return new ThemeLabel(text, {.font = Theme::system(smallFontSize), .color = color});
}

ThemeLabel *wrappingLabel(const QString &text, const QColor &color) {
    auto *label = new ThemeLabel(text, {.font = Theme::system(smallFontSize), .color = color, .wraps = true});
    // A layout would ask for the height at its own width.
    label->setFixedSize(hintWidth, label->heightForWidth(hintWidth));
    return label;
}

void setWrappingText(ThemeLabel &label, const QString &text) {
    label.setText(text);
    label.setFixedHeight(label.heightForWidth(hintWidth));
}

ElidedLabel *pathLabel(const std::filesystem::path &path) {
    auto *label = new ElidedLabel(Theme::mono(pathFontSize), Theme::inkMed(), Qt::ElideMiddle);
    label->setText(abbreviatingHome(path));
    label->setMinimumWidth(0);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return label;
}

void describe(QWidget *widget, const QString &description) {
    widget->setAccessibleDescription(description);
    widget->setToolTip(description.toHtmlEscaped());
}

} // namespace diary
