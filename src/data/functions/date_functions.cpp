#include "data/functions/date_interval.h"
#include "data/functions/function.h"
#include "runtime/calendar.h"
#include "runtime/conversions.h"

#include <array>
#include <cmath>

namespace data {
namespace {

using runtime::Value;

runtime::DateParts partsOf(const Value& value)
{
    return runtime::partsOf(runtime::toDate(value));
}

template <int runtime::DateParts::*part>
Value partOf(Arguments arguments)
{
    return qint32{partsOf(arguments[0]).*part};
}

Week weekOf(Arguments arguments, std::size_t position)
{
    Week week;
    if (arguments.size() > position) {
        week.firstDay = countOf(arguments[position], 0);
    }
    if (arguments.size() > position + 1) {
        week.firstWeekRule = countOf(arguments[position + 1], 0);
    }
    return week.checked();
}

Value weekday(Arguments arguments)
{
    return weekdayOf(Moment(runtime::toDate(arguments[0])).day, weekOf(arguments, 1));
}

Value dateAdd(Arguments arguments)
{
    const Interval interval = intervalNamed(runtime::toText(arguments[0]));
    return added(interval, runtime::toLong(arguments[1]), Moment(runtime::toDate(arguments[2]))).date();
}

Value dateDifference(Arguments arguments)
{
    const Interval interval = intervalNamed(runtime::toText(arguments[0]));
    const qint64 difference = differenceIn(interval, Moment(runtime::toDate(arguments[1])),
                                           Moment(runtime::toDate(arguments[2])), weekOf(arguments, 3));
    return runtime::toLong(static_cast<double>(difference));
}

Value datePart(Arguments arguments)
{
    const Interval interval = intervalNamed(runtime::toText(arguments[0]));
    return partIn(interval, Moment(runtime::toDate(arguments[1])), weekOf(arguments, 2));
}

/// Months and days beyond their range run into the next year or month; years of two digits are 1930 to 2029.
Value dateSerial(Arguments arguments)
{
    const qint32 given = runtime::toLong(arguments[0]);
    const qint32 year = given >= 0 && given < 100 ? runtime::yearOfTwoDigits(given) : given;
    const qint64 months = qint64{year} * 12 + runtime::toLong(arguments[1]) - 1;
    const qint64 days = qint64{runtime::toLong(arguments[2])} - 1;
    if (months < 0 || months >= qint64{10000} * 12) {
        refuseArgument();
    }
    const QDate first(static_cast<int>(months / 12), static_cast<int>(months % 12) + 1, 1);
    Moment moment;
    moment.day = first.addDays(days);
    return moment.date();
}

Value timeSerial(Arguments arguments)
{
    const qint64 seconds = (qint64{runtime::toLong(arguments[0])} * 60 + runtime::toLong(arguments[1])) * 60 +
                           runtime::toLong(arguments[2]);
    constexpr double kSecondsADay = 86400;
    return runtime::Date{static_cast<double>(seconds) / kSecondsADay};
}

Value dateValue(Arguments arguments)
{
    runtime::DateParts parts = partsOf(arguments[0]);
    parts.hour = parts.minute = parts.second = 0;
    return runtime::dateFromParts(parts).value();
}

Value timeValue(Arguments arguments)
{
    const runtime::DateParts parts = partsOf(arguments[0]);
    runtime::DateParts time;
    time.hour = parts.hour;
    time.minute = parts.minute;
    time.second = parts.second;
    return runtime::dateFromParts(time).value();
}

bool isAbbreviated(Arguments arguments)
{
    return arguments.size() > 1 && runtime::toDouble(arguments[1]) != 0;
}

QLocale::FormatType nameForm(Arguments arguments)
{
    return isAbbreviated(arguments) ? QLocale::ShortFormat : QLocale::LongFormat;
}

Value monthName(Arguments arguments)
{
    const qint32 month = countOf(arguments[0], 1);
    if (month > 12) {
        refuseArgument();
    }
    return runtime::currentLocale().standaloneMonthName(month, nameForm(arguments));
}

Value weekdayName(Arguments arguments)
{
    const qint32 number = countOf(arguments[0], 1);
    const Week week = weekOf(arguments, 2);
    if (number > 7) {
        refuseArgument();
    }
    const int fromSunday = (number - 1 + week.firstDay - 1) % 7; // 0 is Sunday
    return runtime::currentLocale().standaloneDayName(fromSunday == 0 ? 7 : fromSunday, nameForm(arguments));
}

constexpr auto kDate = always<FieldType::Date>;
constexpr auto kInteger = always<FieldType::Integer>;
using Parts = runtime::DateParts;

constexpr std::array<Function, 16> kFunctions{{
    {u"year", 1, 1, Nulls::Pass, kInteger, partOf<&Parts::year>},
    {u"month", 1, 1, Nulls::Pass, kInteger, partOf<&Parts::month>},
    {u"day", 1, 1, Nulls::Pass, kInteger, partOf<&Parts::day>},
    {u"hour", 1, 1, Nulls::Pass, kInteger, partOf<&Parts::hour>},
    {u"minute", 1, 1, Nulls::Pass, kInteger, partOf<&Parts::minute>},
    {u"second", 1, 1, Nulls::Pass, kInteger, partOf<&Parts::second>},
    {u"weekday", 1, 2, Nulls::Pass, kInteger, weekday},
    {u"dateadd", 3, 3, Nulls::Pass, kDate, dateAdd},
    {u"datediff", 3, 5, Nulls::Pass, always<FieldType::Long>, dateDifference},
    {u"datepart", 2, 4, Nulls::Pass, kInteger, datePart},
    {u"dateserial", 3, 3, Nulls::Refuse, kDate, dateSerial},
    {u"timeserial", 3, 3, Nulls::Refuse, kDate, timeSerial},
    {u"datevalue", 1, 1, Nulls::Refuse, kDate, dateValue},
    {u"timevalue", 1, 1, Nulls::Refuse, kDate, timeValue},
    {u"monthname", 1, 2, Nulls::Refuse, always<FieldType::Text>, monthName},
    {u"weekdayname", 1, 3, Nulls::Refuse, always<FieldType::Text>, weekdayName},
}};

} // namespace

std::span<const Function> dateFunctions()
{
    return kFunctions;
}

} // namespace data
