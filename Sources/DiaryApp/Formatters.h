// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

// How dates are written: names of months, weekdays and days in the language of the interface, the week as the
// user's country has it. Main thread only.
namespace diary::Formatters {

// The names of one language. Cheap to copy; making the first one of a language takes milliseconds.
class Context {
public:
    // English.
    Context();
    // The code is that of the interface's language; the locale gives the names and the order in a date.
    Context(QString language, const QLocale &locale);

    const QString &language() const { return m_language; }
    const QLocale &locale() const { return m_locale; }

    // Standing alone, as above a calendar. Months count from 1.
    QString monthName(std::int64_t month) const;
    // Standing alone. From 1 (Sunday) to 7 (Saturday); empty for any other number.
    QString weekdayName(int weekday) const;
    // Month and day as one says them: "March 14". In Chinese in Chinese numerals. A day that the month never
    // has is the month's name and the number.
    QString dayName(std::int64_t month, std::int64_t day) const;

private:
    class DayFormat;

    QString m_language;
    QLocale m_locale;
    std::shared_ptr<const DayFormat> m_dayFormat;
};

// The names of the language in use. Made anew when another language is in use than at the last call.
const Context &context();

// How a week is shown.
struct Week {
    QStringList symbols;  // seven, as short as the language has them, from the first weekday on
    int firstWeekday = 1; // 1 (Sunday) to 7 (Saturday)

    bool operator==(const Week &) const = default;
};

// By the user's own locale, whatever the interface speaks.
Week week(const QLocale &userLocale);
QStringList weekdayColumns(const QLocale &userLocale);

// In Chinese numerals, from 0 to 109.
QString chineseNumber(std::int64_t number);

} // namespace diary::Formatters
