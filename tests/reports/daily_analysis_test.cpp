#include "reports/daily_analysis.h"

#include "data/database.h"
#include "reports/report_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kColumns = "Date / Time\tMeal\tMeal + 2\tMeal + 3\tDelta 2\tDelta 3";

class DailyAnalysis : public testing::Test, protected ReportUnderTest
{
protected:
    DailyAnalysis() : ReportUnderTest(buildDailyAnalysis) {}

    /// The last meal, complete, with the evening before it.
    void addEveningAndMeal()
    {
        add("04/03/2002 22:30", 7.5, PreBed);
        add("05/03/2002 12:00", 5.2, Meal);
        add("05/03/2002 14:00", 8.2, MealPlus2);
        add("05/03/2002 15:00", 6.4, MealPlus3);
    }
};

TEST_F(DailyAnalysis, AMealWithBothLaterReadingsIsOneLineWithBothRisesUnderItsDay)
{
    addEveningAndMeal();
    build();
    ASSERT_EQ(lines().size(), 8U);
    EXPECT_EQ(lines().at(0), kColumns);
    EXPECT_EQ(lines().at(1), "");
    EXPECT_EQ(lines().at(2), "Tuesday 05 Mar 2002");
    EXPECT_EQ(lines().at(3), "");
    EXPECT_EQ(lines().at(4), "This morning - 5.2   Last night - 7.5   Drop = 2.3");
    EXPECT_EQ(lines().at(5), "");
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, ABreakfastWithoutAMealReadingBeginsAtGettingUp)
{
    add("04/03/2002 23:00", 9.0, PreBed);
    add("05/03/2002 07:00", 6.5, GettingUp);
    add("05/03/2002 09:00", 8.7, MealPlus2);
    add("05/03/2002 10:00", 7.1, MealPlus3);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 07:00\t06.5\t08.7\t07.1\t2.2\t0.6");
}

TEST_F(DailyAnalysis, AGettingUpMetBeforeBothLaterReadingsIsIgnored)
{
    addEveningAndMeal();
    add("05/03/2002 14:30", 4.0, GettingUp);
    add("05/03/2002 16:00", 4.1, GettingUp);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, AMealPlusThreeDiscardsMealAndMealPlusTwoFoundSoFar)
{
    addEveningAndMeal();
    add("05/03/2002 18:00", 5.5, Meal);
    add("05/03/2002 20:00", 9.5, MealPlus2);
    build();
    EXPECT_EQ(lines().size(), 8U) << "the meal at 18:00 has no line";
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, AMealPlusThreeDiscardsAMealPlusTwoThatHasNoMeal)
{
    add("04/03/2002 22:30", 7.5, PreBed);
    add("05/03/2002 08:00", 7.1, MealPlus2);
    add("05/03/2002 12:00", 5.2, Meal);
    add("05/03/2002 15:00", 6.4, MealPlus3);
    add("05/03/2002 20:00", 9.5, MealPlus2);
    build();
    EXPECT_EQ(lines().at(4), "This morning - 7.1   Last night - 7.5   Drop = 0.4");
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t07.1\t06.4\t1.9\t1.2") << "not the 9.5 of 20:00";
}

TEST_F(DailyAnalysis, OfTwoMealPlusTwoTheEarlierOneWins)
{
    addEveningAndMeal();
    add("05/03/2002 14:20", 9.9, MealPlus2);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, OfTwoMealsInOneGroupTheEarlierOneWins)
{
    add("04/03/2002 22:30", 7.5, PreBed);
    add("05/03/2002 11:00", 6.0, Calibration);
    add("05/03/2002 12:00", 5.0, Meal);
    add("05/03/2002 12:30", 5.2, Meal);
    add("05/03/2002 14:00", 8.2, MealPlus2);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.0\t08.2\t06.0\t3.2\t1.0");
}

TEST_F(DailyAnalysis, AGroupCutShortShowsZerosWithTimeAndDayOfTheOneBefore)
{
    addEveningAndMeal();
    build();
    EXPECT_EQ(lines().at(7), "05 Mar 2002 12:00\t00.0\t00.0\t00.0\t0.0\t0.0");
}

TEST_F(DailyAnalysis, AGroupWithoutAnyBaseHasNoTimeAndOpensNoDay)
{
    add("05/03/2002 14:00", 8.2, MealPlus2);
    add("05/03/2002 15:00", 6.4, MealPlus3);
    build();
    EXPECT_THAT(lines(), ElementsAre(kColumns, "\t00.0\t08.2\t06.4\t8.2\t6.4"));
}

TEST_F(DailyAnalysis, ACalibrationStandsInForAMissingMealPlusThree)
{
    add("04/03/2002 22:30", 7.5, PreBed);
    add("05/03/2002 12:00", 5.2, Meal);
    add("05/03/2002 14:00", 8.2, MealPlus2);
    add("05/03/2002 15:00", 6.4, Calibration);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, ACalibrationNeverReplacesAMealPlusThree)
{
    addEveningAndMeal();
    add("05/03/2002 13:00", 9.9, Calibration);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, ReadingsOfOtherTypesChangeNoLineOfAMeal)
{
    addEveningAndMeal();
    add("05/03/2002 13:00", 1.1, Exercise);
    add("05/03/2002 13:10", 1.2, Other);
    add("05/03/2002 13:20", 1.3, PreBed);
    add("05/03/2002 13:30", 1.4, Unclassified);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2");
}

TEST_F(DailyAnalysis, AReadingOfAnyTypeCanBeLastNights)
{
    for (const Type type :
         {Unclassified, GettingUp, Meal, MealPlus2, MealPlus3, PreBed, Calibration, Exercise, Other}) {
        ReportUnderTest report(buildDailyAnalysis);
        report.add("05/03/2002 11:00", 9.1, type);
        report.add("05/03/2002 12:00", 5.2, Meal);
        report.add("05/03/2002 14:00", 8.2, MealPlus2);
        report.add("05/03/2002 15:00", 6.4, MealPlus3);
        report.build();
        EXPECT_EQ(report.lines().at(4), "This morning - 5.2   Last night - 9.1   Drop = 3.9") << "type " << type;
    }
}

TEST_F(DailyAnalysis, ThisMorningIsTheLastReadingVisitedEvenIfItIsNoBase)
{
    add("04/03/2002 22:30", 7.5, PreBed);
    add("05/03/2002 11:00", 6.0, Calibration);
    add("05/03/2002 12:00", 5.2, Meal);
    add("05/03/2002 14:00", 8.2, MealPlus2);
    build();
    EXPECT_EQ(lines().at(4), "This morning - 6.0   Last night - 7.5   Drop = 1.5");
    EXPECT_EQ(lines().at(6), "05 Mar 2002 12:00\t05.2\t08.2\t06.0\t3.0\t0.8");
}

TEST_F(DailyAnalysis, AReadingOfZeroCountsAsMissing)
{
    add("04/03/2002 22:30", 7.5, PreBed);
    add("05/03/2002 07:00", 6.0, GettingUp);
    add("05/03/2002 07:30", 0, Meal);
    add("05/03/2002 09:30", 8.0, MealPlus2);
    add("05/03/2002 10:30", 7.0, MealPlus3);
    build();
    EXPECT_EQ(lines().at(6), "05 Mar 2002 07:00\t06.0\t08.0\t07.0\t2.0\t1.0");
}

TEST_F(DailyAnalysis, TheNameOfATypeIsComparedWithRegardToCase)
{
    addEveningAndMeal();
    data::Database database(diary_.path());
    data::Recordset types =
        database.openRecordset(QStringLiteral("Select * from BloodSugarReadingTypes where Type = 2"));
    types.edit();
    types.set(QStringLiteral("Text"), QStringLiteral("meal"));
    types.update();
    build();
    EXPECT_THAT(lines(), ElementsAre(kColumns, "\t00.0\t08.2\t06.4\t8.2\t6.4"));
}

TEST_F(DailyAnalysis, DaysComeFromTheLatestBackwardsAndSoDoTheirMeals)
{
    addEveningAndMeal();
    add("05/03/2002 18:00", 5.5, Meal);
    add("05/03/2002 20:00", 9.5, MealPlus2);
    add("05/03/2002 21:00", 7.0, MealPlus3);
    add("06/03/2002 12:00", 5.0, Meal);
    add("06/03/2002 14:00", 9.0, MealPlus2);
    add("06/03/2002 15:00", 6.0, MealPlus3);
    build();
    EXPECT_THAT(lines(), ElementsAre(kColumns,                                                 //
                                     "", "Wednesday 06 Mar 2002",                              //
                                     "", "This morning - 5.0   Last night - 7.0   Drop = 2.0", //
                                     "", "06 Mar 2002 12:00\t05.0\t09.0\t06.0\t4.0\t1.0",      //
                                     "", "Tuesday 05 Mar 2002",                                //
                                     "", "This morning - 5.5   Last night - 6.4   Drop = 0.9", //
                                     "", "05 Mar 2002 18:00\t05.5\t09.5\t07.0\t4.0\t1.5",      //
                                     "05 Mar 2002 12:00\t05.2\t08.2\t06.4\t3.0\t1.2",          //
                                     "05 Mar 2002 12:00\t00.0\t00.0\t00.0\t0.0\t0.0"));
}

TEST_F(DailyAnalysis, WithoutAReadingInTheFilterTheColumnsNamesStay)
{
    addEveningAndMeal();
    filter("06/03/2002", "07/03/2002");
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre(kColumns));
    EXPECT_THAT(hint(), HasSubstr("between the filter's dates"));
}

TEST_F(DailyAnalysis, WithoutAnyReadingTheColumnsNamesStay)
{
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre(kColumns));
    EXPECT_THAT(hint(), HasSubstr("no blood sugar reading yet"));
}

TEST_F(DailyAnalysis, EndsWithinTheHeadingOfADayWithoutANightBeforeIt)
{
    add("05/03/2002 12:00", 5.2, Meal);
    add("05/03/2002 14:00", 8.2, MealPlus2);
    add("05/03/2002 15:00", 6.4, MealPlus3);
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre(kColumns, "", "Tuesday 05 Mar 2002", ""));
    EXPECT_THAT(hint(), StartsWith("There is no reading before the first meal of the period"));
    EXPECT_THAT(hint(), HasSubstr("\"Last night\""));
    EXPECT_THAT(hint(), HasSubstr("add one from before that meal"));
}

TEST_F(DailyAnalysis, WhereTheFirstMealLacksAReadingThatReadingIsAskedFor)
{
    add("05/03/2002 07:00", 6.1, GettingUp);
    add("05/03/2002 08:00", 5.2, Meal);
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(hint(), StartsWith("The first meal of the period lacks a reading"));
    EXPECT_THAT(hint(), HasSubstr("add the missing reading"));
    filter("05/03/2002", "06/03/2002");
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(hint(), HasSubstr("earlier From date"));
}

TEST_F(DailyAnalysis, WhereTheFilterHidesTheNightAnEarlierDateIsAdvised)
{
    addEveningAndMeal();
    filter("05/03/2002", "06/03/2002");
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre(kColumns, "", "Tuesday 05 Mar 2002", ""));
    EXPECT_THAT(hint(), HasSubstr("earlier From date"));
}

TEST_F(DailyAnalysis, AReadingWithoutALevelEndsTheReport)
{
    addEveningAndMeal();
    addReadingWithoutLevel("05/03/2002 13:00");
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_THAT(lines(), ElementsAre(kColumns));
}

TEST_F(DailyAnalysis, ClearsWhatTheListHeldBefore)
{
    addEveningAndMeal();
    build();
    const std::vector<std::string> once = lines();
    build();
    EXPECT_EQ(lines(), once) << "nothing is kept between runs";
}

TEST_F(DailyAnalysis, AllLinesArePlain)
{
    addEveningAndMeal();
    build();
    for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
        EXPECT_EQ(state_.lstView.at(line).style, Plain) << "line " << line;
    }
}

TEST_F(DailyAnalysis, SetsTabStopsPrintPositionsAndHeading)
{
    addEveningAndMeal();
    build();
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({80, 115, 150, 185, 220}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({1000, 3000, 4000, 5000, 6000, 7000}));
    EXPECT_EQ(state_.ReportTitle.toStdString(), "Daily Blood Sugar Analysis\r\n" + diary_.path().toStdString() +
                                                    "\r\nPrinted - Tuesday 05 March 2002 08:05\r\n\r\n");
}

TEST_F(DailyAnalysis, WithoutAFileTheListStaysAsItWas)
{
    state_.lstView.addItem(QStringLiteral("an older report"));
    state_.strPath = QStringLiteral("/no/such/Nutrition.mdb");
    EXPECT_EQ(errorOfBuild(), 3024);
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_THAT(state_.ReportTitle.toStdString(), HasSubstr("/no/such/Nutrition.mdb")) << "it is set first";
    EXPECT_TRUE(state_.PrintTabs.isEmpty());
}

} // namespace
} // namespace reports
