// The basic blood sugar report: every reading in the filter, one line each.
#pragma once

#include "reports/report_state.h"

namespace reports {

/// Clears the list, then adds the columns' names, an empty line and the readings in the order of the query
/// ExcelHistory; sets tab stops, heading and print positions. A pointer that shows the wait is the caller's business.
/// Without a reading in the filter: 3021 No current record, after the first two lines.
void buildBasicReport(ReportState& state);

} // namespace reports
