#include "runtime/calendar.h"

#include "runtime/run_time_error.h"

#include <chrono>
#include <cmath>

namespace runtime {
namespace {

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr int kSecondsADay = 24 * 60 * 60;
constexpr std::chrono::sys_days kDayZero = std::chrono::year{1899} / std::chrono::December / 30;

constexpr int dayNumber(std::chrono::year_month_day day)
{
    return static_cast<int>((std::chrono::sys_days{day} - kDayZero).count());
}

constexpr int kFirstDay = dayNumber(std::chrono::year{kFirstYear} / std::chrono::January / 1);
constexpr int kLastDay = dayNumber(std::chrono::year{kLastYear} / std::chrono::December / 31);

} // namespace

DateParts partsOf(Date date)
{
    double day = std::trunc(date.days);
    // Not (a < b || ...): a NaN must not pass.
    if (!(day >= kFirstDay && day <= kLastDay)) {
        throw RunTimeError(ErrorNumber::Overflow);
    }
    auto seconds = static_cast<int>(std::lround(std::fabs(date.days - day) * kSecondsADay));
    if (seconds == kSecondsADay) {
        seconds = 0;
        day += 1;
        if (day > kLastDay) {
            throw RunTimeError(ErrorNumber::Overflow);
        }
    }
    const std::chrono::year_month_day calendarDay{kDayZero + std::chrono::days{static_cast<int>(day)}};
    return DateParts{static_cast<int>(calendarDay.year()),
                     static_cast<int>(static_cast<unsigned>(calendarDay.month())),
                     static_cast<int>(static_cast<unsigned>(calendarDay.day())),
                     seconds / 3600,
                     seconds / 60 % 60,
                     seconds % 60};
}

std::optional<Date> dateFromParts(const DateParts& parts)
{
    const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
    if (!within(parts.year, kFirstYear, kLastYear) || !within(parts.month, 1, 12) || !within(parts.day, 1, 31) ||
        !within(parts.hour, 0, 23) || !within(parts.minute, 0, 59) || !within(parts.second, 0, 59)) {
        return std::nullopt;
    }
    const std::chrono::year_month_day calendarDay{std::chrono::year{parts.year},
                                                  std::chrono::month{static_cast<unsigned>(parts.month)},
                                                  std::chrono::day{static_cast<unsigned>(parts.day)}};
    if (!calendarDay.ok()) {
        return std::nullopt;
    }
    const int day = dayNumber(calendarDay);
    const double time = static_cast<double>(parts.hour * 3600 + parts.minute * 60 + parts.second) / kSecondsADay;
    return Date{day < 0 ? day - time : day + time};
}

} // namespace runtime
