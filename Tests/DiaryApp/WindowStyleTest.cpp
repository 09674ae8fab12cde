// SPDX-License-Identifier: MIT
#include <DiaryApp/WindowStyle.h>

#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>

#include <gtest/gtest.h>

namespace diary {
namespace {

const auto extension = QStyle::SP_ToolBarHorizontalExtensionButton;

QImage painted(const QIcon &icon, const QSize &size, double scale) {
    QImage picture(size * scale, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    icon.paint(&painter, QRect(QPoint(), size));
    return picture;
}

TEST(WindowStyle, showsTheSameIconForAMenuBarThatIsTooNarrow) {
    const WindowStyle style;
    const QProxyStyle fusion(QStringLiteral("fusion"));
    const auto icon = style.standardIcon(extension);
    const auto expected = fusion.standardIcon(extension);
    ASSERT_FALSE(icon.isNull());
    for (const QSize size : {QSize(8, 8), QSize(16, 16), QSize(32, 32)}) {
        EXPECT_EQ(icon.actualSize(size), expected.actualSize(size));
        for (const double scale : {1.0, 2.0}) {
            EXPECT_EQ(painted(icon, size, scale), painted(expected, size, scale)) << scale;
            EXPECT_EQ(icon.pixmap(size, scale).toImage(), expected.pixmap(size, scale).toImage()) << scale;
            EXPECT_EQ(icon.pixmap(size, scale, QIcon::Disabled).toImage(),
                      expected.pixmap(size, scale, QIcon::Disabled).toImage())
                << scale;
        }
    }
    EXPECT_EQ(icon.availableSizes(), expected.availableSizes());
}

TEST(WindowStyle, showsItAlsoOnceTheStyleIsGone) {
    QIcon icon;
    {
        const WindowStyle style;
        icon = style.standardIcon(extension);
    }
    const QIcon copy(icon);
    EXPECT_EQ(copy.pixmap(16, 16).toImage(),
              QProxyStyle(QStringLiteral("fusion")).standardIcon(extension).pixmap(16, 16).toImage());
}

TEST(WindowStyle, leavesOtherIconsAlone) {
    const WindowStyle style;
    const QProxyStyle fusion(QStringLiteral("fusion"));
    for (const auto other : {QStyle::SP_MessageBoxWarning, QStyle::SP_LineEditClearButton})
        EXPECT_EQ(style.standardIcon(other).pixmap(16, 16).toImage(),
                  fusion.standardIcon(other).pixmap(16, 16).toImage());
}

} // namespace
} // namespace diary
