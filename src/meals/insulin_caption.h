// The dotted caption before the insulin dose, which tells the carbohydrate to a unit.
#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace meals {

class MealSheet;

/// The caption after the dose was changed, "Insulin 12.50 gms/unit....": never narrower than the one before, at least
/// one dot longer than its text. For a snack the caption before with more dots; without a dose, a food or a meal type
/// "Insulin " and dots. None when the dose is no number: the caption stays.
[[nodiscard]] std::optional<QString> insulinCaption(const QString& before, const QString& dose,
                                                    std::optional<int> mealType, const MealSheet& sheet,
                                                    const std::function<double(const QString&)>& width);

} // namespace meals
