// The list as a diary leaves it, and the sums that outlive it.
#include "reports/diary_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(OverallDiary, SetsTabStopsAndPrintPositionsAndNoHeading)
{
    addBreakfast();
    state_.ReportTitle = QStringLiteral("of the report before");
    build();
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({40, 210, 240, 270, 300, 330}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({500, 2000, 6000, 7000, 8000, 9000, 10000}));
    EXPECT_EQ(state_.ReportTitle, QStringLiteral("of the report before"));
}

TEST_F(OverallDiary, WithoutAMealInTheFilterOnlyTabStopsAndPrintPositionsChange)
{
    addBreakfast();
    filter("06/03/2002", "07/03/2002");
    state_.lstView.addItem(QStringLiteral("an older report"));
    build();
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({40, 210, 240, 270, 300, 330}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({500, 2000, 6000, 7000, 8000, 9000, 10000}));
    EXPECT_TRUE(state_.ReportTitle.isEmpty());
    EXPECT_TRUE(dayIsEmpty());
}

TEST_F(InsulinDiary, WithoutAMealInTheFilterTheListStaysAsItWas)
{
    addBreakfast();
    filter("06/03/2002", "07/03/2002");
    state_.lstView.addItem(QStringLiteral("an older report"));
    build();
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({40, 210, 240, 270, 300, 330}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({500, 2000, 6000, 7000, 8000, 9000, 10000}));
}

TEST_F(OverallDiary, AMealAtTheFiltersBoundsIsOutsideIt)
{
    addBreakfast();
    filter("05/03/2002 08:00", "06/03/2002");
    build();
    EXPECT_THAT(lines(), IsEmpty());
    filter("05/03/2002", "05/03/2002 08:00");
    build();
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(OverallDiary, RunTwiceShowsBothReportsOneBelowTheOther)
{
    addBreakfast();
    build();
    const std::vector<std::string> once = lines();
    build();
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(lines(), twice) << "also the day's sums, which began anew";
}

TEST_F(OverallDiary, ClosesEachDayAndBeginsItsSumsAnew)
{
    addBreakfast();
    eat("05/03/2002 19:00", Dinner, 4, {{Bread, 100}});
    eat("06/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    build();
    EXPECT_EQ(stylesOf("\tDay Total kCal").size(), 2U);
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t500.0\t100.0\t8.0\t16.0"));
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0"));
    EXPECT_TRUE(dayIsEmpty());
}

TEST_F(InsulinDiary, LeavesItsMealsToTheNextOverallDiarysFirstDay)
{
    addBreakfast();
    build();
    build();
    EXPECT_DOUBLE_EQ(state_.dayTotals.energy, 500);
    EXPECT_DOUBLE_EQ(state_.dayTotals.carbohydrate, 100);
    EXPECT_DOUBLE_EQ(state_.dayTotals.fat, 8);
    EXPECT_DOUBLE_EQ(state_.dayTotals.protein, 16);
    DisplayDiary(state_, false);
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t750.0\t150.0\t12.0\t24.0"));
    EXPECT_TRUE(dayIsEmpty());
    DisplayDiary(state_, false);
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0"));
}

TEST_F(OverallDiary, OneThatFailsLeavesThePartOfItsDayToTheNext)
{
    addBreakfast();
    eat("05/03/2002 12:00", Snack, 0, {{Water, 200}});
    EXPECT_EQ(errorOfBuild(), 11);
    EXPECT_DOUBLE_EQ(state_.dayTotals.carbohydrate, 50) << "of the meal before";
    filter("05/03/2002", "05/03/2002 12:00");
    build();
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t500.0\t100.0\t8.0\t16.0"));
    EXPECT_TRUE(dayIsEmpty());
}

} // namespace
} // namespace reports
