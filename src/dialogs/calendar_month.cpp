#include "dialogs/calendar_month.h"

#include "runtime/calendar.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

namespace dialogs {

namespace {

std::chrono::year_month monthOf(const runtime::DateParts& parts)
{
    return std::chrono::year{parts.year} / std::chrono::month{static_cast<unsigned>(parts.month)};
}

runtime::Date dayOrPresent(int year, int month, int day, const runtime::Clock& clock)
{
    return runtime::dateFromParts({.year = year, .month = month, .day = day}).value_or(clock.now());
}

} // namespace

CalendarMonth::CalendarMonth(runtime::Date date)
{
    const runtime::DateParts parts = runtime::partsOf(date);
    month_ = monthOf(parts);
    day_ = parts.day;
}

CalendarMonth::CalendarMonth(const QString& date, const runtime::Clock& clock)
    : CalendarMonth(runtime::isDate(date) ? runtime::toDate(date) : clock.now())
{
}

CalendarMonth CalendarMonth::inMonth(int month, const runtime::Clock& clock) const
{
    return CalendarMonth(dayOrPresent(year(), month, day(), clock));
}

CalendarMonth CalendarMonth::inYear(int year, const runtime::Clock& clock) const
{
    return CalendarMonth(dayOrPresent(year, month(), day(), clock));
}

int CalendarMonth::firstWeekday() const
{
    const std::chrono::weekday weekday{std::chrono::sys_days{month_ / 1}};
    return static_cast<int>(weekday.c_encoding()) + 1;
}

int CalendarMonth::daysInMonth() const
{
    return static_cast<int>(static_cast<unsigned>((month_ / std::chrono::last).day()));
}

Cell CalendarMonth::cellOf(int day) const
{
    const int cell = firstWeekday() + day - 2; // the first cell of row 1 is 0
    return {1 + cell / kDaysAWeek, cell % kDaysAWeek};
}

int CalendarMonth::dayAt(Cell cell) const
{
    const int day = (cell.row - 1) * kDaysAWeek + cell.column - firstWeekday() + 2;
    return day >= 1 && day <= daysInMonth() ? day : 0;
}

int CalendarMonth::dayOf(runtime::Date date) const
{
    const runtime::DateParts parts = runtime::partsOf(date);
    return monthOf(parts) == month_ ? parts.day : 0;
}

QString CalendarMonth::caption() const
{
    return runtime::format(dateOf(1), QStringLiteral("mmmm yyyy"));
}

QString CalendarMonth::dateText(int day) const
{
    return runtime::format(dateOf(day), QStringLiteral("d/m/yyyy"));
}

runtime::Date CalendarMonth::dateOf(int day) const
{
    return runtime::dateFromParts({.year = year(), .month = month(), .day = day}).value();
}

} // namespace dialogs
