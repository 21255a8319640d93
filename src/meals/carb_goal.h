// The quantity of a food with which a meal's carbohydrate fits the insulin.
#pragma once

#include <QString>

#include <optional>

namespace meals {

struct Food;
class MealSheet;

/// grams / 100 of the food in that line, with which the meal holds `dose` x `ratio` grams of carbohydrate; not rounded,
/// and negative where the other foods hold more. None for a food without carbohydrate.
[[nodiscard]] std::optional<double> factorForRatio(const MealSheet& sheet, int line, const Food& food, double dose,
                                                   double ratio);

} // namespace meals
