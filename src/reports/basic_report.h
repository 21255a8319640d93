// The basic blood sugar report: every reading, one line each.
#pragma once

#include "reports/printer.h"
#include "reports/report_state.h"

namespace reports {

/// Clears the list, then adds the columns' names, an empty line and the readings in the order of the query
/// ExcelHistory; sets tab stops, heading and print positions. A pointer that shows the wait is the caller's business.
/// Without a reading in the filter: 3021 No current record, after the first two lines.
void buildBasicReport(ReportState& state);

/// Prints the whole history, whatever filter is in force: the columns' names, an empty line and the readings, each with
/// a tab before it, in plain black. 3021 without any reading, 482 when the printer fails; nothing is printed then.
void printBasicReport(Printer& printer, const ReportState& state);

} // namespace reports
