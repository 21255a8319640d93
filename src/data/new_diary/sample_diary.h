// Invented days of a plausible person: readings, meals and doses to try the program with.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace data {

/// A reading; `minute` counts from midnight.
struct SampleReading {
    int minute = 0;
    int type = 0; ///< 1 to 6
    double mmol = 0;
    std::u16string comment;
};

struct SampleMeal {
    struct Portion {
        int food = 0; ///< NDB_No
        double grams = 0;
    };
    int minute = 0;
    int type = 0; ///< 1 breakfast to 4 snack
    int insulin = 0;
    std::vector<Portion> foods;
};

struct SampleDay {
    std::vector<SampleReading> readings; ///< ascending in time
    std::vector<SampleMeal> meals;       ///< ascending in time; none whose foods are all unknown
};

/// The day with that number (days since 30 December 1899): always the same for the same number and foods.
/// `carbohydratePer100g` holds the foods that may be eaten, by number.
[[nodiscard]] SampleDay sampleDay(int day, const std::map<int, double>& carbohydratePer100g);

} // namespace data
