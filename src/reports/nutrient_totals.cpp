#include "reports/nutrient_totals.h"

namespace reports {
namespace {

// kCal to a gram.
constexpr double kCarbohydrate = 4;
constexpr double kFat = 9;
constexpr double kProtein = 4;

} // namespace

NutrientTotals& NutrientTotals::operator+=(const NutrientTotals& other)
{
    carbohydrate += other.carbohydrate;
    protein += other.protein;
    fat += other.fat;
    energy += other.energy;
    return *this;
}

EnergySplit::EnergySplit(const NutrientTotals& totals)
    : carbohydrate(kCarbohydrate * totals.carbohydrate), fat(kFat * totals.fat), protein(kProtein * totals.protein)
{
}

} // namespace reports
