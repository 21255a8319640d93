#include "meals/food.h"

#include "data/database.h"
#include "jet/database.h"
#include "meals/known_foods.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace meals {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> foundBy(const DescribedFoods& diary, const QString& text)
{
    std::vector<std::string> descriptions;
    for (const FoundFood& food : searchFoods(diary.path(), text)) {
        descriptions.push_back(food.description.toStdString());
    }
    return descriptions;
}

runtime::RunTimeError errorOfSearch(const DescribedFoods& diary, const QString& text)
{
    return requiredErrorOf([&] { return searchFoods(diary.path(), text); });
}

TEST(FoodSearch, FindsATextAnywhereInADescription)
{
    const DescribedFoods diary({"BUTTER,WITH SALT", "MILK", "PEANUT BUTTER", "COOKIES,BUTTER,CHEAP"});
    EXPECT_THAT(foundBy(diary, "butter"), ElementsAre("Cookies,butter,cheap", "Peanut butter", "Butter,with salt"));
}

TEST(FoodSearch, ListsTheFoodsInTheReverseOfTheTablesOrderWithTheirNumbers)
{
    const DescribedFoods diary({"C FOOD", "A FOOD", "B FOOD"});
    const QList<FoundFood> found = searchFoods(diary.path(), QStringLiteral("food"));
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found.at(0).description, QStringLiteral("B food"));
    EXPECT_EQ(found.at(0).number, 3);
    EXPECT_EQ(found.at(1).number, 2);
    EXPECT_EQ(found.at(2).number, 1);
}

TEST(FoodSearch, CapitalsAndSmallLettersAreTheSame)
{
    const DescribedFoods diary({"BUTTER", "Gran's butter"});
    EXPECT_THAT(foundBy(diary, "BuTTer"), ElementsAre("Gran's butter", "Butter"));
}

TEST(FoodSearch, WithoutAFindListsNothing)
{
    const DescribedFoods diary({"BUTTER"});
    EXPECT_THAT(foundBy(diary, "jam"), IsEmpty());
    EXPECT_THAT(foundBy(DescribedFoods({}), "butter"), IsEmpty()) << "in a table without foods";
}

TEST(FoodSearch, AFoodWithoutADescriptionIsNotFound)
{
    const DescribedFoods diary({"BUTTER"});
    data::Database database(diary.path());
    data::Recordset foods = database.openRecordset(QStringLiteral("NutritionalInformation"));
    foods.addNew();
    foods.set(QStringLiteral("NDB_No"), 2);
    foods.update();
    EXPECT_THAT(foundBy(diary, ""), ElementsAre("Butter"));
}

TEST(FoodSearch, AStarStandsForAnyRunOfCharacters)
{
    const DescribedFoods diary({"CHOCOLATE,MILK", "CHMILK", "MILK CHOCOLATE", "CHEESE,GOAT MILK,HARD"});
    EXPECT_THAT(foundBy(diary, "ch*milk"), ElementsAre("Cheese,goat milk,hard", "Chmilk", "Chocolate,milk"));
}

TEST(FoodSearch, TheOtherWildcardsHoldToo)
{
    const DescribedFoods diary({"CAT FOOD", "CUT BREAD", "CT SCAN", "MILK,2% FAT", "MILK,LOW FAT"});
    EXPECT_THAT(foundBy(diary, "c?t"), ElementsAre("Cut bread", "Cat food"));
    EXPECT_THAT(foundBy(diary, "milk,#%"), ElementsAre("Milk,2% fat"));
    EXPECT_THAT(foundBy(diary, "c[aeo]t"), ElementsAre("Cat food"));
    EXPECT_THAT(foundBy(diary, "c[!a-c]t"), ElementsAre("Cut bread"));
}

TEST(FoodSearch, WhatIsNoWildcardStandsForItself)
{
    const DescribedFoods diary({"MILK,2% FAT", "MILK_SHAKE", "CUBES,1/2\" THICK", "MILK [RAW]", "Z\\A"});
    EXPECT_THAT(foundBy(diary, "%"), ElementsAre("Milk,2% fat"));
    EXPECT_THAT(foundBy(diary, "_"), ElementsAre("Milk_shake"));
    EXPECT_THAT(foundBy(diary, "\""), ElementsAre("Cubes,1/2\" thick"));
    EXPECT_THAT(foundBy(diary, "[[]raw"), ElementsAre("Milk [raw]"));
    EXPECT_THAT(foundBy(diary, "\\"), ElementsAre("Z\\a"));
}

TEST(FoodSearch, AnApostropheIsASyntaxErrorWhoseHintSaysWhatToDo)
{
    const DescribedFoods diary({"BAKER'S BREAD", "BAKERS YEAST"});
    const runtime::RunTimeError error = errorOfSearch(diary, "baker's");
    EXPECT_EQ(error.number(), 3075);
    EXPECT_THAT(error.hint().toStdString(), testing::HasSubstr("apostrophe"));
    // What the hint advises:
    EXPECT_THAT(foundBy(diary, "baker?s"), ElementsAre("Baker's bread"));
    EXPECT_THAT(foundBy(diary, "baker''s"), ElementsAre("Baker's bread"));
}

TEST(FoodSearch, TheTextGoesIntoTheStatementAsTyped)
{
    const DescribedFoods diary({"BUTTER", "JAM", "RICE"});
    EXPECT_THAT(foundBy(diary, "jam*' or Shrt_Desc like '*rice"), ElementsAre("Rice", "Jam"));
}

TEST(FoodSearch, ABracketThatIsNotClosedIsAnErrorWhoseHintSaysWhatToDo)
{
    const DescribedFoods diary({"MILK [RAW]"});
    const runtime::RunTimeError error = errorOfSearch(diary, "[raw");
    EXPECT_EQ(error.number(), 93);
    EXPECT_THAT(error.hint().toStdString(), testing::HasSubstr("[[]"));
}

TEST(FoodSearch, ADiaryThatIsNotThereKeepsItsOwnHint)
{
    try {
        static_cast<void>(searchFoods(QStringLiteral("/nowhere/it's/Nutrition.mdb"), QStringLiteral("it's")));
        ADD_FAILURE() << "it was found";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3024);
        EXPECT_THAT(error.hint().toStdString(), testing::Not(testing::HasSubstr("apostrophe")));
    }
}

TEST(FoodSearch, ADiaryWithoutTheFoodTableKeepsItsOwnHint)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Nutrition.mdb"));
    static_cast<void>(jet::Database::create(jet::posixFileSystem(), path.toStdString(), jet::DateTime{46000}));
    try {
        static_cast<void>(searchFoods(path, QStringLiteral("it''s")));
        ADD_FAILURE() << "it was searched";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3078);
        EXPECT_THAT(error.hint().toStdString(), testing::Not(testing::HasSubstr("apostrophe")));
    }
}

} // namespace
} // namespace meals
