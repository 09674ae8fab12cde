// SPDX-License-Identifier: MIT
#include <DiaryApp/Alert.h>

#include <QAbstractButton>
#include <QMessageBox>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <vector>

namespace diary {
namespace {

class AlertTest : public ::testing::Test {
protected:
    void SetUp() override { window.show(); }

    void show(QStringList buttons) {
        showAlert(&window, {.message = QStringLiteral("<b>Message</b>"),
                            .informativeText = QStringLiteral("More"),
                            .buttons = std::move(buttons),
                            .onAnswer = [this](int button) { answers.push_back(button); }});
    }
    QMessageBox *box() const { return window.findChild<QMessageBox *>(); }
    bool isGone() const {
        return QTest::qWaitFor([this] { return box() == nullptr; });
    }
    void press(Qt::Key key) const { QTest::keyClick(box(), key); }

    QWidget window;
    std::vector<int> answers;
};

TEST_F(AlertTest, belongsToTheWindowAndReturnsAtOnce) {
    show({QStringLiteral("First"), QStringLiteral("Second")});
    ASSERT_NE(box(), nullptr);
    EXPECT_TRUE(box()->isVisible());
    EXPECT_EQ(box()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(box()->text(), QStringLiteral("<b>Message</b>"));
    EXPECT_EQ(box()->textFormat(), Qt::PlainText);
    EXPECT_TRUE(answers.empty());
}

TEST_F(AlertTest, answersWithTheNumberOfTheButtonAndGoes) {
    for (int number : {0, 1, 2}) {
        const QStringList texts = {QStringLiteral("First"), QStringLiteral("Second"),
                                   QStringLiteral("Third")};
        show(texts);
        for (auto *button : box()->buttons()) {
            if (button->text().remove(QLatin1Char('&')) == texts[number])
                button->click();
        }
        EXPECT_TRUE(isGone());
    }
    EXPECT_EQ(answers, (std::vector{0, 1, 2}));
}

TEST_F(AlertTest, takesReturnForTheFirstButtonAndEscapeForTheLast) {
    show({QStringLiteral("First"), QStringLiteral("Second")});
    press(Qt::Key_Return);
    EXPECT_TRUE(isGone());
    show({QStringLiteral("First"), QStringLiteral("Second")});
    press(Qt::Key_Escape);
    EXPECT_TRUE(isGone());
    EXPECT_EQ(answers, (std::vector{0, 1}));
}

TEST_F(AlertTest, hasAButtonWhenNoneIsGiven) {
    show({});
    ASSERT_EQ(box()->buttons().size(), 1);
    EXPECT_EQ(box()->buttons().first()->text().remove(QLatin1Char('&')), QStringLiteral("OK"));
    press(Qt::Key_Escape);
    EXPECT_TRUE(isGone());
    EXPECT_EQ(answers, std::vector{0});
}

TEST(Alert, goesUnansweredWithItsWindow) {
    bool answered = false;
    {
        QWidget window;
        window.show();
        showAlert(&window, {.message = QStringLiteral("Message"), .onAnswer = [&](int) { answered = true; }});
    }
    EXPECT_FALSE(answered);
}

} // namespace
} // namespace diary
