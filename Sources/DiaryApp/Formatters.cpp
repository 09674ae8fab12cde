// SPDX-License-Identifier: MIT
#include <DiaryApp/Formatters.h>
#include <DiaryApp/Localization.h>
#include <DiaryKit/DiaryDay.h>

#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/uloc.h>

#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <utility>

namespace diary::Formatters {

namespace {

constexpr int daysPerWeek = 7;

const UChar *icuText(const QString &text) {
    return reinterpret_cast<const UChar *>(text.utf16());
}

// Fills a text by an ICU function that is asked for the length first.
template <typename Function>
std::optional<QString> fromIcu(Function function) {
    std::array<UChar, 128> buffer{};
    UErrorCode status = U_ZERO_ERROR;
    const auto length = function(buffer.data(), static_cast<std::int32_t>(buffer.size()), &status);
    if (U_FAILURE(status) || length > static_cast<std::int32_t>(buffer.size()))
        return std::nullopt;
    return QString(reinterpret_cast<const QChar *>(buffer.data()), length);
}

// Qt counts from 1 (Monday) to 7 (Sunday).
Qt::DayOfWeek qtWeekday(int weekday) {
    return static_cast<Qt::DayOfWeek>((weekday + daysPerWeek - 2) % daysPerWeek + 1);
}

bool hasDay(std::int64_t month, std::int64_t day) {
    return month >= 1 && month <= 12 && day >= 1 &&
           day <= MonthDay::daysInCycleMonth[static_cast<std::size_t>(month - 1)];
}

} // namespace

// The order and wording of month and day; Qt has them only together with a year or a weekday. Found out when
// it is first needed, since that takes ICU about a millisecond.
class Context::DayFormat {
public:
    explicit DayFormat(const QLocale &locale) : m_locale(locale) {}
    DayFormat(const DayFormat &) = delete;
    DayFormat &operator=(const DayFormat &) = delete;
    ~DayFormat() {
        if (m_format)
            udat_close(m_format);
    }

    std::optional<QString> text(std::int64_t month, std::int64_t day) const {
        std::call_once(m_isOpened, [this] { open(); });
        if (!m_format)
            return std::nullopt;
        // A leap year, in which every day of the cycle has a date; noon.
        const std::chrono::sys_days date = std::chrono::year(2024) /
                                           std::chrono::month(static_cast<unsigned>(month)) /
                                           std::chrono::day(static_cast<unsigned>(day));
        const std::chrono::duration<double, std::milli> instant =
            date.time_since_epoch() + std::chrono::hours(12);
        return fromIcu([&](UChar *buffer, std::int32_t capacity, UErrorCode *result) {
            return udat_format(m_format, instant.count(), buffer, capacity, nullptr, result);
        });
    }

private:
    void open() const {
        const auto name = m_locale.bcp47Name().toLatin1();
        UErrorCode status = U_ZERO_ERROR;
        std::array<char, ULOC_FULLNAME_CAPACITY> icuName{};
        uloc_forLanguageTag(name.constData(), icuName.data(), icuName.size(), nullptr, &status);
        const auto skeleton = QStringLiteral("MMMMd");
        auto *generator = udatpg_open(icuName.data(), &status);
        const auto pattern = fromIcu([&](UChar *buffer, std::int32_t capacity, UErrorCode *result) {
            return udatpg_getBestPattern(generator, icuText(skeleton),
                                         static_cast<std::int32_t>(skeleton.size()), buffer, capacity,
                                         result);
        });
        udatpg_close(generator);
        if (U_FAILURE(status) || !pattern)
            return;
        const auto zone = QStringLiteral("UTC");
        m_format = udat_open(UDAT_PATTERN, UDAT_PATTERN, icuName.data(), icuText(zone), -1, icuText(*pattern),
                             static_cast<std::int32_t>(pattern->size()), &status);
    }

    QLocale m_locale;
    mutable std::once_flag m_isOpened;
    mutable UDateFormat *m_format = nullptr; // none when ICU lacks what it needs
};

Context::Context() : Context(QStringLiteral("en"), QLocale(QLocale::English)) {}

Context::Context(QString language, const QLocale &locale)
    : m_language(std::move(language)),
      m_locale(locale),
      m_dayFormat(std::make_shared<const DayFormat>(locale)) {}

QString Context::monthName(std::int64_t month) const {
    return m_locale.standaloneMonthName(static_cast<int>(month));
}

QString Context::weekdayName(int weekday) const {
    if (weekday < 1 || weekday > daysPerWeek)
        return {};
    return m_locale.standaloneDayName(qtWeekday(weekday));
}

QString Context::dayName(std::int64_t month, std::int64_t day) const {
    if (m_language == QLatin1String("zh-Hans"))
        return chineseNumber(month) + QStringLiteral("月") + chineseNumber(day) + QStringLiteral("日");
    const auto text = hasDay(month, day) ? m_dayFormat->text(month, day) : std::nullopt;
    return text ? *text : monthName(month) + QLatin1Char(' ') + QString::number(day);
}

const Context &context() {
    static Context kept;
    const auto language = Localization::effectiveLanguage();
    const auto locale = Localization::locale();
    if (kept.language() != language || kept.locale() != locale)
        kept = Context(language, locale);
    return kept;
}

Week week(const QLocale &userLocale) {
    Week week;
    week.firstWeekday = userLocale.firstDayOfWeek() % daysPerWeek + 1;
    for (int column = 0; column < daysPerWeek; ++column) {
        const int weekday = (week.firstWeekday - 1 + column) % daysPerWeek + 1;
        week.symbols.append(userLocale.standaloneDayName(qtWeekday(weekday), QLocale::NarrowFormat));
    }
    return week;
}

QStringList weekdayColumns(const QLocale &userLocale) {
    return week(userLocale).symbols;
}

QString chineseNumber(std::int64_t number) {
    static const auto digits = QStringLiteral("零一二三四五六七八九十");
    const auto digit = [](std::int64_t value) { return digits.mid(value, 1); };
    if (number <= 10)
        return digit(number);
    const auto tens = number / 10 > 1 ? digit(number / 10) : QString();
    const auto ones = number % 10 > 0 ? digit(number % 10) : QString();
    return tens + digit(10) + ones;
}

} // namespace diary::Formatters
