// SPDX-License-Identifier: MIT
#include <DiaryApp/FontFamilies.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace diary {
namespace {

QStringList list(const char *commaSeparated) {
    const auto text = QString::fromUtf8(commaSeparated);
    return text.isEmpty() ? QStringList() : text.split(QStringLiteral(", "));
}

FontFamilies::Surroundings surroundings(const char *languages, const char *installed) {
    const auto families = list(installed);
    return {list(languages), [families](const QString &family) { return families.contains(family); }};
}

std::string text(const QStringList &families) {
    return families.join(QStringLiteral(", ")).toStdString();
}

TEST(FontFamilies, takeTheFirstInstalledOfTheBodyFamilies) {
    const struct {
        const char *chosen; // nullptr for no choice
        const char *installed;
        const char *expected;
    } rows[] = {
        {"Georgia", "Georgia, PingFang SC, Songti SC, Noto Serif", "Georgia, Noto Serif"},
        {"Georgia", "PingFang SC, Songti SC, Noto Serif", "PingFang SC, Noto Serif"},
        {"Georgia", "Songti SC, Noto Serif", "Songti SC, Noto Serif"},
        {"Georgia", "Noto Serif", "Noto Serif"},
        {"", "Noto Serif", "Noto Serif"},
        {"georgia", "Georgia, Noto Serif", "Noto Serif"},
        {nullptr, "Georgia, PingFang SC, Songti SC, Noto Serif", "PingFang SC, Noto Serif"},
        {nullptr, "Songti SC", "Songti SC, serif"},
        {nullptr, "DejaVu Serif, Liberation Serif", "DejaVu Serif"},
        {nullptr, "DejaVu Serif, Noto Serif, Source Serif 4", "Source Serif 4"},
        {"Noto Serif", "Noto Serif, DejaVu Serif", "Noto Serif"},
        {nullptr, "Georgia", "serif"},
        {nullptr, "", "serif"},
    };
    for (const auto &[chosen, installed, expected] : rows) {
        const auto setting = chosen ? std::optional(QString::fromUtf8(chosen)) : std::nullopt;
        EXPECT_EQ(text(FontFamilies::body(setting, list("serif"), surroundings("en", installed))), expected)
            << (chosen ? chosen : "no choice") << " of " << installed;
    }
}

TEST(FontFamilies, drawHanCharactersInTheReadersWay) {
    const char *const all = "Noto Serif, Noto Serif CJK SC, Noto Serif CJK TC, Noto Serif CJK HK, "
                            "Noto Serif CJK JP, Noto Serif CJK KR";
    const struct {
        const char *languages;
        const char *region;
    } rows[] = {
        {"zh-Hans, ja", "SC"},
        {"ja", "JP"},
        {"ko", "KR"},
        {"zh-Hant", "TC"},
        {"zh-HK", "HK"},
        {"zh-Hant-MO", "HK"},
        {"zh-TW", "TC"},
        {"zh-SG", "SC"},
        {"en", "SC"},
        {"", "SC"},
        {"fr, fr-FR, ja-JP", "JP"},
        {"de, ko-KR, ja-JP", "KR"},
        {"en, en-US, zh-TW", "TC"},
        {"C", "SC"},
    };
    for (const auto &[languages, region] : rows)
        EXPECT_EQ(text(FontFamilies::body(std::nullopt, list("serif"), surroundings(languages, all))),
                  std::string("Noto Serif, Noto Serif CJK ") + region)
            << languages;
}

TEST(FontFamilies, haveOneFamilyOfHanCharactersAtMost) {
    const char *const installed = "Noto Serif, Noto Sans CJK JP, Noto Serif JP, Noto Serif CJK JP, "
                                  "Noto Sans CJK SC, Noto Serif CJK SC, Noto Sans Mono CJK JP";
    const auto japanese = surroundings("ja", installed);
    EXPECT_EQ(text(FontFamilies::body(std::nullopt, list("serif"), japanese)),
              "Noto Serif, Noto Serif CJK JP");
    EXPECT_EQ(text(FontFamilies::system(list("Cantarell"), japanese)), "Cantarell, Noto Sans CJK JP");
    EXPECT_EQ(text(FontFamilies::mono(list("monospace"), japanese)), "monospace, Noto Sans Mono CJK JP");
    // Another country's shapes are no replacement.
    EXPECT_EQ(text(FontFamilies::body(std::nullopt, list("serif"), surroundings("ko", installed))),
              "Noto Serif");
    EXPECT_EQ(text(FontFamilies::body(std::nullopt, list("serif"),
                                      surroundings("ja", "Noto Serif, Noto Sans CJK JP"))),
              "Noto Serif, Noto Sans CJK JP");
}

TEST(FontFamilies, keepColouredPicturesLast) {
    const auto all = surroundings("ja", "Noto Serif, Noto Color Emoji, Noto Serif CJK JP, Noto Sans CJK JP");
    EXPECT_EQ(FontFamilies::body(std::nullopt, list("serif"), all).last(),
              QStringLiteral("Noto Color Emoji"));
    EXPECT_EQ(FontFamilies::system(list("Cantarell"), all).last(), QStringLiteral("Noto Color Emoji"));
    EXPECT_EQ(FontFamilies::mono(list("monospace"), all).last(), QStringLiteral("Noto Color Emoji"));
}

TEST(FontFamilies, fallBackToTheDesktopsFixedWidth) {
    EXPECT_EQ(text(FontFamilies::mono(list("monospace"), surroundings("en", "IBM Plex Mono, Menlo"))),
              "IBM Plex Mono, monospace");
    EXPECT_EQ(text(FontFamilies::mono(list("monospace"), surroundings("en", "Menlo"))), "monospace");
    EXPECT_EQ(text(FontFamilies::code(list("monospace"), surroundings("en", "IBM Plex Mono, Menlo"))),
              "Menlo, monospace");
    EXPECT_EQ(text(FontFamilies::code(list("monospace"), surroundings("en", "IBM Plex Mono"))),
              "IBM Plex Mono, monospace");
    EXPECT_EQ(text(FontFamilies::code(list("monospace"), surroundings("en", ""))), "monospace");
}

} // namespace
} // namespace diary
