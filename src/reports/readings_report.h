// What the reports on blood sugar readings have in common.
#pragma once

#include "data/recordset.h"
#include "reports/report_state.h"

#include <QString>

namespace data {
class Database;
}

namespace reports {

/// The readings in the filter by time, those of the same time as they were entered: the query ExcelHistory.
[[nodiscard]] data::Recordset openReadings(data::Database& database, const QString& strWhere);

/// 3021 No current record with this hint, unless there is one. To be asked where a report would fail for lack of it.
void requireCurrent(const data::Recordset& readings, const QString& hint);
/// Why the readings in the filter are none, and what the user can do.
[[nodiscard]] QString noReadingHint(const QString& strWhere);

/// The title, the diary's path and the time of printing, each ended by CR LF, and an empty line.
[[nodiscard]] QString headingWith(const QString& title, const ReportState& state);

} // namespace reports
