// Foods and meals for a test's diary.
#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace reports {

struct FoodRow {
    QString description;
    // For 100 g; none is not known.
    std::optional<double> energy;
    std::optional<double> carbohydrate;
    std::optional<double> fat;
    std::optional<double> protein;
};

struct MealRow {
    struct Portion {
        qint32 food = 0; ///< `NDB_No`
        std::optional<double> grams;
    };

    QString when; ///< as typed; empty: no time
    int type = 0; ///< 1 breakfast to 4 snack; 0: none
    std::optional<int> dose;
    std::vector<Portion> portions;
};

void addFood(const QString& diaryPath, qint32 number, const FoodRow& food);
void addMeal(const QString& diaryPath, const MealRow& meal);

} // namespace reports
