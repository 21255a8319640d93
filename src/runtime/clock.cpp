#include "runtime/clock.h"

#include "runtime/calendar.h"

#include <QDateTime>

#include <cmath>

namespace runtime {

Date Clock::today() const
{
    return Date{std::trunc(now().days)};
}

Date SystemClock::now() const
{
    const QDateTime now = QDateTime::currentDateTime();
    const DateParts parts{now.date().year(), now.date().month(),  now.date().day(),
                          now.time().hour(), now.time().minute(), now.time().second()};
    return dateFromParts(parts).value_or(Date{});
}

} // namespace runtime
