// The lines of sums below a meal and below a day.
#pragma once

#include "reports/line_builder.h"
#include "reports/nutrient_totals.h"
#include "reports/report_list.h"
#include "runtime/number_pattern.h"

#include <QString>

#include <functional>

namespace reports {

struct TotalsCaptions {
    QString grams;
    QString shares;
};

class TotalsLines
{
public:
    explicit TotalsLines(ReportList& list); ///< which outlives this

    /// Adds the sums in kCal and grams, the energy computed from the grams, and its shares, which are always bold; the
    /// other two have the style. Without any energy, 11 division by zero with this hint, which is made only then,
    /// instead of the third line.
    void add(const TotalsCaptions& captions, const NutrientTotals& totals, Style style,
             const std::function<QString()>& noEnergyHint);

private:
    /// Energy first, then the three that it comes from.
    void addAmounts(const QString& caption, double energy, double carbohydrate, double fat, double protein,
                    Style style);

    LineBuilder line_;
    runtime::NumberPattern amount_{QStringLiteral("#0.0")};
    runtime::NumberPattern share_{QStringLiteral("#0%")};
};

} // namespace reports
