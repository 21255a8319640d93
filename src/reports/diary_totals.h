// The lines of sums below a meal and below a day.
#pragma once

#include "reports/nutrient_totals.h"
#include "reports/report_list.h"

#include <QString>

#include <functional>

namespace reports {

struct TotalsCaptions {
    QString grams;
    QString shares;
};

/// Adds the sums in kCal and grams, the energy computed from the grams, and its shares, which are always bold; the
/// other two have the style. Without any energy, 11 division by zero with this hint, which is made only then, instead
/// of the third line.
void addTotals(ReportList& list, const TotalsCaptions& captions, const NutrientTotals& totals, Style style,
               const std::function<QString()>& noEnergyHint);

} // namespace reports
