#include "data/functions/date_interval.h"

#include "data/functions/function.h"
#include "runtime/calendar.h"
#include "runtime/conversions.h"

#include <algorithm>
#include <array>

namespace data {
namespace {

constexpr qint64 kSecondsADay = 86400;

qint64 floorDivide(qint64 number, qint64 divisor)
{
    const qint64 quotient = number / divisor;
    return quotient * divisor > number ? quotient - 1 : quotient;
}

qint64 secondsOf(const Moment& moment)
{
    return moment.day.toJulianDay() * kSecondsADay + moment.second;
}

Moment momentOf(qint64 seconds)
{
    Moment moment;
    const qint64 day = floorDivide(seconds, kSecondsADay);
    moment.day = QDate::fromJulianDay(day);
    moment.second = static_cast<int>(seconds - day * kSecondsADay);
    return moment;
}

qint64 monthsOf(QDate day)
{
    return qint64{day.year()} * 12 + day.month() - 1;
}

Moment addedMonths(const Moment& moment, qint64 months)
{
    constexpr qint64 kMost = qint64{10000} * 12;
    if (months < -kMost || months > kMost) {
        refuseArgument();
    }
    Moment result = moment;
    result.day = moment.day.addMonths(static_cast<int>(months));
    return result;
}

QDate startOfWeek(QDate day, const Week& week)
{
    return day.addDays(1 - weekdayOf(day, week));
}

/// The day on which the first week of a year begins.
QDate firstWeekOf(int year, const Week& week)
{
    static constexpr std::array<int, 3> kDaysNeeded{1, 4, 7};
    const QDate newYear(year, 1, 1);
    const QDate start = startOfWeek(newYear, week);
    const qint64 daysInYear = 7 - start.daysTo(newYear);
    return daysInYear >= kDaysNeeded[static_cast<std::size_t>(week.firstWeekRule - 1)] ? start : start.addDays(7);
}

int weekOfYear(QDate day, const Week& week)
{
    QDate first = firstWeekOf(day.year(), week);
    if (day < first) {
        first = firstWeekOf(day.year() - 1, week);
    } else if (week.firstWeekRule != 1 && day >= firstWeekOf(day.year() + 1, week)) {
        return 1;
    }
    return static_cast<int>(first.daysTo(day) / 7) + 1;
}

} // namespace

Interval intervalNamed(const QString& name)
{
    struct Named {
        QStringView name;
        Interval interval;
    };
    static constexpr std::array<Named, 10> kIntervals{{
        {u"yyyy", Interval::Year},
        {u"q", Interval::Quarter},
        {u"m", Interval::Month},
        {u"y", Interval::DayOfYear},
        {u"d", Interval::Day},
        {u"w", Interval::Weekday},
        {u"ww", Interval::Week},
        {u"h", Interval::Hour},
        {u"n", Interval::Minute},
        {u"s", Interval::Second},
    }};
    const auto* const found = std::find_if(kIntervals.begin(), kIntervals.end(), [&](const Named& candidate) {
        return candidate.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (found == kIntervals.end()) {
        refuseArgument();
    }
    return found->interval;
}

Moment::Moment(runtime::Date date)
{
    const runtime::DateParts parts = runtime::partsOf(date);
    day = QDate(parts.year, parts.month, parts.day);
    second = (parts.hour * 60 + parts.minute) * 60 + parts.second;
}

runtime::Date Moment::date() const
{
    runtime::DateParts parts;
    parts.year = day.year();
    parts.month = day.month();
    parts.day = day.day();
    parts.hour = second / 3600;
    parts.minute = second / 60 % 60;
    parts.second = second % 60;
    const std::optional<runtime::Date> date = runtime::dateFromParts(parts);
    if (!date) {
        refuseArgument();
    }
    return *date;
}

Week Week::checked() const
{
    Week result = *this;
    if (firstDay == 0) {
        result.firstDay = static_cast<int>(runtime::currentLocale().firstDayOfWeek()) % 7 + 1;
    }
    if (firstWeekRule == 0) {
        result.firstWeekRule = 1;
    }
    if (result.firstDay < 1 || result.firstDay > 7 || result.firstWeekRule < 1 || result.firstWeekRule > 3) {
        refuseArgument();
    }
    return result;
}

int weekdayOf(QDate day, const Week& week)
{
    const int fromSunday = day.dayOfWeek() % 7; // Qt counts Monday 1 to Sunday 7
    return (fromSunday - (week.firstDay - 1) + 7) % 7 + 1;
}

Moment added(Interval interval, qint32 count, const Moment& moment)
{
    switch (interval) {
    case Interval::Year:
        return addedMonths(moment, qint64{count} * 12);
    case Interval::Quarter:
        return addedMonths(moment, qint64{count} * 3);
    case Interval::Month:
        return addedMonths(moment, count);
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday:
        return momentOf(secondsOf(moment) + count * kSecondsADay);
    case Interval::Week:
        return momentOf(secondsOf(moment) + qint64{count} * 7 * kSecondsADay);
    case Interval::Hour:
        return momentOf(secondsOf(moment) + qint64{count} * 3600);
    case Interval::Minute:
        return momentOf(secondsOf(moment) + qint64{count} * 60);
    case Interval::Second:
        return momentOf(secondsOf(moment) + count);
    }
    refuseArgument();
}

qint64 differenceIn(Interval interval, const Moment& from, const Moment& to, const Week& week)
{
    const auto begun = [&](qint64 seconds) {
        return floorDivide(secondsOf(to), seconds) - floorDivide(secondsOf(from), seconds);
    };
    switch (interval) {
    case Interval::Year:
        return to.day.year() - from.day.year();
    case Interval::Quarter:
        return floorDivide(monthsOf(to.day), 3) - floorDivide(monthsOf(from.day), 3);
    case Interval::Month:
        return monthsOf(to.day) - monthsOf(from.day);
    case Interval::DayOfYear:
    case Interval::Day:
        return from.day.daysTo(to.day);
    case Interval::Weekday:
        return from.day.daysTo(to.day) / 7;
    case Interval::Week:
        return startOfWeek(from.day, week).daysTo(startOfWeek(to.day, week)) / 7;
    case Interval::Hour:
        return begun(3600);
    case Interval::Minute:
        return begun(60);
    case Interval::Second:
        return secondsOf(to) - secondsOf(from);
    }
    refuseArgument();
}

int partIn(Interval interval, const Moment& moment, const Week& week)
{
    switch (interval) {
    case Interval::Year:
        return moment.day.year();
    case Interval::Quarter:
        return (moment.day.month() - 1) / 3 + 1;
    case Interval::Month:
        return moment.day.month();
    case Interval::DayOfYear:
        return moment.day.dayOfYear();
    case Interval::Day:
        return moment.day.day();
    case Interval::Weekday:
        return weekdayOf(moment.day, week);
    case Interval::Week:
        return weekOfYear(moment.day, week);
    case Interval::Hour:
        return moment.second / 3600;
    case Interval::Minute:
        return moment.second / 60 % 60;
    case Interval::Second:
        return moment.second % 60;
    }
    refuseArgument();
}

} // namespace data
