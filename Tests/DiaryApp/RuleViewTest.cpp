// SPDX-License-Identifier: MIT
#include <DiaryApp/RuleView.h>

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(RuleView, isOnePixelHighAndAsWideAsItsPlace) {
    QWidget page;
    QVBoxLayout column(&page);
    column.setContentsMargins(0, 0, 0, 0);
    auto *rule = new RuleView(Qt::red);
    column.addWidget(rule);
    column.addStretch();
    page.resize(120, 60);
    column.activate();
    EXPECT_EQ(rule->geometry(), QRect(0, 0, 120, 1));
}

TEST(RuleView, standsUprightToo) {
    QWidget page;
    QHBoxLayout row(&page);
    row.setContentsMargins(0, 0, 0, 0);
    auto *rule = new RuleView(Qt::red, Qt::Vertical);
    row.addWidget(rule);
    row.addStretch();
    page.resize(120, 60);
    row.activate();
    EXPECT_EQ(rule->geometry(), QRect(0, 0, 1, 60));
}

TEST(RuleView, touchesNoPixelBesideItsOwn) {
    for (const double ratio : {1.0, 2.0}) {
        QWidget page;
        auto colors = page.palette();
        colors.setColor(QPalette::Window, Qt::white);
        page.setPalette(colors);
        page.resize(10, 5);
        RuleView rule(Qt::red, Qt::Horizontal, &page);
        rule.setGeometry(0, 2, 10, 1);

        QPixmap picture(page.size() * ratio);
        picture.setDevicePixelRatio(ratio);
        page.render(&picture);
        const auto image = picture.toImage();
        for (int y = 0; y < image.height(); ++y) {
            const bool isRule = y >= 2 * ratio && y < 3 * ratio;
            EXPECT_EQ(image.pixelColor(5, y), QColor(isRule ? Qt::red : Qt::white)) << ratio << " " << y;
        }
    }
}

} // namespace
} // namespace diary
