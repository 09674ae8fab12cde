// SPDX-License-Identifier: MIT
#include <DiaryApp/Settings.h>
#include <DiaryApp/Theme.h>

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace diary {
namespace {

struct NamedColor {
    const char *name;
    QColor color;
    const char *hex;
};

TEST(Theme, hasThePalette) {
    const NamedColor rows[] = {
        {"accent", Theme::accent(), "#B4432B"},
        {"paper", Theme::paper(), "#FBF7F0"},
        {"panel", Theme::panel(), "#F6F2EB"},
        {"bar", Theme::bar(), "#F5F1E8"},
        {"border", Theme::border(), "#E2DDD5"},
        {"borderSoft", Theme::borderSoft(), "#E9E4DC"},
        {"cardBorder", Theme::cardBorder(), "#E4DFD7"},
        {"cardBorderHover", Theme::cardBorderHover(), "#C2BDB5"},
        {"cardBorderActive", Theme::cardBorderActive(), "#8C857D"},
        {"cardBg", Theme::cardBg(), "#F9F5EE"},
        {"cardBgActive", Theme::cardBgActive(), "#FFFBF3"},
        {"hoverBg", Theme::hoverBg(), "#E6E0D7"},
        {"gridHoverOutline", Theme::gridHoverOutline(), "#C5C0B8"},
        {"inkStrong", Theme::inkStrong(), "#241E19"},
        {"ink", Theme::ink(), "#2E2722"},
        {"inkTitle", Theme::inkTitle(), "#332C27"},
        {"inkMed", Theme::inkMed(), "#3E3631"},
        {"inkSource", Theme::inkSource(), "#433C36"},
        {"serifAside", Theme::serifAside(), "#635C55"},
        {"pastText", Theme::pastText(), "#6F6761"},
        {"chromeText", Theme::chromeText(), "#76706A"},
        {"chevron", Theme::chevron(), "#7F7973"},
        {"railSnippet", Theme::railSnippet(), "#7F7973"},
        {"statLabel", Theme::statLabel(), "#857F79"},
        {"statusText", Theme::statusText(), "#857F78"},
        {"railFoot", Theme::railFoot(), "#908B84"},
        {"daySubText", Theme::daySubText(), "#938E87"},
        {"sectionHead", Theme::sectionHead(), "#96918A"},
        {"emptyText", Theme::emptyText(), "#9C9790"},
        {"agoText", Theme::agoText(), "#A39E96"},
        {"faint", Theme::faint(), "#A9A49C"},
        {"ghostDay", Theme::ghostDay(), "#ACA79F"},
        {"placeholder", Theme::placeholder(), "#B2ADA6"},
        {"selectionBg", Theme::selectionBg(), "#FDD4C6"},
        {"pillBg", Theme::pillBg(), "#332C27"},
        {"pillText", Theme::pillText(), "#F5F1EA"},
        {"railTextActive", Theme::railTextActive(), "#48413B"},
        {"railYear", Theme::railYear(), "#534C45"},
    };
    for (const auto &[name, color, hex] : rows) {
        EXPECT_EQ(color.name().toUpper().toStdString(), hex) << name;
        EXPECT_EQ(color.alpha(), 255) << name;
    }
}

TEST(Theme, hasFourHeatShadesFromFaintToStrong) {
    const char *const hex[] = {"#E9E6DF", "#F0CBBE", "#DD9781", "#B0513B"};
    const auto &shades = Theme::heatShades();
    ASSERT_EQ(shades.size(), std::size(hex));
    for (std::size_t index = 0; index < shades.size(); ++index)
        EXPECT_EQ(shades.at(index).name().toUpper().toStdString(), hex[index]) << index;
}

TEST(Theme, staysInsideTheScreensColours) {
    // Its red lies just outside what a screen can show.
    EXPECT_EQ(Theme::cardBgActive().red(), 255);
    EXPECT_EQ(Theme::cardBgActive().redF(), 1.0F);
}

// Whatever the settings file holds, for as long as this lives.
class ScopedBodyFont {
public:
    explicit ScopedBodyFont(const std::optional<QString> &family) {
        Settings::shared().setBodyFontFamily(family);
    }
    ScopedBodyFont(const ScopedBodyFont &) = delete;
    ScopedBodyFont &operator=(const ScopedBodyFont &) = delete;
    ~ScopedBodyFont() { Settings::shared().setBodyFontFamily(std::nullopt); }
};

class ScopedInterfaceLanguage {
public:
    explicit ScopedInterfaceLanguage(const char *code) {
        Theme::setInterfaceLanguage(QString::fromUtf8(code));
    }
    ScopedInterfaceLanguage(const ScopedInterfaceLanguage &) = delete;
    ScopedInterfaceLanguage &operator=(const ScopedInterfaceLanguage &) = delete;
    ~ScopedInterfaceLanguage() { Theme::setInterfaceLanguage({}); }
};

TEST(Theme, roundsSizesToWholePixels) {
    EXPECT_EQ(Theme::serif(16.5).pixelSize(), 17);
    EXPECT_EQ(Theme::serif(14.4).pixelSize(), 14);
    EXPECT_EQ(Theme::mono(10.5).pixelSize(), 11);
    EXPECT_EQ(Theme::code(14.5).pixelSize(), 15);
    EXPECT_EQ(Theme::system(12.5).pixelSize(), 13);
    EXPECT_EQ(Theme::system(0.1).pixelSize(), 1);
}

TEST(Theme, hasTwoWeights) {
    EXPECT_EQ(Theme::mono(12).weight(), QFont::Normal);
    EXPECT_EQ(Theme::mono(12, Theme::Weight::Medium).weight(), QFont::Medium);
    EXPECT_EQ(Theme::system(12).weight(), QFont::Normal);
    EXPECT_EQ(Theme::system(12, Theme::Weight::Medium).weight(), QFont::Medium);
    EXPECT_EQ(Theme::serif(12).weight(), QFont::Normal);
}

TEST(Theme, spacesLettersInPixels) {
    const auto font = Theme::mono(46, Theme::Weight::Medium, -0.9);
    EXPECT_EQ(font.letterSpacingType(), QFont::AbsoluteSpacing);
    EXPECT_NEAR(font.letterSpacing(), -0.9, 1 / 64.0);
    EXPECT_EQ(Theme::mono(12).letterSpacing(), 0);
}

TEST(Theme, usesTheBodyFontOfTheUsersChoiceFromTheNextCallOn) {
    const auto builtIn = Theme::serif(16).families();
    const auto chosen = QFontInfo(Theme::mono(16)).family();
    ASSERT_FALSE(builtIn.contains(chosen));
    {
        const ScopedBodyFont font(chosen);
        EXPECT_EQ(Theme::serif(16).families().first(), chosen);
        EXPECT_EQ(QFontInfo(Theme::serif(16)).family(), chosen);
        // Letters that it lacks are still drawn in the built-in one.
        EXPECT_EQ(Theme::serif(16).families().sliced(1), builtIn);
    }
    EXPECT_EQ(Theme::serif(16).families(), builtIn);
}

TEST(Theme, passesOverABodyFontThatIsNotInstalled) {
    const auto builtIn = Theme::serif(16).families();
    for (const char *family : {"No Such Family", "", "serif"}) {
        const ScopedBodyFont font(QString::fromUtf8(family));
        EXPECT_EQ(Theme::serif(16).families(), builtIn) << family;
    }
}

TEST(Theme, readsASettingThatAnotherProgramWrites) {
    const auto chosen = QFontInfo(Theme::mono(16)).family();
    const ScopedBodyFont font(std::nullopt);
    Settings(Defaults(Settings::shared().defaults().path())).setBodyFontFamily(chosen);
    EXPECT_EQ(Theme::serif(16).families().first(), chosen);
}

TEST(Theme, drawsLatinLettersInTheFirstFamily) {
    // Were it an alias, the letters would come from the family of the Han characters.
    for (const auto &font : {Theme::serif(14), Theme::mono(14), Theme::code(14), Theme::system(14)}) {
        EXPECT_TRUE(QFontDatabase::hasFamily(font.families().first()))
            << font.families().first().toStdString();
        EXPECT_EQ(QFontInfo(font).family(), font.families().first());
    }
    EXPECT_TRUE(QFontInfo(Theme::mono(14)).fixedPitch());
    EXPECT_TRUE(QFontInfo(Theme::code(14)).fixedPitch());
}

TEST(Theme, drawsHanCharactersAsTheInterfaceLanguageDoes) {
    const auto has = [](const QFont &font, const char *region) {
        const auto &families = font.families();
        return std::any_of(families.begin(), families.end(), [&](const QString &family) {
            return family.endsWith(QLatin1String(" CJK ") + QLatin1String(region));
        });
    };
    if (!QFontDatabase::hasFamily(QStringLiteral("Noto Sans CJK JP")))
        GTEST_SKIP() << "needs the Noto CJK fonts";
    for (const auto &[code, region] :
         {std::pair{"zh-Hans", "SC"}, std::pair{"ja", "JP"}, std::pair{"ko", "KR"}, std::pair{"fr", "SC"}}) {
        const ScopedInterfaceLanguage language(code);
        for (const auto &font : {Theme::serif(14), Theme::mono(14), Theme::code(14), Theme::system(14)}) {
            for (const char *other : {"SC", "JP", "KR", "TC", "HK"})
                EXPECT_EQ(has(font, other), std::string_view(other) == region) << code << " " << other;
        }
    }
}

TEST(Theme, givesOtherWidgetsTheDesktopsFontByItsFamily) {
    const auto font = Theme::application();
    EXPECT_EQ(font.families(), QStringList(Theme::system(14).families().first()));
    EXPECT_EQ(QFontInfo(font).family(), QFontInfo(QApplication::font()).family());
    EXPECT_EQ(QFontInfo(font).pixelSize(), QFontInfo(QApplication::font()).pixelSize());
}

// WCAG 2: from 1 for no contrast to 21 for black on white.
double contrast(const QColor &one, const QColor &other) {
    const auto luminance = [](const QColor &color) {
        const auto linear = [](double x) {
            return x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(Theme, neverWritesOnItsOwnColour) {
    const struct {
        QPalette::ColorRole text;
        QPalette::ColorRole ground;
    } rows[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},
        {QPalette::ButtonText, QPalette::Button},
        {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::HighlightedText, QPalette::Highlight},
        {QPalette::Link, QPalette::Base},
    };
    const auto palette = Theme::palette();
    for (const auto &[text, ground] : rows) {
        for (const auto group : {QPalette::Active, QPalette::Inactive})
            EXPECT_GE(contrast(palette.color(group, text), palette.color(group, ground)), 4.5) << text;
        EXPECT_GE(
            contrast(palette.color(QPalette::Disabled, text), palette.color(QPalette::Disabled, ground)), 2)
            << text;
    }
}

} // namespace
} // namespace diary
