// Which readings a diary shows with a meal, and how they are compared.
#include "reports/diary_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST_F(InsulinDiary, AReadingAtExactlyTheMealIsBeforeItByNoTime)
{
    eat("05/03/2002 08:17", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 07:00", 4.0, Meal);
    add("05/03/2002 08:17", 5.0, Meal);
    add("05/03/2002 10:17", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(4), "\t05 Mar 08:17 pre meal by\t0:00\t5.0\t0.0\tMeal\t");
    EXPECT_EQ(lines().at(5), "\t05 Mar 10:17\t2:00\t7.0\t2.0\tMeal + 2\t");
}

TEST_F(InsulinDiary, AReadingAtExactlyALaterMealIsASecondOneBeforeIt)
{
    addBreakfast();
    eat("05/03/2002 12:20", Lunch, 4, {{Bread, 100}});
    add("05/03/2002 12:20", 6.0, Meal);
    build();
    EXPECT_EQ(lines().at(11), "\t05 Mar 10:00 pre meal by\t2:20\t7.0\t0.0\tMeal + 2\t");
    EXPECT_EQ(lines().at(12), "\t05 Mar 12:20 pre meal by\t0:00\t6.0\t-1.0\tMeal\t");
    EXPECT_THAT(stylesOf("\t05 Mar 12:20"), ElementsAre(Green));
}

TEST_F(InsulinDiary, TheReadingsOfTheLastMealEndAtMidnight)
{
    addBreakfast();
    add("05/03/2002 23:59:59", 5.5, PreBed);
    add("06/03/2002", 5.6, Other);
    add("06/03/2002 07:00", 5.7, GettingUp);
    build();
    EXPECT_EQ(lines().at(6), "\t05 Mar 23:59\t15:59\t5.5\t0.5\tPre Bed\t");
    EXPECT_EQ(lines().at(7), "");
    EXPECT_THAT(lines(), SizeIs(8));
}

TEST_F(InsulinDiary, TheReadingsOfALateLastMealEndAtTheSameMidnight)
{
    eat("05/03/2002 23:30", Snack, 0, {{Bread, 100}});
    add("05/03/2002 23:00", 5.0, PreBed);
    add("05/03/2002 23:58", 5.5, PreBed);
    add("06/03/2002 07:00", 5.7, GettingUp);
    build();
    EXPECT_EQ(lines().at(5), "\t05 Mar 23:58\t0:28\t5.5\t0.5\tPre Bed\t");
    EXPECT_THAT(lines(), SizeIs(7));
}

TEST_F(InsulinDiary, TheReadingsOfAnEarlierMealGoOnToTheNextDaysMeal)
{
    addBreakfast();
    add("06/03/2002 06:30", 5.7, GettingUp);
    eat("06/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    build();
    EXPECT_EQ(lines().at(6), "\t06 Mar 06:30\t22:30\t5.7\t0.7\tGetting Up\t");
    EXPECT_EQ(lines().at(12), "\t06 Mar 06:30 pre meal by\t1:30\t5.7\t0.0\tGetting Up\t");
}

TEST_F(InsulinDiary, AReadingWithoutAnotherBetweenTwoMealsIsBeforeBoth)
{
    addBreakfast();
    eat("05/03/2002 08:30", Snack, 0, {{Apple, 100}});
    build();
    EXPECT_EQ(lines().at(4), "\t05 Mar 07:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t");
    EXPECT_EQ(lines().at(5), "");
    EXPECT_EQ(lines().at(10), "\t05 Mar 07:50 pre meal by\t0:40\t5.0\t0.0\tMeal\t");
    EXPECT_EQ(lines().at(11), "\t05 Mar 10:00\t1:30\t7.0\t2.0\tMeal + 2\t");
}

TEST_F(InsulinDiary, AChangeBelowThreeEitherWayIsBlueAndThreeIsRed)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 07:00", 8.0, Meal);
    add("05/03/2002 09:00", 10.5, Other);
    add("05/03/2002 10:00", 11.0, Other);
    add("05/03/2002 11:00", 5.5, Other);
    add("05/03/2002 12:00", 5.0, Other);
    build();
    EXPECT_THAT(stylesOf("\t05 Mar"), ElementsAre(Green, Blue, Red, Blue, Red));
}

TEST_F(InsulinDiary, LevelsAreComparedAsTheyAreStored)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 07:00", 5.2, Meal);
    add("05/03/2002 10:00", 8.2, Other); // 8.2 - 5.2 is 2.9999999999999991
    build();
    EXPECT_EQ(lines().at(5), "\t05 Mar 10:00\t2:00\t8.2\t3.0\tOther\t");
    EXPECT_THAT(stylesOf("\t05 Mar 10:00"), ElementsAre(Blue));
}

TEST_F(InsulinDiary, OfTimesLongerThanADayTheHoursBeyondIt)
{
    eat("05/03/2002 18:00", Dinner, 4, {{Bread, 100}});
    eat("09/03/2002 18:00", Dinner, 4, {{Bread, 100}});
    add("04/03/2002 15:00", 6.0, Other);
    add("06/03/2002 20:30", 7.0, Other);
    build();
    EXPECT_EQ(lines().at(4), "\t04 Mar 15:00 pre meal by\t3:00\t6.0\t0.0\tOther\t");
    EXPECT_EQ(lines().at(5), "\t06 Mar 20:30\t2:30\t7.0\t1.0\tOther\t");
}

TEST_F(InsulinDiary, TheFirstReadingIsTheBaseWhenAllAreLaterThanTheMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 10:00", 9.0, MealPlus2);
    add("05/03/2002 12:00", 6.0, Other);
    build();
    EXPECT_EQ(lines().at(4), "\t05 Mar 10:00\t2:00\t9.0\t0.0\tMeal + 2\t");
    EXPECT_EQ(lines().at(5), "\t05 Mar 12:00\t4:00\t6.0\t-3.0\tOther\t");
    EXPECT_THAT(stylesOf("\t05 Mar"), ElementsAre(Blue, Red));
}

TEST_F(InsulinDiary, AfterTheLastReadingItIsTheOneBeforeEveryMeal)
{
    addBreakfast();
    eat("05/03/2002 12:00", Lunch, 4, {{Bread, 100}});
    eat("05/03/2002 18:00", Dinner, 4, {{Bread, 100}});
    build();
    EXPECT_EQ(lines().at(11), "\t05 Mar 10:00 pre meal by\t2:00\t7.0\t0.0\tMeal + 2\t");
    EXPECT_EQ(lines().at(12), "");
    EXPECT_EQ(lines().at(17), "\t05 Mar 10:00 pre meal by\t8:00\t7.0\t0.0\tMeal + 2\t");
    EXPECT_THAT(lines(), SizeIs(19));
}

TEST_F(InsulinDiary, TheReadingsBeginAfterMidnightOfTheDayBeforeTheFirstMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("04/03/2002", 4.0, Other);
    add("04/03/2002 00:01", 5.0, Other);
    add("05/03/2002 10:00", 7.0, Other);
    filter("05/03/2002", "06/03/2002");
    build();
    EXPECT_EQ(lines().at(4), "\t04 Mar 00:01 pre meal by\t7:59\t5.0\t0.0\tOther\t") << "whatever the filter hides";
}

} // namespace
} // namespace reports
