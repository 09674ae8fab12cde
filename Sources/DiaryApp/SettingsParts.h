// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QLatin1String>
#include <QString>

#include <filesystem>
#include <initializer_list>

class QWidget;

// What the rows of the settings window's cards are made of. Whoever takes a widget owns it.
namespace diary {

class ElidedLabel;
class ThemeLabel;

// All in logical pixels.
inline constexpr int settingsWindowWidth = 540;
inline constexpr int settingsMargin = 22;
inline constexpr int settingsCardWidth = settingsWindowWidth - 2 * settingsMargin;

// Between controls that stand below or beside each other.
inline constexpr int settingsSpacing = 8;
inline constexpr int settingsRowSpacing = 10;

// Widgets below each other, as one control.
QWidget *stacked(std::initializer_list<QWidget *> parts);

// Widgets beside each other, as one control: at the leading edge, or with the first as wide as it can be.
QWidget *inARow(int spacing, std::initializer_list<QWidget *> parts);
QWidget *fillingARow(int spacing, std::initializer_list<QWidget *> parts);

// A text on one line, and one on as many lines as it needs at the width of hints.
ThemeLabel *smallLabel(const QString &text, const QColor &color);
ThemeLabel *wrappingLabel(const QString &text, const QColor &color);

// For another text of a wrapping label.
void setWrappingText(ThemeLabel &label, const QString &text);

// With a tilde for the home folder, and shortened in the middle.
ElidedLabel *pathLabel(const std::filesystem::path &path);

template <typename Widget>
Widget *named(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

// In a tip, and for those who cannot see.
void describe(QWidget *widget, const QString &description);

} // namespace diary
