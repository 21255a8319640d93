// Why a diary ended early, in plain words, and what the user can do.
#pragma once

#include "runtime/value.h"

#include <QString>

namespace reports {

/// `readings` of them are to be had from the day before the period's first meal on, and none that is known to be later
/// than the meal.
[[nodiscard]] QString noLaterReadingHint(runtime::Date firstMeal, qsizetype readings, const QString& strWhere);
[[nodiscard]] QString noLevelHint(runtime::Date reading);

[[nodiscard]] QString noMealTimeHint();
[[nodiscard]] QString noDoseHint(runtime::Date meal);
[[nodiscard]] QString noQuantityHint(runtime::Date meal);
[[nodiscard]] QString noEnergyHint(runtime::Date meal);
[[nodiscard]] QString noEnergyOfDayHint(runtime::Date lastMeal);

} // namespace reports
