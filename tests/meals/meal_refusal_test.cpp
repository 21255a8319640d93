// Which meals may be saved.
#include "meals/meal_in_diary.h"
#include "meals/meal_type.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace meals {
namespace {

using testing::ElementsAre;

TEST(MealTypes, HaveTheCodesThatAreStored)
{
    std::vector<std::string> types;
    for (const MealType& type : mealTypes()) {
        types.push_back(std::to_string(type.code) + ' ' + type.name.toStdString());
    }
    EXPECT_THAT(types, ElementsAre("1 Breakfast", "2 Lunch", "3 Dinner", "4 Snack"));
}

using MealRefusal = MealStorage;

TEST_F(MealRefusal, NoneForAMealWithTypeDoseAndFood)
{
    EXPECT_EQ(refusalOf(entry, sheet), std::nullopt);
}

TEST_F(MealRefusal, AsksForTheTypeFirst)
{
    entry.type.reset();
    entry.insulinDose = "six";
    sheet.clear();
    EXPECT_EQ(refusalOf(entry, sheet), Refusal::NoType);
    EXPECT_EQ(textOf(Refusal::NoType).toStdString(), "Must select meal type");
}

TEST_F(MealRefusal, OfADoseThatIsNoNumberComesBeforeMissingFood)
{
    sheet.clear();
    for (const char* dose : {"six", "", "6u"}) {
        entry.insulinDose = dose;
        EXPECT_EQ(refusalOf(entry, sheet), Refusal::DoseNotANumber) << dose;
    }
    EXPECT_EQ(textOf(Refusal::DoseNotANumber).toStdString(), "Insulin dose must be a number");
}

TEST_F(MealRefusal, AMealOtherThanASnackNeedsInsulin)
{
    sheet.clear();
    for (const char* dose : {"0", "0.0", " -0 "}) {
        entry.insulinDose = dose;
        for (const int type : {1, 2, 3}) {
            entry.type = type;
            EXPECT_EQ(refusalOf(entry, sheet), Refusal::ZeroDose) << type;
        }
    }
    EXPECT_EQ(textOf(Refusal::ZeroDose).toStdString(), "Zero Insulin only valid with Snacks");
}

TEST_F(MealRefusal, ASnackWithoutInsulinIsAllowed)
{
    entry.insulinDose = "0";
    entry.type = 4;
    EXPECT_EQ(refusalOf(entry, sheet), std::nullopt);
}

TEST_F(MealRefusal, AMealNeedsFood)
{
    sheet.clear();
    EXPECT_EQ(refusalOf(entry, sheet), Refusal::NoFood);
    EXPECT_EQ(textOf(Refusal::NoFood).toStdString(), "Meal must contain food");
    put("0", kMilk);
    EXPECT_EQ(refusalOf(entry, sheet), std::nullopt) << "0 g of it will do";
}

} // namespace
} // namespace meals
