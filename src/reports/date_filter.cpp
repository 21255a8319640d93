#include "reports/date_filter.h"

#include "runtime/calendar.h"
#include "runtime/format.h"

#include <algorithm>

namespace reports {
namespace {

/// The day, or the calendar's first or last where it ends before.
QString shownDay(double day)
{
    static const double first = runtime::dateFromParts({100, 1, 1, 0, 0, 0}).value().days;
    static const double last = runtime::dateFromParts({9999, 12, 31, 0, 0, 0}).value().days;
    return runtime::format(runtime::Date{std::clamp(day, first, last)}, QStringLiteral("dd/mm/yyyy"));
}

} // namespace

QString DateFilter::strWhere() const
{
    return QStringLiteral("where When > Cdate('") + from + QStringLiteral("') and When < Cdate('") + to +
           QStringLiteral("')");
}

DateFilter filterAtStart(const runtime::Clock& clock)
{
    const double today = clock.today().days;
    return {shownDay(today - 2), shownDay(today + 1)};
}

QString filteredSource(const QString& query, const QString& strWhere)
{
    return strWhere.isEmpty() ? query : QStringLiteral("Select * from ") + query + u' ' + strWhere;
}

} // namespace reports
