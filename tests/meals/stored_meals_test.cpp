// The meals of a diary, and fetching one of them.
#include "meals/meal_in_diary.h"
#include "meals/meal_type.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace meals {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr runtime::Date kNoon{45356.5}; ///< of 5 March 2024; 45292 is the first of that year

class StoredMeals : public MealStorage
{
protected:
    [[nodiscard]] std::vector<std::string> listed() const
    {
        std::vector<std::string> lines;
        for (const StoredMeal& meal : storedMeals(path)) {
            lines.push_back(std::to_string(meal.number) + ": " + meal.line().toStdString());
        }
        return lines;
    }
};

TEST_F(StoredMeals, AreListedTheNewestFirst)
{
    addMeal("05/03/2024 08:00", 1);
    addMeal("29/02/2024 23:59", 4);
    addMeal("05/03/2024 12:00", 2);
    EXPECT_THAT(listed(), ElementsAre("3: Tuesday 05 March 2024\tLunch", "1: Tuesday 05 March 2024\tBreakfast",
                                      "2: Thursday 29 February 2024\tSnack"));
}

TEST_F(StoredMeals, OfOneTimeAreListedTheLastStoredFirst)
{
    addMeal("05/03/2024 12:00", 3);
    addMeal("05/03/2024 12:00", 4);
    EXPECT_THAT(listed(), ElementsAre("2: Tuesday 05 March 2024\tSnack", "1: Tuesday 05 March 2024\tDinner"));
}

TEST_F(StoredMeals, CarryTimeAndDose)
{
    addMeal("05/03/2024 12:00", 2, 9);
    const StoredMeal meal = storedMeals(path).first();
    EXPECT_EQ(meal.time, kNoon);
    EXPECT_EQ(meal.insulinDose, 9);
}

TEST_F(StoredMeals, OfNoKnownTypeHaveNoDescription)
{
    addMeal("05/03/2024 12:00", 0);
    addMeal("06/03/2024 12:00", 5);
    EXPECT_THAT(listed(), ElementsAre("2: Wednesday 06 March 2024\t", "1: Tuesday 05 March 2024\t"));
}

TEST_F(StoredMeals, NameDaysAndMonthsInTheUsersLanguage)
{
    const LocaleInForce german(QLocale::German, QLocale::Germany);
    addMeal("05/03/2024 12:00");
    EXPECT_THAT(listed(), ElementsAre("1: Dienstag 05 März 2024\tLunch"));
}

TEST_F(StoredMeals, OfAnEmptyDiaryAreAnError)
{
    const runtime::RunTimeError error = requiredErrorOf([this] { static_cast<void>(storedMeals(path)); });
    EXPECT_EQ(error.number(), 3021);
    EXPECT_EQ(error.hint().toStdString(), "There is no stored meal yet.");
}

TEST_F(StoredMeals, WithoutADoseOrATimeAreNamedByTheirNumber)
{
    addMeal("05/03/2024 12:00");
    addMeal("06/03/2024 12:00", 2, std::nullopt);
    const auto list = [this] { static_cast<void>(storedMeals(path)); };
    EXPECT_EQ(requiredErrorOf(list).number(), 94);
    EXPECT_EQ(requiredErrorOf(list).hint().toStdString(),
              "The time or the insulin dose of meal number 2 is missing or out of range.");
    addMeal("");
    EXPECT_EQ(requiredErrorOf(list).number(), 94);
}

using FetchedMeal = MealStorage;

TEST_F(FetchedMeal, BringsBackItsFieldsAsTexts)
{
    const MealEntry fetched = entryOf({7, kNoon, "Lunch", 12});
    EXPECT_EQ(fetched.date.toStdString(), "05/03/2024");
    EXPECT_EQ(fetched.time.toStdString(), "12:00");
    EXPECT_EQ(fetched.type, 2);
    EXPECT_EQ(fetched.insulinDose.toStdString(), "12");
    EXPECT_EQ(fetched.replaces, 7);
}

TEST_F(FetchedMeal, KeepsItsTimeToTheMinute)
{
    entry.time = "23:59:59";
    save();
    EXPECT_EQ(entryOf(storedMeals(path).first()).time.toStdString(), "23:59");
}

TEST_F(FetchedMeal, LunchDinnerAndSnackBringTheirType)
{
    for (const int type : {2, 3, 4}) {
        EXPECT_EQ(entryOf({1, kNoon, mealTypes().at(type - 1).name, 6}).type, type);
    }
}

TEST_F(FetchedMeal, ABreakfastAsksForItsTypeAgain)
{
    addMeal("05/03/2024 08:00", 1);
    const StoredMeal breakfast = storedMeals(path).first();
    EXPECT_EQ(breakfast.description.toStdString(), "Breakfast");
    fetchFoods(sheet, path, breakfast.number);
    EXPECT_EQ(refusalOf(entryOf(breakfast), sheet), Refusal::NoType);
}

TEST_F(FetchedMeal, OfNoKnownTypeBringsNone)
{
    EXPECT_EQ(entryOf({1, kNoon, "", 6}).type, std::nullopt);
}

TEST_F(FetchedMeal, ItsFoodsTakeThePlaceOfThoseInTheSheet)
{
    reports::addMeal(path, {"05/03/2024 12:00", 2, 6, {{kMilk, 200}, {kBread, 33.3}}});
    fetchFoods(sheet, path, 1);
    // 200 g of milk are 10 g of carbohydrate, 6 of fat and 6 of protein; a third of the bread's 50, 4 and 8 shows as
    // 16.7 (16.65), 1.3 (1.332) and 2.7 (2.664).
    EXPECT_THAT(foodsInSheet(), ElementsAre("200.0\tMilk,whole\t10.0\t6.0\t6.0", "33.3\tBread,white\t16.7\t1.3\t2.7"));
    EXPECT_EQ(sheet.lines().at(4).text.toStdString(), "");
    EXPECT_THAT(sheet.lines().at(5).text.toStdString(), HasSubstr("Total grams\t"));
}

TEST_F(FetchedMeal, WithoutFoodsLeavesTheSheetEmpty)
{
    reports::addMeal(path, {"05/03/2024 12:00", 2, 6, {}});
    const runtime::RunTimeError error = requiredErrorOf([this] { fetchFoods(sheet, path, 1); });
    EXPECT_EQ(error.number(), 3021);
    EXPECT_EQ(error.hint().toStdString(), "No foods are stored with this meal.");
    EXPECT_THAT(foodsInSheet(), IsEmpty());
    EXPECT_EQ(sheet.lines().size(), 3) << "as at the beginning";
}

TEST_F(FetchedMeal, WithAFoodThatIsNoLongerInTheTableIsNotFetchedInPart)
{
    reports::addMeal(path, {"05/03/2024 12:00", 2, 6, {{kMilk, 200}, {4711, 10}, {kBread, 80}}});
    const runtime::RunTimeError error = requiredErrorOf([this] { fetchFoods(sheet, path, 1); });
    EXPECT_EQ(error.number(), 3021);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("4711"));
    EXPECT_EQ(refusalOf(entry, sheet), Refusal::NoFood);
}

TEST_F(FetchedMeal, IsStoredAgainUnderANewNumberWithItsDateAndTime)
{
    save();
    entry.time = "18:00";
    save();
    const StoredMeal lunch = storedMeals(path).last();
    MealSheet again;
    fetchFoods(again, path, lunch.number);
    EXPECT_EQ(saveMeal(path, entryOf(lunch), again), 3);
    EXPECT_THAT(meals(), ElementsAre("2 | 05/03/2024 18:00:00 | 2 | 6", "3 | 05/03/2024 12:30:00 | 2 | 6"));
    EXPECT_THAT(contents(), ElementsAre("2 | 1 | 150", "2 | 2 | 10.5", "3 | 1 | 150", "3 | 2 | 10.5"));
}

TEST_F(FetchedMeal, IsReadWithTheLocalesDecimalSign)
{
    save();
    const LocaleInForce german(QLocale::German, QLocale::Germany);
    fetchFoods(sheet, path, 1);
    EXPECT_THAT(foodsInSheet(), ElementsAre("150,0\tBread,white\t75,0\t6,0\t12,0", HasSubstr("10,5\tButter")));
}

} // namespace
} // namespace meals
