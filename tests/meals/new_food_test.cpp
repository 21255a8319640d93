#include "meals/new_food.h"

#include "data/database.h"
#include "meals/food_diary.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>

#include <limits>

namespace meals {
namespace {

using runtime::ErrorNumber;
using testing::ElementsAre;
using testing::IsEmpty;

FoodDiary smallDiary(const std::vector<int>& foods = {1001, 1002})
{
    return {usualColumns({"Energ_Kcal", "Carbohydrt"}), foods};
}

NewFood stew()
{
    return {"Stew", true, false, {{"Energ_Kcal", "120.5"}, {"Carbohydrt", "7"}}};
}

std::string kStewBehindItsNumber = "Stew | 120.5 | 7 | " + kNoHouseholdWeights + " | 1 | 0";

/// The run-time error that adding the food raises; nothing may have been stored.
runtime::RunTimeError errorOfSaving(const FoodDiary& diary, const NewFood& food)
{
    const runtime::RunTimeError error = requiredErrorOf([&] { return SaveIngredient(diary.path(), food); });
    EXPECT_THAT(diary.addedFoods(), IsEmpty());
    return error;
}

std::vector<std::string> textsOf(const QStringList& list)
{
    std::vector<std::string> texts;
    for (const QString& text : list) {
        texts.push_back(text.toStdString());
    }
    return texts;
}

TEST(NutrientColumns, AreAllButTheFixedOnesInTheTablesOrder)
{
    EXPECT_THAT(textsOf(nutrientColumns(smallDiary().path())), ElementsAre("Energ_Kcal", "Carbohydrt"));
}

TEST(NutrientColumns, LeaveTheFixedOnesOutWhateverTheirPosition)
{
    const FoodDiary diary({flagColumn("Ingredient"), numberColumn("Zinc"), numberColumn("Refuse_Pct"),
                           textColumn("GmWt_Desc2", 20), numberColumn("GmWt_2"), keyColumn(), numberColumn("Ash"),
                           textColumn("GmWt_Desc1", 20), flagColumn("Recipe"), numberColumn("GmWt_1"),
                           numberColumn("Energ_Kcal"), textColumn("Shrt_Desc", 20)},
                          {1001});
    EXPECT_THAT(textsOf(nutrientColumns(diary.path())), ElementsAre("Zinc", "Ash", "Energ_Kcal"));
}

TEST(NutrientColumns, AreToldFromTheFixedOnesByTheirExactName)
{
    const FoodDiary diary({keyColumn(), textColumn("Shrt_Desc", 20), numberColumn("recipe"), numberColumn("GmWt_3"),
                           numberColumn("Refuse_Pct ?"), flagColumn("Ingredient")},
                          {1001});
    EXPECT_THAT(textsOf(nutrientColumns(diary.path())), ElementsAre("recipe", "GmWt_3", "Refuse_Pct ?"));
}

TEST(NutrientColumns, IncludeOneThatHoldsNoNumbers)
{
    const FoodDiary diary(usualColumns({}), {});
    EXPECT_THAT(nutrientColumns(diary.path()), IsEmpty());
    std::vector<jet::ColumnSpec> columns = usualColumns({"Water"});
    columns.push_back(textColumn("Shop", 10));
    EXPECT_THAT(textsOf(nutrientColumns(FoodDiary(columns, {}).path())), ElementsAre("Water", "Shop"));
}

TEST(DescriptionLength, IsThatOfItsColumn)
{
    EXPECT_EQ(descriptionLength(smallDiary().path()), 20);
    const FoodDiary unlimited({keyColumn(), {"Shrt_Desc", jet::ColumnType::Memo}}, {});
    EXPECT_EQ(descriptionLength(unlimited.path()), 0);
}

TEST(NewFood, IsStoredWithWhatWasTyped)
{
    const FoodDiary diary = smallDiary();
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), 1000);
    EXPECT_THAT(diary.addedFoods(), ElementsAre("1000 | " + kStewBehindItsNumber));
    EXPECT_TRUE(data::Database(diary.path()).check().empty());
}

TEST(NewFood, LeavesTheFoodsBeforeItAsTheyWere)
{
    const FoodDiary diary = smallDiary();
    const std::vector<std::string> before = diary.foods();
    SaveIngredient(diary.path(), stew());
    std::vector<std::string> after = diary.foods();
    ASSERT_EQ(after.size(), before.size() + 1);
    after.pop_back();
    EXPECT_EQ(after, before);
}

TEST(NewFood, HasTheNumberBelowAllOthersWhereverTheSmallestIs)
{
    const FoodDiary diary = smallDiary({5000, -7, 1001});
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), -8);
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), -9);
    EXPECT_THAT(diary.addedFoods(), ElementsAre("-8 | " + kStewBehindItsNumber, "-9 | " + kStewBehindItsNumber));
}

TEST(NewFood, CountsDownThroughZero)
{
    const FoodDiary diary = smallDiary({1});
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), 0);
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), -1);
}

TEST(NewFood, PassesOverTheNumberThatStandsForNoFood)
{
    const FoodDiary diary = smallDiary({-999998});
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), -1000000);
    EXPECT_EQ(SaveIngredient(diary.path(), stew()), -1000001);
    EXPECT_THAT(diary.addedFoods(),
                ElementsAre("-1000000 | " + kStewBehindItsNumber, "-1000001 | " + kStewBehindItsNumber));
}

TEST(NewFood, TakesTheLastNumberThereIsButNoneBelow)
{
    constexpr qint32 smallest = std::numeric_limits<qint32>::min();
    EXPECT_EQ(SaveIngredient(smallDiary({smallest + 1}).path(), stew()), smallest);
    const runtime::RunTimeError error = errorOfSaving(smallDiary({smallest}), stew());
    EXPECT_EQ(error.code(), ErrorNumber::Overflow);
    EXPECT_EQ(error.hint().toStdString(), "No number is left for another food. Nothing was stored.");
}

TEST(NewFood, IsRefusedInADiaryWithoutFoods)
{
    EXPECT_EQ(errorOfSaving(smallDiary({}), stew()).code(), ErrorNumber::InvalidUseOfNull);
}

TEST(NewFood, HasFlagsThatAreIndependent)
{
    const FoodDiary diary = smallDiary();
    for (const bool recipe : {false, true}) {
        for (const bool ingredient : {false, true}) {
            SaveIngredient(diary.path(), {"Stew", recipe, ingredient, {}});
        }
    }
    const std::string rest = " | Stew | null | null | " + kNoHouseholdWeights;
    EXPECT_THAT(diary.addedFoods(), ElementsAre("1000" + rest + " | 0 | 0", "999" + rest + " | 0 | 1",
                                                "998" + rest + " | 1 | 0", "997" + rest + " | 1 | 1"));
}

TEST(NewFood, HasOneInAFlagThatIsKeptAsANumber)
{
    const FoodDiary diary(
        {keyColumn(), textColumn("Shrt_Desc", 20), {"Recipe", jet::ColumnType::Integer}, numberColumn("Ingredient")},
        {1001});
    SaveIngredient(diary.path(), {"Stew", true, true, {}});
    EXPECT_THAT(diary.addedFoods(), ElementsAre("1000 | Stew | 1 | 1"));
}

TEST(NewFood, NeedsNoColumnsForItsFlags)
{
    const FoodDiary diary({keyColumn(), textColumn("Shrt_Desc", 20)}, {1001});
    SaveIngredient(diary.path(), {"Stew", true, true, {}});
    EXPECT_THAT(diary.addedFoods(), ElementsAre("1000 | Stew"));
}

TEST(NewFood, KeepsItsDescriptionAsItStands)
{
    const FoodDiary diary = smallDiary();
    SaveIngredient(diary.path(), {"  it's *50%* [ü] ", false, false, {}});
    EXPECT_THAT(diary.addedFoods(),
                ElementsAre("1000 |   it's *50%* [ü]  | null | null | " + kNoHouseholdWeights + " | 0 | 0"));
}

TEST(NewFood, MayHaveAnEmptyDescription)
{
    const FoodDiary diary = smallDiary();
    SaveIngredient(diary.path(), {"", false, false, {}});
    data::Database database(diary.path()); // the other program shows an empty text as an open value
    const data::Recordset foods =
        database.openRecordset("Select Shrt_Desc from NutritionalInformation where NDB_No = 1000");
    EXPECT_EQ(foods.value(0), runtime::Value(QString("")));
}

TEST(NewFood, WithADescriptionLongerThanItsColumnIsRefused)
{
    const FoodDiary diary = smallDiary();
    NewFood food = stew();
    food.description = QString(21, u'x');
    const runtime::RunTimeError error = errorOfSaving(diary, food);
    EXPECT_EQ(error.code(), ErrorNumber::FieldTooSmall);
    EXPECT_EQ(error.hint().toStdString(), "'Shrt_Desc' holds at most 20 characters.");

    food.description = QString(20, u'x');
    SaveIngredient(diary.path(), food);
    EXPECT_THAT(diary.addedFoods(),
                ElementsAre("1000 | xxxxxxxxxxxxxxxxxxxx | 120.5 | 7 | " + kNoHouseholdWeights + " | 1 | 0"));
}

TEST(NewFood, HasZeroForAnEmptyValue)
{
    const FoodDiary diary = smallDiary();
    SaveIngredient(diary.path(), {"Stew", true, false, {{"Energ_Kcal", ""}, {"Carbohydrt", "7"}}});
    EXPECT_THAT(diary.addedFoods(), ElementsAre("1000 | Stew | 0 | 7 | " + kNoHouseholdWeights + " | 1 | 0"));
}

TEST(NewFood, WithATextThatIsNoNumberIsRefusedNamingTheColumn)
{
    for (const char* wrong : {"seven", " ", "7 g", "1.2.3"}) {
        NewFood food = stew();
        food.values[1].text = QLatin1String(wrong);
        const runtime::RunTimeError error = errorOfSaving(smallDiary(), food);
        EXPECT_EQ(error.code(), ErrorNumber::TypeMismatch) << wrong;
        EXPECT_EQ(error.hint().toStdString(), "'Carbohydrt' takes no such value: type a number. Nothing was stored.");
    }
}

TEST(NewFood, WithAValueBeyondItsColumnIsRefusedNamingTheColumn)
{
    std::vector<jet::ColumnSpec> columns = usualColumns({"Energ_Kcal"});
    columns.push_back({"Stars", jet::ColumnType::Byte});
    const runtime::RunTimeError error =
        errorOfSaving({columns, {1001}}, {"Stew", false, false, {{"Energ_Kcal", "1"}, {"Stars", "256"}}});
    EXPECT_EQ(error.code(), ErrorNumber::Overflow);
    EXPECT_THAT(error.hint().toStdString(), testing::HasSubstr("'Stars'"));
}

TEST(NewFood, WithAValueForAColumnThatIsGoneIsRefused)
{
    NewFood food = stew();
    food.values.append(NewFood::Value{"Iron", "1"});
    EXPECT_EQ(errorOfSaving(smallDiary(), food).code(), ErrorNumber::ItemNotFound);
}

TEST(NewFood, TakesNumbersWithTheDecimalSignOfTheLocale)
{
    const FoodDiary diary = smallDiary();
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    SaveIngredient(diary.path(), {"Stew", true, false, {{"Energ_Kcal", "120,5"}, {"Carbohydrt", "7"}}});
    QLocale::setDefault(before);
    EXPECT_THAT(diary.addedFoods(), ElementsAre("1000 | " + kStewBehindItsNumber));
}

TEST(NewFood, GoesIntoADiaryMadeByTheProgram)
{
    TestDiary diary;
    {
        data::Database database(diary.path());
        data::Recordset foods = database.openRecordset("NutritionalInformation");
        foods.addNew();
        foods.set("NDB_No", qint32{1001});
        foods.update();
    }
    NewFood food{"Stew", true, false, {}};
    for (const QString& column : nutrientColumns(diary.path())) {
        food.values.append(NewFood::Value{column, "1"});
    }
    EXPECT_EQ(SaveIngredient(diary.path(), food), 1000);
    EXPECT_TRUE(data::Database(diary.path()).check().empty());
}

TEST(NewFood, IsRefusedWithoutADiary)
{
    const FoodDiary diary = smallDiary();
    ASSERT_TRUE(QFile::rename(diary.path(), diary.path() + ".away"));
    EXPECT_THROW(SaveIngredient(diary.path(), stew()), runtime::RunTimeError);
    EXPECT_FALSE(QFile::exists(diary.path()));
}

} // namespace
} // namespace meals
