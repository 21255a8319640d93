// The four types of a meal.
#pragma once

#include <QList>
#include <QString>

namespace meals {

inline constexpr int kSnack = 4; ///< the type that may go without insulin

struct MealType {
    int code = 0;
    QString name;
};

/// Breakfast, Lunch, Dinner, Snack, with the codes that are stored.
[[nodiscard]] const QList<MealType>& mealTypes();

} // namespace meals
