#include "reports/date_filter.h"

#include "runtime/format.h"

namespace reports {

QString DateFilter::strWhere() const
{
    return QStringLiteral("where When > Cdate('") + from + QStringLiteral("') and When < Cdate('") + to +
           QStringLiteral("')");
}

DateFilter filterAtStart(const runtime::Clock& clock)
{
    const double today = clock.today().days;
    const auto shown = [](double day) { return runtime::format(runtime::Date{day}, QStringLiteral("dd/mm/yyyy")); };
    return {shown(today - 2), shown(today + 1)};
}

QString filteredSource(const QString& query, const QString& strWhere)
{
    return strWhere.isEmpty() ? query : QStringLiteral("Select * from ") + query + u' ' + strWhere;
}

} // namespace reports
