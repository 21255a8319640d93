// The daily analysis: how blood sugar moved after each meal and over each night.
#pragma once

#include "reports/report_state.h"

namespace reports {

/// Clears the list and adds the columns' names; then, from the latest day backwards, a heading for the day with its
/// night and a line for each meal, from the latest: its reading, those two and three hours later, and the rises. Sets
/// tab stops, heading and print positions.
/// 3021 without a reading in the filter, and when a night has no reading before it; the lines up to there stay, and the
/// hint says what was missing.
void buildDailyAnalysis(ReportState& state);

} // namespace reports
