#include "reports/readings_report.h"

#include "data/database.h"
#include "reports/date_filter.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

namespace reports {

data::Recordset openReadings(data::Database& database, const QString& strWhere)
{
    return database.openRecordset(filteredSource(QStringLiteral("ExcelHistory"), strWhere));
}

void requireCurrent(const data::Recordset& readings, const QString& hint)
{
    if (readings.bof() || readings.eof()) {
        throw runtime::RunTimeError(runtime::ErrorNumber::NoCurrentRecord).withHint(hint);
    }
}

QString noReadingHint(const QString& strWhere)
{
    return strWhere.isEmpty() ? QStringLiteral("The diary holds no blood sugar reading yet.")
                              : QStringLiteral("There is no blood sugar reading between the filter's dates; set other "
                                               "dates and choose Apply, or choose Clear to list all readings.");
}

QString headingWith(const QString& title, const ReportState& state)
{
    return title + QStringLiteral("\r\n") + state.strPath + QStringLiteral("\r\nPrinted - ") +
           runtime::format(state.clock.now(), QStringLiteral("dddd dd mmmm yyyy hh:mm")) + QStringLiteral("\r\n\r\n");
}

} // namespace reports
