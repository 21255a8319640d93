// Calendar arithmetic in the intervals that DateAdd, DateDiff and DatePart name.
#pragma once

#include "runtime/value.h"

#include <QDate>
#include <QString>

namespace data {

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

/// From "yyyy", "q", "m", "y", "d", "w", "ww", "h", "n" or "s"; 5 for everything else.
[[nodiscard]] Interval intervalNamed(const QString& name);

/// A date-time to the second, as a day and a time of day.
struct Moment {
    QDate day{1899, 12, 30};
    int second = 0; ///< of the day

    Moment() = default;
    explicit Moment(runtime::Date date);
    /// 5 outside the years 100 to 9999.
    [[nodiscard]] runtime::Date date() const;
};

/// How weeks are counted.
struct Week {
    int firstDay = 1;      ///< 1 Sunday to 7 Saturday; 0 that of the locale in force
    int firstWeekRule = 1; ///< the first week of a year: 1 with its first day, 2 with four days, 3 the first full one

    /// With 0 resolved; 5 for numbers out of range.
    [[nodiscard]] Week checked() const;
};

/// 1 for the first day of the week to 7.
[[nodiscard]] int weekdayOf(QDate day, const Week& week);
/// Months that end too early take their last day. 5 outside the years 100 to 9999.
[[nodiscard]] Moment added(Interval interval, qint32 count, const Moment& moment);
/// How many times a new interval begins on the way from one to the other (Weekday: whole weeks).
[[nodiscard]] qint64 differenceIn(Interval interval, const Moment& from, const Moment& to, const Week& week);
[[nodiscard]] int partIn(Interval interval, const Moment& moment, const Week& week);

} // namespace data
