#include "meals/meal_type.h"

namespace meals {

const QList<MealType>& mealTypes()
{
    static const QList<MealType> types = {{1, QStringLiteral("Breakfast")},
                                          {2, QStringLiteral("Lunch")},
                                          {3, QStringLiteral("Dinner")},
                                          {kSnack, QStringLiteral("Snack")}};
    return types;
}

} // namespace meals
