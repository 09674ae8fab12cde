// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"

#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QHelpEvent>
#include <QToolTip>

#include <gtest/gtest.h>

namespace diary {
namespace {

class ElidedLabelTest : public ::testing::Test {
protected:
    ElidedLabelTest() {
        label.setText(text);
        label.resize(label.sizeHint());
    }
    ~ElidedLabelTest() override { QToolTip::hideText(); }

    bool asksForToolTip() {
        QToolTip::hideText();
        QHelpEvent event(QEvent::ToolTip, {2, 2}, label.mapToGlobal(QPoint(2, 2)));
        QCoreApplication::sendEvent(&label, &event);
        return event.isAccepted();
    }

    const QString text = QStringLiteral("~/Documents/<Diary> & more/03-14.md");
    ElidedLabel label{Theme::mono(10.5), Theme::statusText(), Qt::ElideMiddle};
};

TEST_F(ElidedLabelTest, showsItsWholeTextInItsColour) {
    EXPECT_EQ(label.shownText(), text);
    EXPECT_GT(testing::pixelsOf(Theme::statusText(), testing::pictureOf(label), label.rect()), 0);
}

TEST_F(ElidedLabelTest, keepsBothEndsWhenItIsNarrow) {
    label.resize(120, 20);
    EXPECT_TRUE(label.shownText().startsWith(QStringLiteral("~/")));
    EXPECT_TRUE(label.shownText().endsWith(QStringLiteral(".md")));
    EXPECT_TRUE(label.shownText().contains(QStringLiteral("…")));
    EXPECT_EQ(label.text(), text);
}

TEST_F(ElidedLabelTest, takesAnotherAppearance) {
    label.setAppearance(Theme::system(11), Theme::accent(), Qt::ElideRight);
    label.resize(100, 20);
    EXPECT_TRUE(label.shownText().endsWith(QStringLiteral("…")));
    const auto picture = testing::pictureOf(label);
    EXPECT_GT(testing::pixelsOf(Theme::accent(), picture, label.rect()), 0);
    EXPECT_EQ(testing::pixelsOf(Theme::statusText(), picture, label.rect()), 0);
}

TEST_F(ElidedLabelTest, tellsTheWholeTextOnlyWhenItIsShortened) {
    EXPECT_FALSE(asksForToolTip());
    label.resize(120, 20);
    EXPECT_TRUE(asksForToolTip());
    EXPECT_EQ(QToolTip::text(), text.toHtmlEscaped());
}

TEST_F(ElidedLabelTest, isStaticTextForAssistiveTechnologies) {
    label.resize(40, 20);
    const auto *accessible = QAccessible::queryAccessibleInterface(&label);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), text);
}

} // namespace
} // namespace diary
