// The power fails while a meal is saved: it is there with its foods and in the place of the one that it replaces, or
// nothing has changed.
#include "meals/meal_sheet.h"
#include "meals/meal_storage.h"
#include "power_loss/diaries.h"
#include "power_loss/disk_in_force.h"
#include "support/diary_content.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace power_loss {
namespace {

using testing::ElementsAre;

constexpr qint32 kBread = 1;
constexpr qint32 kButter = 2;
constexpr qint32 kMilk = 3;

/// Three foods, a lunch on 4 March 2024 (day 45355) and a dinner the day after.
Files diary()
{
    return programDiary([] {
        reports::addFood(diaryPath(), kBread, {"BREAD,WHITE", 250, 50, 4, 8});
        reports::addFood(diaryPath(), kButter, {"BUTTER,WITH SALT", 717, 0, 80, 1});
        reports::addFood(diaryPath(), kMilk, {"MILK,WHOLE", 60, 5, 3, 3});
        reports::addMeal(diaryPath(), {"04/03/2024 12:00", 2, 6, {{kBread, 80}}});
        reports::addMeal(diaryPath(), {"05/03/2024 12:00", 3, 4, {{kMilk, 200}, {kBread, 33.5}}});
    });
}

/// 150 g of bread, 10.5 g of butter, no milk and 20 g of bread.
void saveMeal(qint32 replaces)
{
    meals::MealSheet sheet;
    meals::AddIngredient(sheet, diaryPath(), QStringLiteral("150"), kBread);
    meals::AddIngredient(sheet, diaryPath(), QStringLiteral("10.5"), kButter);
    meals::AddIngredient(sheet, diaryPath(), QStringLiteral("0"), kMilk);
    meals::AddIngredient(sheet, diaryPath(), QStringLiteral("20"), kBread);
    const meals::MealEntry entry{
        .date = "06/03/2024", .time = "12:00", .type = 2, .insulinDose = "7", .replaces = replaces};
    EXPECT_EQ(meals::saveMeal(diaryPath(), entry, sheet), 3);
}

/// The diary before and after each change: the meals, a line, and what they hold.
std::vector<std::string> states(const Findings& findings)
{
    std::vector<std::string> states;
    for (const jet::Bytes& diary : findings.history) {
        states.push_back(rowsIn(diary, "Meals") + "--\n" + rowsIn(diary, "MealContent"));
    }
    return states;
}

const std::string kLunch = "1 @45355.5 2 6\n";
const std::string kDinner = "2 @45356.5 3 4\n";
const std::string kNewMeal = "3 @45357.5 2 7\n";
const std::string kLunchFoods = "--\n1 1 80\n";
const std::string kDinnerFoods = "2 3 200\n2 1 33.5\n";

const std::string kNewFoods = "3 1 150\n3 2 10.5\n3 1 20\n";

TEST(PowerLoss, WhileAMealIsSavedLeavesItWithAllItsFoodsOrNotAtAll)
{
    const Findings findings = losePowerDuring(diary(), [](jet::FileSystem&) { saveMeal(0); });
    const std::string foods = kLunchFoods + kDinnerFoods;
    EXPECT_THAT(states(findings),
                ElementsAre(kLunch + kDinner + foods, kLunch + kDinner + kNewMeal + foods + kNewFoods));
}

TEST(PowerLoss, WhileAMealIsReplacedLeavesTheOldOneOrTheNewOne)
{
    const Findings findings = losePowerDuring(diary(), [](jet::FileSystem&) { saveMeal(2); });
    EXPECT_THAT(states(findings), ElementsAre(kLunch + kDinner + kLunchFoods + kDinnerFoods,
                                              kLunch + kNewMeal + kLunchFoods + kNewFoods));
}

} // namespace
} // namespace power_loss
