// SPDX-License-Identifier: MIT
#include <DiaryApp/Theme.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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
