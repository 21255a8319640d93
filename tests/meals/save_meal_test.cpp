// Storing a meal, in the place of an old one too.
#include "meals/meal_in_diary.h"

#include "data/database.h"
#include "data/new_diary/diary_schema.h"
#include "jet/database.h"
#include "support/file_size_limit.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace meals {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

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
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("Nothing was stored."));

    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 18:00:00 | 2 | 6")) << "the meal that was to be replaced";
    EXPECT_THAT(contents(), ElementsAre("1 | 1 | 80"));
    EXPECT_TRUE(data::Database(path).check().empty());

    EXPECT_EQ(save(), 2) << "with room on the disk";
    EXPECT_THAT(meals(), ElementsAre("2 | 05/03/2024 12:30:00 | 2 | 6"));
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
    EXPECT_TRUE(data::Database(path).check().empty());
}

/// A file that has the table of the meals but not that of their foods, so that what comes second fails.
class SaveMealHalfway : public MealStorage
{
protected:
    SaveMealHalfway()
    {
        path = folder.filePath(QStringLiteral("Nutrition.mdb"));
        const auto file = jet::Database::create(jet::posixFileSystem(), path.toStdString(), jet::DateTime{46000});
        for (const jet::TableSpec& table : data::diaryTables({})) {
            if (table.name == "Meals") {
                file->createTable(table);
            }
        }
        data::Database database(path);
        data::Recordset stored = database.openRecordset(QStringLiteral("Meals"));
        stored.addNew();
        stored.set(QStringLiteral("MealTime"), runtime::Date{45356.75});
        stored.set(QStringLiteral("MealDescription"), qint32{2});
        stored.set(QStringLiteral("Insulin Dosage"), qint32{6});
        stored.update();
    }

    QTemporaryDir folder;
};

TEST_F(SaveMealHalfway, StoresNoMealWithoutItsFoods)
{
    EXPECT_THAT(errorOfSaving().hint().toStdString(), EndsWith("Nothing was stored."));
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 18:00:00 | 2 | 6"));
}

TEST_F(SaveMealHalfway, KeepsTheMealThatWasToBeReplaced)
{
    entry.replaces = 1;
    EXPECT_THAT(errorOfSaving().hint().toStdString(), EndsWith("Nothing was stored."));
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 18:00:00 | 2 | 6"));
}

} // namespace
} // namespace meals
