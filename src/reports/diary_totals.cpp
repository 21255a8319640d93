#include "reports/diary_totals.h"

#include "runtime/format.h"
#include "runtime/run_time_error.h"

#include <QStringList>

namespace reports {

void addTotals(ReportList& list, const TotalsCaptions& captions, const NutrientTotals& totals, Style style,
               const std::function<QString()>& noEnergyHint)
{
    const auto addLine = [&](const QStringList& columns, Style lineStyle) {
        list.addItem(u'\t' + columns.join(u'\t'), lineStyle);
    };
    const auto amount = [](double value) { return runtime::format(value, QStringLiteral("#0.0")); };
    addLine({captions.grams, amount(totals.energy), amount(totals.carbohydrate), amount(totals.fat),
             amount(totals.protein)},
            style);

    const EnergySplit energy(totals);
    addLine({QStringLiteral("Calc Total kCal/kCal/kCal/kCal"), amount(energy.total()), amount(energy.carbohydrate),
             amount(energy.fat), amount(energy.protein)},
            style);

    if (energy.total() == 0) {
        throw runtime::RunTimeError(runtime::ErrorNumber::DivisionByZero).withHint(noEnergyHint());
    }
    const auto share = [&](double part) { return runtime::format(part / energy.total(), QStringLiteral("#0%")); };
    addLine(
        {captions.shares, amount(energy.total()), share(energy.carbohydrate), share(energy.fat), share(energy.protein)},
        Bold);
}

} // namespace reports
