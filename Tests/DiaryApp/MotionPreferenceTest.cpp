// SPDX-License-Identifier: MIT
#include <DiaryApp/MotionPreference.h>

#include <QApplication>
#include <QCommonStyle>
#include <QDBusVariant>
#include <QVariant>

#include <gtest/gtest.h>

namespace diary {
namespace {

QVariant wrapped(const QVariant &value) {
    return QVariant::fromValue(QDBusVariant(value));
}

TEST(MotionPreference, understandsTheDesktopHoweverItWrapsItsAnswer) {
    EXPECT_TRUE(MotionPreference::wantsAnimations(true));
    EXPECT_FALSE(MotionPreference::wantsAnimations(false));
    EXPECT_FALSE(MotionPreference::wantsAnimations(wrapped(false)));
    EXPECT_FALSE(MotionPreference::wantsAnimations(wrapped(wrapped(false))));
    EXPECT_TRUE(MotionPreference::wantsAnimations(wrapped(wrapped(true))));
}

TEST(MotionPreference, takesAnAnswerThatIsNoClaimForNone) {
    EXPECT_TRUE(MotionPreference::wantsAnimations({}));
    EXPECT_TRUE(MotionPreference::wantsAnimations(0));
    EXPECT_TRUE(MotionPreference::wantsAnimations(wrapped(QStringLiteral("false"))));
}

TEST(MotionPreference, isNotReducedWhereNoDesktopAnswers) {
    MotionPreference preference;
    preference.ask();
    QApplication::processEvents();
    EXPECT_FALSE(preference.isReduced());
}

class StillStyle : public QCommonStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override {
        return hint == SH_Widget_Animation_Duration ? 0
                                                    : QCommonStyle::styleHint(hint, option, widget, returned);
    }
};

TEST(MotionPreference, isReducedWhereTheStyleDoesWithoutAnimations) {
    // A style that was chosen before there was an application is nobody's, and would not be deleted.
    QApplication::style()->setParent(qApp);
    QApplication::setStyle(new StillStyle);
    EXPECT_TRUE(MotionPreference().isReduced());
    QApplication::setStyle(QStringLiteral("fusion"));
    EXPECT_FALSE(MotionPreference().isReduced());
}

} // namespace
} // namespace diary
