// A meal about to be stored in a diary, for tests.
#pragma once

#include "meals/exported_table.h"
#include "meals/meal_sheet.h"
#include "meals/meal_storage.h"
#include "runtime/locale_in_force.h"
#include "support/diary_content.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace meals {

inline constexpr qint32 kBread = 1;
inline constexpr qint32 kButter = 2;
inline constexpr qint32 kMilk = 3;

/// A diary with three foods, and a meal of 150 g of bread and 10.5 g of butter that is about to be stored.
class MealStorage : public testing::Test
{
protected:
    MealStorage()
    {
        reports::addFood(path, kBread, {"BREAD,WHITE", 250, 50, 4, 8});
        reports::addFood(path, kButter, {"BUTTER,WITH SALT", 717, 0, 80, 1});
        reports::addFood(path, kMilk, {"MILK,WHOLE", 60, 5, 3, 3});
        put("150", kBread);
        put("10.5", kButter);
    }

    void put(const char* grams, qint32 food) { AddIngredient(sheet, path, grams, food); }
    /// A meal that is in the diary already, of bread alone.
    void addMeal(const char* when, int type = 2, std::optional<int> dose = 6)
    {
        reports::addMeal(path, {when, type, dose, {{kBread, 80}}});
    }
    qint32 save() { return saveMeal(path, entry, sheet); }

    [[nodiscard]] std::vector<std::string> meals() const { return exportedTable(path, "Meals"); }
    [[nodiscard]] std::vector<std::string> contents() const { return exportedTable(path, "MealContent"); }
    [[nodiscard]] std::vector<std::string> foodsInSheet() const
    {
        std::vector<std::string> lines;
        for (int line = 0; line < static_cast<int>(sheet.lines().size()); ++line) {
            if (sheet.isFoodLine(line)) {
                lines.push_back(sheet.lines().at(line).text.toStdString());
            }
        }
        return lines;
    }

    runtime::RunTimeError errorOfSaving()
    {
        return requiredErrorOf([this] { return save(); });
    }

    LocaleInForce english{QLocale::English, QLocale::UnitedKingdom};
    TestDiary diary;
    QString path = diary.path();
    MealSheet sheet;
    MealEntry entry{.date = "05/03/2024", .time = "12:30", .type = 2, .insulinDose = "6"};
};

} // namespace meals
