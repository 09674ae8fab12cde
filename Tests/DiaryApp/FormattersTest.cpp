// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"

#include <DiaryApp/Formatters.h>

#include <gtest/gtest.h>

namespace diary::Formatters {
namespace {

QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

Context contextOf(const char *language, const char *locale) {
    return {text(language), QLocale(text(locale))};
}

TEST(Formatters, nameADayInTheOrderOfTheLanguage) {
    struct Row {
        const char *language;
        const char *locale;
        std::int64_t month;
        std::int64_t day;
        const char *name;
    };
    const Row rows[] = {
        {"en", "en_US", 3, 14, "March 14"},        {"en", "en_GB", 3, 14, "14 March"},
        {"de", "de_DE", 3, 14, "14. März"},        {"fr", "fr_FR", 7, 14, "14 juillet"},
        {"es", "es_ES", 1, 2, "2 de enero"},       {"ru", "ru_RU", 3, 1, "1 марта"},
        {"ja", "ja_JP", 12, 31, "12月31日"},       {"ko", "ko_KR", 12, 31, "12월 31일"},
        {"zh-Hans", "zh_CN", 3, 14, "三月十四日"}, {"zh-Hans", "zh_CN", 12, 31, "十二月三十一日"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(contextOf(row.language, row.locale).dayName(row.month, row.day), text(row.name));
}

TEST(Formatters, nameTheLeapDayInEveryLanguage) {
    EXPECT_EQ(contextOf("en", "en_US").dayName(2, 29), text("February 29"));
    EXPECT_EQ(contextOf("ru", "ru_RU").dayName(2, 29), text("29 февраля"));
    EXPECT_EQ(contextOf("zh-Hans", "zh_CN").dayName(2, 29), text("二月二十九日"));
}

TEST(Formatters, nameADayThatTheMonthNeverHasByMonthAndNumber) {
    const auto names = contextOf("en", "en_US");
    EXPECT_EQ(names.dayName(2, 30), text("February 30"));
    EXPECT_EQ(names.dayName(4, 31), text("April 31"));
    EXPECT_EQ(contextOf("ru", "ru_RU").dayName(2, 30), text("февраль 30"));
}

TEST(Formatters, nameMonthsStandingAlone) {
    EXPECT_EQ(contextOf("en", "en_US").monthName(1), text("January"));
    EXPECT_EQ(contextOf("ru", "ru_RU").monthName(3), text("март"));
    EXPECT_EQ(contextOf("zh-Hans", "zh_CN").monthName(12), text("十二月"));
    EXPECT_EQ(contextOf("ja", "ja_JP").monthName(12), text("12月"));
}

TEST(Formatters, nameWeekdaysFromSundayToSaturday) {
    const auto names = contextOf("en", "en_US");
    const char *expected[] = {"",         "Sunday", "Monday",   "Tuesday", "Wednesday",
                              "Thursday", "Friday", "Saturday", ""};
    for (int weekday = 0; weekday <= 8; ++weekday)
        EXPECT_EQ(names.weekdayName(weekday), text(expected[weekday]));
    EXPECT_EQ(contextOf("de", "de_AT").weekdayName(7), text("Samstag"));
}

TEST(Formatters, speakEnglishUntilToldOtherwise) {
    EXPECT_EQ(Context().language(), text("en"));
    EXPECT_EQ(Context().dayName(3, 14), text("March 14"));
}

TEST(Formatters, followTheLanguageInUse) {
    for (const auto &[code, month] : {std::pair{"de", "März"}, {"ru", "март"}, {"zh-Hans", "三月"}}) {
        const testing::ScopedEnvironment language("DIARY_LANGUAGE", code);
        EXPECT_EQ(context().language(), text(code));
        EXPECT_EQ(context().monthName(3), text(month));
    }
    EXPECT_EQ(context().dayName(3, 14), text("March 14"));
}

TEST(Formatters, beginTheWeekAsTheUsersCountryDoes) {
    struct Row {
        const char *locale;
        int firstWeekday;
        const char *symbols;
    };
    const Row rows[] = {
        {"en_US", 1, "S M T W T F S"},        {"en_GB", 2, "M T W T F S S"},
        {"de_DE", 2, "M D M D F S S"},        {"es_ES", 2, "L M X J V S D"},
        {"ja_JP", 1, "日 月 火 水 木 金 土"}, {"zh_CN", 1, "日 一 二 三 四 五 六"},
        {"ar_EG", 7, "س ح ن ث ر خ ج"},
    };
    for (const auto &row : rows) {
        const auto found = week(QLocale(text(row.locale)));
        EXPECT_EQ(found.firstWeekday, row.firstWeekday) << row.locale;
        EXPECT_EQ(found.symbols.join(QLatin1Char(' ')), text(row.symbols)) << row.locale;
        EXPECT_EQ(weekdayColumns(QLocale(text(row.locale))), found.symbols);
    }
}

TEST(Formatters, haveSevenSymbolsForTheCLocale) {
    const auto found = week(QLocale::c());
    EXPECT_EQ(found.firstWeekday, 2);
    EXPECT_EQ(found.symbols.join(QLatin1Char(' ')), text("M T W T F S S"));
}

TEST(Formatters, writeChineseNumbers) {
    const std::pair<int, const char *> rows[] = {
        {0, "零"},      {1, "一"},      {9, "九"},      {10, "十"},      {11, "十一"},
        {19, "十九"},   {20, "二十"},   {21, "二十一"}, {29, "二十九"},  {30, "三十"},
        {31, "三十一"}, {99, "九十九"}, {100, "十十"},  {109, "十十九"},
    };
    for (const auto &[number, expected] : rows)
        EXPECT_EQ(chineseNumber(number), text(expected)) << number;
}

} // namespace
} // namespace diary::Formatters
