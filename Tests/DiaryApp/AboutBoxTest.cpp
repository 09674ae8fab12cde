// SPDX-License-Identifier: MIT
#include <DiaryApp/AboutBox.h>

#include <QApplication>
#include <QMessageBox>
#include <QWidget>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(AboutBox, tellsNameVersionLicenceAndLibraries) {
    QApplication::setApplicationVersion(QStringLiteral("7.8.9"));
    QWidget window;
    window.show();
    showAboutBox(&window);
    const auto *box = window.findChild<QMessageBox *>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_FALSE(box->text().isEmpty());
    for (const auto *part : {"7.8.9", "MIT", "ICU", qVersion()})
        EXPECT_TRUE(box->informativeText().contains(QLatin1String(part))) << part;
}

} // namespace
} // namespace diary
