#include "reports/diary_records.h"

#include "reports/diary_hints.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <utility>

namespace reports {

using runtime::Date;
using runtime::ErrorNumber;
using runtime::RunTimeError;
using runtime::Value;

MealRecords::MealRecords(data::Recordset records)
    : records_(std::move(records)), time_(records_.positionOf(QStringLiteral("When"))),
      dose_(records_.positionOf(QStringLiteral("InsulinDosage"))),
      type_(records_.positionOf(QStringLiteral("MealType"))), description_(records_.positionOf(QStringLiteral("Desc"))),
      grams_(records_.positionOf(QStringLiteral("Quantity"))), energy_(records_.positionOf(QStringLiteral("kCal"))),
      carbohydrate_(records_.positionOf(QStringLiteral("Carb"))), fat_(records_.positionOf(QStringLiteral("Fat"))),
      protein_(records_.positionOf(QStringLiteral("Prot")))
{
}

Date MealRecords::time() const
{
    const Value time = records_.value(time_);
    if (isNull(time)) {
        throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noMealTimeHint());
    }
    return runtime::toDate(time);
}

qint16 MealRecords::dose() const
{
    const Value dose = records_.value(dose_);
    if (isNull(dose)) {
        throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noDoseHint(time()));
    }
    return runtime::toInteger(dose);
}

QString MealRecords::type() const
{
    return runtime::toText(records_.value(type_));
}

QString MealRecords::description() const
{
    return runtime::toText(records_.value(description_));
}

Value MealRecords::grams() const
{
    return records_.value(grams_);
}

Value MealRecords::portionOf(int nutrient, const Value& grams) const
{
    const Value in100Grams = records_.value(nutrient);
    if (isNull(in100Grams) || isNull(grams)) {
        return runtime::Null{};
    }
    return runtime::toDouble(in100Grams) * runtime::toDouble(grams) / 100;
}

MealRecords::Portion MealRecords::portion() const
{
    const Value eaten = grams();
    return {portionOf(energy_, eaten), portionOf(carbohydrate_, eaten), portionOf(fat_, eaten),
            portionOf(protein_, eaten)};
}

void MealRecords::addTo(NutrientTotals& meal) const
{
    const Value eaten = grams();
    const auto add = [&](double& total, int nutrient) {
        if (isNull(records_.value(nutrient))) {
            return;
        }
        if (isNull(eaten)) {
            throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noQuantityHint(time()));
        }
        total += runtime::toDouble(portionOf(nutrient, eaten));
    };
    add(meal.carbohydrate, carbohydrate_);
    add(meal.protein, protein_);
    add(meal.fat, fat_);
    add(meal.energy, energy_);
}

HistoryRecords::HistoryRecords(data::Recordset records)
    : records_(std::move(records)), time_(records_.positionOf(QStringLiteral("When"))),
      level_(records_.positionOf(QStringLiteral("Mmol"))), type_(records_.positionOf(QStringLiteral("Type"))),
      comment_(records_.positionOf(QStringLiteral("Comment")))
{
}

Date HistoryRecords::time() const
{
    return runtime::toDate(records_.value(time_));
}

double HistoryRecords::level() const
{
    const Value level = records_.value(level_);
    if (isNull(level)) {
        throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noLevelHint(time()));
    }
    return runtime::toDouble(level);
}

QString HistoryRecords::type() const
{
    return runtime::toText(records_.value(type_));
}

QString HistoryRecords::comment() const
{
    return runtime::toText(records_.value(comment_));
}

} // namespace reports
