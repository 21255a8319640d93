#include "meals/meal_storage.h"

#include "data/database.h"
#include "data/new_diary/diary_schema.h"
#include "jet/database.h"
#include "meals/exported_table.h"
#include "meals/meal_sheet.h"
#include "meals/meal_type.h"
#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"
#include "support/diary_content.h"
#include "support/file_size_limit.h"
#include "support/test_diary.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace meals {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr qint32 kBread = 1;
constexpr qint32 kButter = 2;
constexpr qint32 kMilk = 3;

constexpr runtime::Date kNoon{45356.5}; ///< of 5 March 2024; 45292 is the first of that year

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

    /// What an action that must fail ends with.
    static runtime::RunTimeError errorOf(const std::function<void()>& action)
    {
        try {
            action();
        } catch (const runtime::RunTimeError& error) {
            return error;
        }
        ADD_FAILURE() << "no error";
        return runtime::RunTimeError(runtime::ErrorNumber::InvalidProcedureCall);
    }
    runtime::RunTimeError errorOfSaving()
    {
        return errorOf([this] { save(); });
    }

    LocaleInForce english{QLocale::English, QLocale::UnitedKingdom};
    TestDiary diary;
    QString path = diary.path();
    MealSheet sheet;
    MealEntry entry{.date = "05/03/2024", .time = "12:30", .type = 2, .insulinDose = "6"};
};

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

using SaveMeal = MealStorage;

TEST_F(SaveMeal, StoresTheMealAndItsFoods)
{
    EXPECT_EQ(save(), 1);
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 2 | 6"));
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 150", "1 | 2 | 10.5"));
}

TEST_F(SaveMeal, NumbersMealsOnwards)
{
    addMeal("04/03/2024 12:00");
    EXPECT_EQ(save(), 2);
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 80", "2 | 1 | 150", "2 | 2 | 10.5"));
}

TEST_F(SaveMeal, ASnackWithDoseZeroIsStored)
{
    entry.type = 4;
    entry.insulinDose = "0";
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 4 | 0"));
}

TEST_F(SaveMeal, AddsTheTimeToTheDate)
{
    entry.date = "5/mar/2024";
    entry.time = "8:15:30";
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 08:15:30 | 2 | 6"));
}

TEST_F(SaveMeal, AMealWithoutATypeIsStoredAsZero)
{
    entry.type.reset();
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 0 | 6"));
}

TEST_F(SaveMeal, HalvesOfAUnitGoToTheEvenNumber)
{
    for (const char* dose : {"2.5", "3.5", "2.6", "-1", " 32767 "}) {
        entry.insulinDose = dose;
        save();
    }
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 2 | 2", "2 | 05/03/2024 12:30:00 | 2 | 4",
                                     "3 | 05/03/2024 12:30:00 | 2 | 3", "4 | 05/03/2024 12:30:00 | 2 | -1",
                                     "5 | 05/03/2024 12:30:00 | 2 | 32767"));
}

TEST_F(SaveMeal, FoodsOfZeroGramsAreNotStored)
{
    put("0", kMilk);
    put("20", kMilk);
    save();
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 150", "1 | 2 | 10.5", "1 | 3 | 20"));
}

TEST_F(SaveMeal, AMealWhoseEveryFoodHasZeroGramsIsStoredWithoutFoods)
{
    sheet.clear();
    put("0", kBread);
    put("0.04", kButter); // shown as 0.0
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 2 | 6"));
    EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(SaveMeal, AQuantityIsStoredAsItShows)
{
    sheet.clear();
    put("33.33", kBread);
    put("12.25", kButter); // halves away from zero
    save();
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 33.3", "1 | 2 | 12.3"));
}

TEST_F(SaveMeal, TheSameFoodTwiceIsStoredTwice)
{
    put("150", kBread);
    save();
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 150", "1 | 2 | 10.5", "1 | 1 | 150"));
}

TEST_F(SaveMeal, ReadsNumbersWithTheLocalesDecimalSign)
{
    const LocaleInForce german(QLocale::German, QLocale::Germany);
    sheet.clear();
    put("12,5", kBread);
    entry.insulinDose = "7,5";
    EXPECT_EQ(refusalOf(entry, sheet), std::nullopt);
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 2 | 8"));
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 12.5"));
}

TEST_F(SaveMeal, TheReplacedMealIsGoneFromBothTables)
{
    addMeal("04/03/2024 12:00");
    addMeal("05/03/2024 18:00");
    addMeal("06/03/2024 12:00");
    entry.replaces = 2;
    EXPECT_EQ(save(), 4);
    EXPECT_THAT(meals(), ElementsAre("1 | 04/03/2024 12:00:00 | 2 | 6", "3 | 06/03/2024 12:00:00 | 2 | 6",
                                     "4 | 05/03/2024 12:30:00 | 2 | 6"));
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 80", "3 | 1 | 80", "4 | 1 | 150", "4 | 2 | 10.5"));
}

TEST_F(SaveMeal, ReplacingTwiceStoresTheMealOnceMore)
{
    addMeal("05/03/2024 18:00");
    entry.replaces = 1;
    EXPECT_EQ(save(), 2);
    EXPECT_EQ(save(), 3);
    EXPECT_THAT(meals(), ElementsAre("2 | 05/03/2024 12:30:00 | 2 | 6", "3 | 05/03/2024 12:30:00 | 2 | 6"));
    EXPECT_THAT(contents(), SizeIs(4));
}

TEST_F(SaveMeal, ATextThatDoesNotFitCostsNoMeal)
{
    struct Misfit {
        MealEntry entry;
        int error;
        const char* hint;
    };
    addMeal("05/03/2024 18:00");
    const char* const kDate = "The date or the time is not one. Nothing was stored.";
    const char* const kDose = "The insulin dose is not a number from -32768 to 32767. Nothing was stored.";
    for (const Misfit& misfit :
         {Misfit{{"31/02/2024", "12:30", 2, "6", 1}, 13, kDate}, Misfit{{"", "12:30", 2, "6", 1}, 13, kDate},
          Misfit{{"05/03/2024", "25:00", 2, "6", 1}, 13, kDate},
          Misfit{{"05/03/2024", "12:30", 2, "six", 1}, 13, kDose}, Misfit{{"05/03/2024", "12:30", 2, "", 1}, 13, kDose},
          Misfit{{"05/03/2024", "12:30", 2, "32768", 1}, 6, kDose}}) {
        entry = misfit.entry;
        const runtime::RunTimeError error = errorOfSaving();
        EXPECT_EQ(error.number(), misfit.error);
        EXPECT_EQ(error.hint().toStdString(), misfit.hint);
    }
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 18:00:00 | 2 | 6"));
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 80"));
}

TEST_F(SaveMeal, NeedsTheDiary)
{
    path = "/nowhere/Nutrition.mdb";
    EXPECT_EQ(errorOfSaving().number(), 3024);
}

TEST_F(SaveMeal, OnAFullDiskKeepsWhatWasStoredBefore)
{
    addMeal("05/03/2024 18:00");
    const Food milk = foodNumbered(path, kMilk);
    for (int line = 0; line < 200; ++line) { // more than a page holds
        sheet.add(milk, 0.2);
    }
    entry.replaces = 1;
    std::optional<FileSizeLimit> limit(QFile(path).size());
    const runtime::RunTimeError error = errorOfSaving();
    limit.reset();
    EXPECT_EQ(error.number(), 3043);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("The meal was stored, but not all of its foods."));

    EXPECT_THAT(meals(), ElementsAre("2 | 05/03/2024 12:30:00 | 2 | 6")) << "the replaced meal is gone";
    const std::vector<std::string> stored = contents();
    ASSERT_THAT(stored, SizeIs(AllOf(testing::Gt(2U), testing::Lt(202U))));
    EXPECT_EQ(stored[0], "2 | 1 | 150");
    EXPECT_EQ(stored[1], "2 | 2 | 10.5");
    EXPECT_EQ(stored.back(), "2 | 3 | 20");
    EXPECT_THAT(data::Database(path).check(), IsEmpty());

    entry.replaces = 2;
    EXPECT_EQ(save(), 3) << "with room on the disk";
    EXPECT_THAT(contents(), SizeIs(202));
}

TEST_F(SaveMeal, OnADiskThatTakesNothingChangesNothing)
{
    addMeal("05/03/2024 18:00");
    entry.replaces = 1;
    std::optional<FileSizeLimit> limit(0);
    const runtime::RunTimeError error = errorOfSaving();
    limit.reset();
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("Nothing was stored."));
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 18:00:00 | 2 | 6"));
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 80"));
    EXPECT_THAT(data::Database(path).check(), IsEmpty());
}

/// A file that has the table of the meals but not that of their foods, so that what comes second fails.
class SaveMealStepByStep : public MealStorage
{
protected:
    SaveMealStepByStep()
    {
        path = folder.filePath(QStringLiteral("Nutrition.mdb"));
        const auto file = jet::Database::create(jet::posixFileSystem(), path.toStdString(), jet::DateTime{46000});
        for (const jet::TableSpec& table : data::diaryTables({})) {
            if (table.name == "Meals") {
                file->createTable(table);
            }
        }
    }

    QTemporaryDir folder;
};

TEST_F(SaveMealStepByStep, TheMealIsStoredBeforeItsFoods)
{
    EXPECT_THAT(errorOfSaving().hint().toStdString(), EndsWith("The meal was stored, but not all of its foods."));
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 2 | 6"));
}

TEST_F(SaveMealStepByStep, TheReplacedMealIsDeletedBeforeItsFoods)
{
    static_cast<void>(errorOfSaving());
    entry.replaces = 1;
    EXPECT_THAT(errorOfSaving().hint().toStdString(),
                EndsWith("The old meal was deleted, and the new one was not stored."));
    EXPECT_THAT(meals(), IsEmpty());
}

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
    const runtime::RunTimeError error = errorOf([this] { static_cast<void>(storedMeals(path)); });
    EXPECT_EQ(error.number(), 3021);
    EXPECT_EQ(error.hint().toStdString(), "There is no stored meal yet.");
}

TEST_F(StoredMeals, WithoutADoseOrATimeAreNamedByTheirNumber)
{
    addMeal("05/03/2024 12:00");
    addMeal("06/03/2024 12:00", 2, std::nullopt);
    const auto list = [this] { static_cast<void>(storedMeals(path)); };
    EXPECT_EQ(errorOf(list).number(), 94);
    EXPECT_EQ(errorOf(list).hint().toStdString(),
              "The time or the insulin dose of meal number 2 is missing or out of range.");
    addMeal("");
    EXPECT_EQ(errorOf(list).number(), 94);
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
    const runtime::RunTimeError error = errorOf([this] { fetchFoods(sheet, path, 1); });
    EXPECT_EQ(error.number(), 3021);
    EXPECT_EQ(error.hint().toStdString(), "No foods are stored with this meal.");
    EXPECT_THAT(foodsInSheet(), IsEmpty());
    EXPECT_EQ(sheet.lines().size(), 3) << "as at the beginning";
}

TEST_F(FetchedMeal, WithAFoodThatIsNoLongerInTheTableIsNotFetchedInPart)
{
    reports::addMeal(path, {"05/03/2024 12:00", 2, 6, {{kMilk, 200}, {4711, 10}, {kBread, 80}}});
    const runtime::RunTimeError error = errorOf([this] { fetchFoods(sheet, path, 1); });
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
