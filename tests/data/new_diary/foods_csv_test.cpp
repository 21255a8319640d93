#include "data/new_diary/foods_csv.h"

#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace {

using data::FoodTable;
using data::parseFoods;

const std::string kHeader =
    "NDB_No,Shrt_Desc,Energ_Kcal,Protein,Tot_Lipid,Carbohydrt,Cholestrl,Zinc,GmWt_1,GmWt_Desc1\n";

/// The hint of the error that the text gives, or "" when it is taken.
std::string whyRefused(const std::string& csv)
{
    try {
        (void)parseFoods(csv);
        return {};
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.code(), runtime::ErrorNumber::TypeMismatch);
        return error.hint().toStdString();
    }
}

TEST(FoodsCsv, ReadsAFoodWithItsNutrientsInTheFilesOrder)
{
    const FoodTable table = parseFoods(kHeader + "9040,\"BANANAS,RAW\",89,1.09,0.33,22.84,0,0.15,118,1 medium\n");
    ASSERT_EQ(table.foods.size(), 1U);
    const data::Food& banana = table.foods.front();
    EXPECT_EQ(banana.number, 9040);
    EXPECT_EQ(banana.description, u"BANANAS,RAW");
    EXPECT_EQ(table.nutrients,
              (std::vector<std::string>{"Energ_Kcal", "Protein", "Tot_Lipid", "Carbohydrt", "Cholestrl", "Zinc"}));
    EXPECT_EQ(banana.nutrients.at(table.nutrient("Carbohydrt").value()), 22.84);
    EXPECT_EQ(banana.measureGrams1, 118);
    EXPECT_EQ(banana.measure1, u"1 medium");
    EXPECT_FALSE(banana.measure2.has_value());
}

TEST(FoodsCsv, AnEmptyFigureIsNotKnownAndNotZero)
{
    const FoodTable table = parseFoods(kHeader + "1,X,0,,,,,,,\n");
    EXPECT_EQ(table.foods.front().nutrients.front(), 0.0);
    EXPECT_FALSE(table.foods.front().nutrients.back().has_value());
    EXPECT_FALSE(table.foods.front().measure1.has_value());
}

TEST(FoodsCsv, AQuotedFieldMayHoldCommasQuotesAndLineEnds)
{
    const FoodTable table = parseFoods(kHeader + "1,\"A \"\"B\"\", C\nD\",1,1,1,1,1,1,,\r\n2,E,1,1,1,1,1,1,,");
    ASSERT_EQ(table.foods.size(), 2U);
    EXPECT_EQ(table.foods.front().description, u"A \"B\", C\nD");
    EXPECT_EQ(table.foods.back().description, u"E");
}

TEST(FoodsCsv, AByteOrderMarkAndWindowsLineEndsDoNotMatter)
{
    const FoodTable table =
        parseFoods("\xEF\xBB\xBFNDB_No,Shrt_Desc,Energ_Kcal,Protein,Tot_Lipid,Carbohydrt,Cholestrl\r\n"
                   "5,M\xC3\xBCsli,1,2,3,4,5\r\n");
    EXPECT_EQ(table.foods.front().description, u"M\u00FCsli");
}

TEST(FoodsCsv, AFaultIsNamedWithItsLine)
{
    EXPECT_EQ(whyRefused(kHeader + "1,X,89,1,1,1,0,0,,\n2,Y,8g,1,1,1,0,0,,\n"),
              "Line 3: \"8g\" in the column Energ_Kcal is no number");
    EXPECT_EQ(whyRefused(kHeader + "1,X,89\n"), "Line 2: 3 fields where 10 are expected");
    EXPECT_EQ(whyRefused(kHeader + "1,X,1,1,1,1,1,1,,\n1,Y,1,1,1,1,1,1,,\n"), "Line 3: the food number 1 occurs twice");
    EXPECT_EQ(whyRefused(kHeader + "x,X,1,1,1,1,1,1,,\n"), "Line 2: \"x\" is no food number");
    EXPECT_EQ(whyRefused(kHeader + "1,\"X,1,1,1,1,1,1,,\n"), "Line 2: a quote is not closed");
    EXPECT_EQ(whyRefused("NDB_No,Shrt_Desc\n"), "Line 1: the column Energ_Kcal is missing");
    EXPECT_EQ(whyRefused(""), "Line 1: the line with the columns' names is missing");
    EXPECT_EQ(whyRefused(kHeader + "1,X,nan,1,1,1,1,1,,\n"), "Line 2: \"nan\" in the column Energ_Kcal is no number");
}

TEST(FoodsCsv, TheSuppliedTableIsWhole)
{
    const FoodTable table = data::readFoods(QUILLON_FOODS);
    EXPECT_EQ(table.foods.size(), 8789U);
    EXPECT_EQ(table.nutrients.size(), 46U);
}

TEST(FoodsCsv, AFileThatIsNotThereIsError53)
{
    try {
        (void)data::readFoods("/nowhere/foods.csv");
        FAIL() << "no error";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 53);
    }
}

} // namespace
