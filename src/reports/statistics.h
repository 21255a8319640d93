// Averages of the readings in the filter.
#pragma once

#include "reports/report_state.h"

namespace reports {

/// Adds below what the list holds: the filter's fields, the plain average, and the average weighted by time. Both are
/// taken over readings of every type. Heading and print positions stay what they are.
/// 3021 without a reading (no line is added) or with a single one (after the first three lines). When all readings are
/// of the same moment, 11 after the first three lines: 0 divided by 0 is a division by zero, here as in SQL.
void buildStatistics(ReportState& state);

} // namespace reports
