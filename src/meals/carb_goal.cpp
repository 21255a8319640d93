#include "meals/carb_goal.h"

#include "meals/meal_sheet.h"

namespace meals {

std::optional<double> factorForRatio(const MealSheet& sheet, int line, const Food& food, double dose, double ratio)
{
    const double carbohydrate = food.in100Grams.carbohydrate;
    if (carbohydrate == 0) {
        return std::nullopt;
    }
    const double shortfall = dose * ratio - sheet.totalCarbohydrate();
    return (shortfall * 100 / carbohydrate + sheet.gramsAt(line)) / 100;
}

} // namespace meals
