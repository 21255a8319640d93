// Day numbers to calendar dates and back.
#pragma once

#include "runtime/value.h"

#include <optional>

namespace runtime {

/// A day of the calendar (Gregorian, also before 1582) and a time of day.
struct DateParts {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The date rounded to the nearest second. Throws RunTimeError 6 (overflow) outside the years 100 to 9999.
[[nodiscard]] DateParts partsOf(Date date);
/// Nothing when there is no such day or time, or its year is not one of 100 to 9999.
[[nodiscard]] std::optional<Date> dateFromParts(const DateParts& parts);

/// The year that a number of one or two digits stands for: 0 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999.
[[nodiscard]] constexpr int yearOfTwoDigits(int digits)
{
    return digits + (digits < 30 ? 2000 : 1900);
}

} // namespace runtime
