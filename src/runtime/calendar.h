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

} // namespace runtime
