// The diaries: what was eaten, the insulin given with it, and the blood sugar that followed.
#pragma once

#include "reports/report_state.h"

namespace reports {

/// Adds the overall diary of the meals in the filter below what the list holds; sets tab stops and print positions. For
/// each meal, in the order of time: its heading, with `booDetail` its foods, its totals and shares of energy, the
/// insulin with the grams of carbohydrate to a unit, the reading before it and those after it; at each day's end the
/// day's totals. Meals of the same time are one. Without a meal nothing is added.
/// 3021 without a reading later than the first meal, before any line, the first of them not being counted; 11 where a
/// meal or a day has no energy; 94 where a meal's time or dose, a food's quantity or a reading's level is null. The
/// lines up to there stay, and `state.dayTotals` keeps the part of the day.
void DisplayDiary(ReportState& state, bool booDetail);

/// The same without foods and totals. Its meals stay in `state.dayTotals`, so that the next overall diary's first day
/// counts them too.
void DisplayInsulinDiary(ReportState& state);

} // namespace reports
