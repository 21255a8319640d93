#include "reports/statistics.h"

#include "reports/report_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class Statistics : public testing::Test, protected ReportUnderTest
{
protected:
    Statistics() : ReportUnderTest(buildStatistics) {}

    /// Average 20 / 3 = 6.67; by time (7.0 x 2 h + 5.5 x 6 h) / 8 h = 5.875.
    void addThreeReadings()
    {
        add("05/03/2002 08:00", 5.0, Other);
        add("05/03/2002 10:00", 9.0, Other);
        add("05/03/2002 14:00", 6.0, Other);
    }
};

TEST_F(Statistics, ShowsTheFilterTheAverageAndTheAverageByTime)
{
    addThreeReadings();
    filter("05/03/2002", "06/03/2002");
    build();
    EXPECT_THAT(lines(),
                ElementsAre("Statistics for 05/03/2002 to 06/03/2002", "", "Average Blood Sugar Level = 6.7 Mmol", "",
                            "Time Wt Average Blood Sugar Level = 5.9 Mmol"));
}

TEST_F(Statistics, WithoutAFilterItsDatesAreEmpty)
{
    addThreeReadings();
    build();
    EXPECT_EQ(lines().at(0), "Statistics for  to ");
}

TEST_F(Statistics, ShowsWhatTheFieldsHoldAndReadsWhatIsInForce)
{
    addThreeReadings();
    add("09/03/2002 08:00", 33.3, Other);
    filter("05/03/2002", "06/03/2002");
    state_.fields = {QStringLiteral("01/01/2001"), QStringLiteral("soon")}; // typed and not applied
    build();
    EXPECT_EQ(lines().at(0), "Statistics for 01/01/2001 to soon");
    EXPECT_EQ(lines().at(2), "Average Blood Sugar Level = 6.7 Mmol");
}

TEST_F(Statistics, RunTwiceAppendsASecondBlock)
{
    addThreeReadings();
    state_.lstView.addItem(QStringLiteral("an older report"));
    build();
    build();
    ASSERT_THAT(lines(), SizeIs(11));
    EXPECT_EQ(lines().at(0), "an older report");
    for (std::size_t line = 1; line <= 5; ++line) {
        EXPECT_EQ(lines().at(line), lines().at(line + 5));
    }
}

TEST_F(Statistics, ReadingsOfEveryTypeEnterBothAverages)
{
    for (const Type type :
         {Unclassified, GettingUp, Meal, MealPlus2, MealPlus3, PreBed, Calibration, Exercise, Other}) {
        ReportUnderTest report(buildStatistics);
        report.add("05/03/2002 08:00", 5.0, Other);
        report.add("05/03/2002 10:00", 5.0, Other);
        report.add("05/03/2002 12:00", 8.6, type);
        report.build();
        // 18.6 / 3 = 6.2; (5.0 x 2 h + 6.8 x 4 h) / 6 h = 6.2. Without the third reading both are 5.0.
        EXPECT_EQ(report.lines().at(2), "Average Blood Sugar Level = 6.2 Mmol") << "type " << type;
        EXPECT_EQ(report.lines().at(4), "Time Wt Average Blood Sugar Level = 6.2 Mmol") << "type " << type;
    }
}

TEST_F(Statistics, EverySpanAndEveryValueIsMeasuredFromTheFirstReading)
{
    add("05/03/2002 08:00", 4.0, Other);
    add("05/03/2002 09:00", 16.0, Other);
    add("05/03/2002 12:00", 4.0, Other);
    build();
    // (10.0 x 1 h + 4.0 x 4 h) / 5 h = 5.2; trapezoids would give (10.0 x 1 h + 10.0 x 3 h) / 4 h = 10.0.
    EXPECT_EQ(lines().at(4), "Time Wt Average Blood Sugar Level = 5.2 Mmol");
}

TEST_F(Statistics, AReadingFarLaterThanAllOthersWeighsMost)
{
    add("01/03/2002 08:00", 4.0, Other);
    add("01/03/2002 10:00", 10.0, Other);
    add("31/03/2002 08:00", 6.0, Other);
    build();
    // (7.0 x 2 h + 5.0 x 720 h) / 722 h = 5.006
    EXPECT_EQ(lines().at(2), "Average Blood Sugar Level = 6.7 Mmol");
    EXPECT_EQ(lines().at(4), "Time Wt Average Blood Sugar Level = 5.0 Mmol");
}

TEST_F(Statistics, AnAverageOfZeroHasADigitBeforeThePoint)
{
    add("05/03/2002 08:00", 0, Other);
    add("05/03/2002 10:00", 0, Other);
    build();
    EXPECT_EQ(lines().at(2), "Average Blood Sugar Level = 0.0 Mmol");
}

TEST_F(Statistics, WithoutAReadingInTheFilterNoLineIsAdded)
{
    addThreeReadings();
    filter("06/03/2002", "07/03/2002");
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_THAT(hint(), HasSubstr("between the filter's dates"));
}

TEST_F(Statistics, WithoutAnyReadingNoLineIsAdded)
{
    state_.lstView.addItem(QStringLiteral("an older report"));
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_THAT(hint(), HasSubstr("no blood sugar reading yet"));
}

TEST_F(Statistics, ASingleReadingHasAPlainAverageAlone)
{
    add("05/03/2002 08:00", 5.0, Other);
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre("Statistics for  to ", "", "Average Blood Sugar Level = 5.0 Mmol"));
    EXPECT_THAT(hint(), HasSubstr("only one reading"));
}

TEST_F(Statistics, ReadingsOfOneMomentHaveAPlainAverageAlone)
{
    add("05/03/2002 08:00", 5.0, Other);
    add("05/03/2002 08:00", 8.0, Other);
    EXPECT_EQ(errorOfBuild(), 11);
    EXPECT_THAT(lines(), ElementsAre("Statistics for  to ", "", "Average Blood Sugar Level = 6.5 Mmol"));
    EXPECT_THAT(hint(), HasSubstr("of the same time"));
}

TEST_F(Statistics, AReadingWithoutALevelEndsItBeforeAnyLine)
{
    addThreeReadings();
    addReadingWithoutLevel("05/03/2002 15:00");
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(Statistics, LeavesHeadingTabStopsAndPrintPositionsAsTheyAre)
{
    addThreeReadings();
    state_.ReportTitle = QStringLiteral("an older report");
    state_.PrintTabs = {1, 2};
    state_.lstView.setTabStops({3, 4});
    build();
    EXPECT_EQ(state_.ReportTitle, QStringLiteral("an older report"));
    EXPECT_EQ(state_.PrintTabs, QList<double>({1, 2}));
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({3, 4}));
}

TEST_F(Statistics, AllLinesArePlain)
{
    addThreeReadings();
    build();
    for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
        EXPECT_EQ(state_.lstView.at(line).style, Plain) << "line " << line;
    }
}

TEST_F(Statistics, WithoutAFileNoLineIsAdded)
{
    state_.strPath = QStringLiteral("/no/such/Nutrition.mdb");
    EXPECT_EQ(errorOfBuild(), 3024);
    EXPECT_THAT(lines(), IsEmpty());
}

} // namespace
} // namespace reports
