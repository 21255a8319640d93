// A month as a calendar shows it.
#pragma once

#include "runtime/value.h"

#include <QString>

#include <chrono>

namespace runtime {
class Clock;
}

namespace dialogs {

/// A cell of the calendar's grid. Row 0 is above the days, where their names stand.
struct Cell {
    int row = 0;
    int column = 0;
    bool operator==(const Cell&) const = default;
};

/// The month of one day. The day goes along when the calendar turns to another month or year.
class CalendarMonth
{
public:
    static constexpr int kWeeks = 6; ///< rows of days
    static constexpr int kDaysAWeek = 7;

    explicit CalendarMonth(runtime::Date date);
    /// A date as typed. A text that is no date means the present date.
    CalendarMonth(const QString& date, const runtime::Clock& clock);

    /// The same day of another month or year; the present date when there is no such day.
    [[nodiscard]] CalendarMonth inMonth(int month, const runtime::Clock& clock) const;
    [[nodiscard]] CalendarMonth inYear(int year, const runtime::Clock& clock) const;

    [[nodiscard]] int year() const { return static_cast<int>(month_.year()); }
    [[nodiscard]] int month() const { return static_cast<int>(static_cast<unsigned>(month_.month())); }
    [[nodiscard]] int day() const { return day_; }
    /// Of the first day: 1 = Sunday to 7 = Saturday.
    [[nodiscard]] int firstWeekday() const;
    [[nodiscard]] int daysInMonth() const;

    /// Weeks begin on Sunday, in column 0; the first day stands in row 1.
    [[nodiscard]] Cell cellOf(int day) const;
    /// 0 for a cell without a day.
    [[nodiscard]] int dayAt(Cell cell) const;
    /// 0 for a date outside the month.
    [[nodiscard]] int dayOf(runtime::Date date) const;

    /// "March 2002", in the locale in force.
    [[nodiscard]] QString caption() const;
    /// A day of the month as "5/3/2002".
    [[nodiscard]] QString dateText(int day) const;

private:
    [[nodiscard]] runtime::Date dateOf(int day) const;

    std::chrono::year_month month_;
    int day_;
};

} // namespace dialogs
