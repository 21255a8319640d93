#include "meals/carb_goal.h"

#include "meals/known_foods.h"
#include "meals/meal_sheet.h"
#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace meals {
namespace {

constexpr double kUsualRatio = 11.55;

class CarbGoalTest : public testing::Test
{
protected:
    void add(const char* grams, int food) { AddIngredient(sheet, diary.path(), QString::fromLatin1(grams), food); }

    [[nodiscard]] std::optional<double> factor(int line, double dose, double ratio) const
    {
        return factorForRatio(sheet, line, foodNumbered(diary.path(), sheet.foodNumberAt(line)), dose, ratio);
    }
    /// Gives the food in that line the quantity that fits the insulin.
    void optimise(int line, double dose, double ratio)
    {
        UpdateMenuListQty(sheet, diary.path(), factor(line, dose, ratio).value(), line);
    }
    [[nodiscard]] std::string line(int number) const { return sheet.lines().at(number).text.toStdString(); }

    const LocaleInForce locale{kBritish};
    const KnownFoods diary;
    MealSheet sheet;
};

TEST_F(CarbGoalTest, TheFoodMakesUpForWhatTheMealLacks)
{
    // 100 g of cookies hold 50 g of carbohydrate, -50 g of rice take 10 g away: 40 g.
    add("100", KnownFoods::kCookies);
    add("-50", KnownFoods::kRice);
    ASSERT_EQ(sheet.totalCarbohydrate(), 40);
    // 4 x 11.55 - 40 = 6.2 g are missing, which 12.4 g of cookies hold.
    EXPECT_DOUBLE_EQ(factor(2, 4, kUsualRatio).value(), 1.124);
    optimise(2, 4, kUsualRatio);
    EXPECT_EQ(line(2), "112.4\tOatmeal cookies\t56.2\t11.2\t6.7");
    EXPECT_EQ(line(5), "Total grams\t46.2\t10.7\t5.7");
    EXPECT_DOUBLE_EQ(sheet.totalCarbohydrate(), 46.2);
}

TEST_F(CarbGoalTest, TheFoodIsReducedWhereTheMealHasTooMuch)
{
    add("300", KnownFoods::kRice);
    add("20", KnownFoods::kCookies);
    // 60 + 10 g are there, 3 x 20 = 60 g are wanted: 10 g less, which 50 g of rice hold.
    optimise(2, 3, 20);
    EXPECT_EQ(line(2), "250.0\tRice,white,ckd\t50.0\t2.5\t5.0");
    EXPECT_DOUBLE_EQ(sheet.totalCarbohydrate(), 60);
}

TEST_F(CarbGoalTest, ADoseOf0TakesAllCarbohydrateOutOfTheMeal)
{
    add("200", KnownFoods::kRice);
    add("20", KnownFoods::kCookies);
    // All 40 + 10 g are in 100 g of cookies, of which there are 20.
    optimise(3, 0, kUsualRatio);
    EXPECT_EQ(line(3), "-80.0\tOatmeal cookies\t-40.0\t-8.0\t-4.8");
    EXPECT_NEAR(sheet.totalCarbohydrate(), 0, 1e-12);
}

TEST_F(CarbGoalTest, AMealAtTheRatioKeepsItsQuantity)
{
    add("231", KnownFoods::kRice);
    // 231 g hold 46.2 g, which is 4 x 11.55.
    const std::string before = line(2);
    EXPECT_NEAR(factor(2, 4, kUsualRatio).value(), 2.31, 1e-12);
    optimise(2, 4, kUsualRatio);
    EXPECT_EQ(line(2), before);
    EXPECT_EQ(sheet.gramsAt(2), 231);
}

TEST_F(CarbGoalTest, ReckonsFromTheGramsShown)
{
    add("33.36", KnownFoods::kRice);
    // 6.672 g are there, 10 are wanted; 3.328 g are in 16.64 g of rice, and the line shows 33.4.
    EXPECT_DOUBLE_EQ(factor(2, 1, 10).value(), 0.5004);
    optimise(2, 1, 10);
    EXPECT_EQ(line(2), "50.0\tRice,white,ckd\t10.0\t0.5\t1.0");
}

TEST_F(CarbGoalTest, AFoodWithoutCarbohydrateHasNoQuantityThatFits)
{
    add("100", KnownFoods::kRice);
    add("100", KnownFoods::kEggs);
    add("100", KnownFoods::kUnknown);
    EXPECT_FALSE(factor(3, 4, kUsualRatio).has_value());
    EXPECT_FALSE(factor(4, 4, kUsualRatio).has_value()) << "carbohydrate that is not known counts as none";
    EXPECT_TRUE(factor(2, 4, kUsualRatio).has_value());
}

TEST_F(CarbGoalTest, ALineWithoutAFoodIsOutOfRange)
{
    add("100", KnownFoods::kRice);
    const Food rice = foodNumbered(diary.path(), KnownFoods::kRice);
    try {
        static_cast<void>(factorForRatio(sheet, 4, rice, 4, kUsualRatio));
        ADD_FAILURE() << "the line of totals has a quantity";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 9);
    }
}

TEST_F(CarbGoalTest, TheFoodMayStandAnywhereInTheMeal)
{
    add("50", KnownFoods::kButter);
    add("100", KnownFoods::kCookies);
    add("100", KnownFoods::kRice);
    add("100", KnownFoods::kEggs);
    // 0.03 + 50 + 20 = 70.03 g are there, 8 x 11 = 88 wanted: 17.97 g more, in 89.85 g of rice.
    optimise(4, 8, 11);
    EXPECT_EQ(line(4), "189.9\tRice,white,ckd\t38.0\t1.9\t3.8");
    EXPECT_DOUBLE_EQ(sheet.totalCarbohydrate(), 88);
}

} // namespace
} // namespace meals
