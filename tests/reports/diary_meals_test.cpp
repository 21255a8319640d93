// What a diary shows of a meal: heading, foods, totals and insulin.
#include "reports/diary_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const std::string kSeparator(57, '=');

TEST_F(OverallDiary, ShowsHeadingFoodsTotalsInsulinReadingsAndTheDay)
{
    addBreakfast();
    build();
    // 200 + 36 + 32 = 268 kCal: 74.6, 13.4 and 11.9 %
    EXPECT_THAT(lines(), ElementsAre("Breakfast\tTuesday 05 March 2002 08:00\tkCal\tCarb\tFat\tProt\tGrams", //
                                     "",                                                                     //
                                     "\tBread,white\t250.0\t50.0\t4.0\t8.0\t100.0",                          //
                                     "",                                                                     //
                                     "\tTotal\t250.0\t50.0\t4.0\t8.0",                                       //
                                     "\tCalc Total kCal/kCal/kCal/kCal\t268.0\t200.0\t36.0\t32.0",           //
                                     "\tTotal %\t268.0\t75%\t13%\t12%",                                      //
                                     "",                                                                     //
                                     "***\tInsulin (I) = 4 units, Carbs (C) = 50.0 g, C/I = 12.50",          //
                                     kReadingColumns,                                                        //
                                     "\t05 Mar 07:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t",                   //
                                     "\t05 Mar 10:00\t2:00\t7.0\t2.0\tMeal + 2\t",                           //
                                     "",                                                                     //
                                     "",                                                                     //
                                     "\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0",                  //
                                     "\tCalc Total kCal/kCal/kCal/kCal\t268.0\t200.0\t36.0\t32.0",           //
                                     "\tDay Total %\t268.0\t75%\t13%\t12%",                                  //
                                     "", kSeparator, ""));
}

TEST_F(OverallDiarySummary, LeavesOutTheFoodsAndTheEmptyLineBelowThem)
{
    addBreakfast();
    build();
    ASSERT_THAT(lines(), SizeIs(18));
    EXPECT_THAT(lines().at(0), StartsWith("Breakfast\t"));
    EXPECT_EQ(lines().at(1), "");
    EXPECT_THAT(lines().at(2), StartsWith("\tTotal\t"));
    EXPECT_THAT(lines().at(3), StartsWith("\tCalc Total"));
    EXPECT_THAT(lines().at(4), StartsWith("\tTotal %"));
    EXPECT_EQ(lines().at(5), "");
    EXPECT_THAT(lines().at(6), StartsWith("***\tInsulin"));
    EXPECT_EQ(lines().at(7), kReadingColumns);
    EXPECT_THAT(lines().at(12), StartsWith("\tDay Total kCal"));
}

TEST_F(InsulinDiary, ShowsNeitherFoodsNorTotalsNorTheDay)
{
    addBreakfast();
    build();
    EXPECT_THAT(lines(), ElementsAre("Breakfast\tTuesday 05 March 2002 08:00\tkCal\tCarb\tFat\tProt\tGrams", //
                                     "",                                                                     //
                                     "***\tInsulin (I) = 4 units, Carbs (C) = 50.0 g, C/I = 12.50",          //
                                     kReadingColumns,                                                        //
                                     "\t05 Mar 07:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t",                   //
                                     "\t05 Mar 10:00\t2:00\t7.0\t2.0\tMeal + 2\t",                           //
                                     ""));
}

TEST_F(OverallDiary, LinesHaveTheirStyles)
{
    addBreakfast();
    add("05/03/2002 11:00", 9.0, MealPlus3);
    build();
    EXPECT_THAT(stylesOf("Breakfast"), ElementsAre(Bold));
    EXPECT_THAT(stylesOf("\tBread"), ElementsAre(Plain));
    EXPECT_THAT(stylesOf("\tTotal\t"), ElementsAre(Plain));
    EXPECT_THAT(stylesOf("\tCalc Total"), ElementsAre(Plain, Bold)) << "the meal's, the day's";
    EXPECT_THAT(stylesOf("\tTotal %"), ElementsAre(Bold));
    EXPECT_THAT(stylesOf("***"), ElementsAre(Plain));
    EXPECT_THAT(stylesOf(kReadingColumns), ElementsAre(Plain));
    EXPECT_THAT(stylesOf("\t05 Mar"), ElementsAre(Green, Blue, Red));
    EXPECT_THAT(stylesOf("\tDay Total"), ElementsAre(Bold, Bold));
    EXPECT_THAT(stylesOf("="), ElementsAre(Plain));
}

TEST_F(OverallDiary, AFoodThatTheTableLacksHasItsNumberAndNoFigures)
{
    addBreakfast();
    eat("05/03/2002 09:00", Snack, 0, {{77, 30.0}, {Apple, 100}});
    build();
    EXPECT_THAT(lines(), Contains("\tFood number 77\t\t\t\t\t30.0"));
    EXPECT_THAT(lines(), Contains("\tTotal\t52.0\t14.0\t0.2\t0.3"));
}

TEST_F(OverallDiary, TwoMealsOfTheSameMinuteAreOneWithTheFirstOnesTypeAndDose)
{
    addBreakfast();
    eat("05/03/2002 08:00", Snack, 0, {{Apple, 100}});
    build();
    EXPECT_THAT(lines(), Contains(StartsWith("Breakfast")));
    EXPECT_THAT(lines(), Not(Contains(StartsWith("Snack"))));
    EXPECT_THAT(lines(), Contains("\tTotal\t302.0\t64.0\t4.2\t8.3"));
    EXPECT_THAT(lines(), Contains("***\tInsulin (I) = 4 units, Carbs (C) = 64.0 g, C/I = 16.00"));
}

TEST_F(OverallDiary, AMealWithoutATypeHasAHeadingThatBeginsWithATab)
{
    addBreakfast();
    eat("05/03/2002 12:00", NoType, 1, {{Bread, 100}});
    build();
    EXPECT_THAT(lines(), Contains(StartsWith("\tTuesday 05 March 2002 12:00\tkCal")));
}

TEST_F(InsulinDiary, AMealWithoutInsulinShowsItsCarbohydrateAlone)
{
    eat("05/03/2002 08:00", Dinner, 0, {{Bread, 45}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(2), "\tNo bosal insulin with this snack, Carbs = 22.5") << "whatever the meal's type is";
}

TEST_F(InsulinDiary, ANegativeDoseIsOne)
{
    eat("05/03/2002 08:00", Dinner, -2, {{Bread, 100}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(2), "***\tInsulin (I) = -2 units, Carbs (C) = 50.0 g, C/I = -25.00");
}

TEST_F(OverallDiary, AFoodOfUnknownWeightAndNutrientsIsAnEmptyLine)
{
    addBreakfast();
    eat("05/03/2002 08:00", Breakfast, 4, {{Water, std::nullopt}});
    build();
    EXPECT_THAT(lines(), Contains("\tWater,tap\t\t\t\t\t"));
    EXPECT_THAT(lines(), Contains("\tTotal\t250.0\t50.0\t4.0\t8.0"));
}

} // namespace
} // namespace reports
