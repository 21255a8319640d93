// Sums over foods.
#pragma once

namespace reports {

/// Grams, and the energy in kCal as the food table gives it.
struct NutrientTotals {
    double carbohydrate = 0;
    double protein = 0;
    double fat = 0;
    double energy = 0;

    NutrientTotals& operator+=(const NutrientTotals& other);
};

} // namespace reports
