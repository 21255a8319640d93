#include "reports/diary_totals.h"

#include "runtime/run_time_error.h"

namespace reports {

TotalsLines::TotalsLines(ReportList& list) : line_(list) {}

void TotalsLines::addAmounts(const QString& caption, double energy, double carbohydrate, double fat, double protein,
                             Style style)
{
    line_.tab().add(caption);
    for (const double amount : {energy, carbohydrate, fat, protein}) {
        line_.tab().add(amount, amount_);
    }
    line_.finish(style);
}

void TotalsLines::add(const TotalsCaptions& captions, const NutrientTotals& totals, Style style,
                      const std::function<QString()>& noEnergyHint)
{
    addAmounts(captions.grams, totals.energy, totals.carbohydrate, totals.fat, totals.protein, style);

    const EnergySplit energy(totals);
    addAmounts(QStringLiteral("Calc Total kCal/kCal/kCal/kCal"), energy.total(), energy.carbohydrate, energy.fat,
               energy.protein, style);

    if (energy.total() == 0) {
        throw runtime::RunTimeError(runtime::ErrorNumber::DivisionByZero).withHint(noEnergyHint());
    }
    line_.tab().add(captions.shares).tab().add(energy.total(), amount_);
    for (const double part : {energy.carbohydrate, energy.fat, energy.protein}) {
        line_.tab().add(part / energy.total(), share_);
    }
    line_.finish(Bold);
}

} // namespace reports
