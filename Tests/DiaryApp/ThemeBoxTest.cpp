// SPDX-License-Identifier: MIT
#include <DiaryApp/ThemeBox.h>

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(ThemeBox, fillsItselfWithItsColour) {
    ThemeBox box(QColor(1, 2, 3));
    box.resize(4, 3);
    QImage expected(4, 3, QImage::Format_RGB32);
    expected.fill(QColor(1, 2, 3));
    EXPECT_EQ(box.grab().toImage().convertToFormat(QImage::Format_RGB32), expected);
}

TEST(ThemeBox, changesItsColour) {
    ThemeBox box(Qt::white);
    box.resize(2, 2);
    box.setColor(QColor(9, 8, 7));
    EXPECT_EQ(box.color(), QColor(9, 8, 7));
    EXPECT_EQ(box.grab().toImage().pixelColor(1, 1), QColor(9, 8, 7));
}

TEST(ThemeBox, letsWhatLiesBeneathShowThroughATranslucentColour) {
    QWidget below;
    auto colors = below.palette();
    colors.setColor(QPalette::Window, Qt::white);
    below.setPalette(colors);
    below.setAutoFillBackground(true);
    below.resize(2, 2);
    ThemeBox box(QColor(0, 0, 0, 0), &below);
    box.resize(2, 2);
    EXPECT_EQ(below.grab().toImage().pixelColor(1, 1), QColor(Qt::white));
    box.setColor(Qt::black);
    EXPECT_EQ(below.grab().toImage().pixelColor(1, 1), QColor(Qt::black));
}

} // namespace
} // namespace diary
