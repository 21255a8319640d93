// Sums over foods, and where their energy comes from.
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

/// Energy in kCal computed from the grams: 4 to a gram of carbohydrate or protein, 9 to a gram of fat. The food table's
/// own figure has no part in it.
struct EnergySplit {
    explicit EnergySplit(const NutrientTotals& totals);

    [[nodiscard]] double total() const { return carbohydrate + fat + protein; }

    double carbohydrate;
    double fat;
    double protein;
};

} // namespace reports
