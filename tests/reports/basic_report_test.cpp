#include "reports/basic_report.h"

#include "data/database.h"
#include "reports/date_filter.h"
#include "runtime/calendar.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace reports {
namespace {

using testing::ElementsAre;

class BasicReport : public testing::Test
{
protected:
    BasicReport()
    {
        QLocale::setDefault(QLocale::c());
        state_.strPath = diary_.path();
    }

    void build() { buildBasicReport(state_); }

    /// The number of the error that the report ends with.
    int errorOfBuild(QString* hint = nullptr)
    {
        const auto error = errorOf([this] { build(); });
        if (error && hint != nullptr) {
            *hint = error->hint();
        }
        return error ? error->number() : 0;
    }

    std::vector<std::string> lines() const
    {
        std::vector<std::string> lines;
        for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
            lines.push_back(state_.lstView.at(line).text.toStdString());
        }
        return lines;
    }

    std::vector<int> styles() const
    {
        std::vector<int> styles;
        for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
            styles.push_back(state_.lstView.at(line).style);
        }
        return styles;
    }

    void filter(const QString& from, const QString& to) { state_.strWhere = DateFilter{from, to}.strWhere(); }

    TestDiary diary_;
    runtime::FixedClock clock_{runtime::dateFromParts({2002, 3, 5, 8, 5, 59}).value()};
    ReportState state_{clock_};
};

constexpr const char* kHeading = "Mmol\tWhen\tType\tComment";

TEST_F(BasicReport, ListsEveryReadingUnderTheColumnsNames)
{
    diary_.addReading(QStringLiteral("05/03/2002 12:30"), 12.25, 2, QStringLiteral("after a walk"));
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5.6, 1);
    build();
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "05.6\t05/03/2002 07:15:00\tGetting Up\t",
                                     "12.3\t05/03/2002 12:30:00\tMeal\tafter a walk"));
}

TEST_F(BasicReport, TheHeadingIsBoldAndTheSpacerPlain)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5.6, 1);
    build();
    EXPECT_EQ(state_.lstView.at(0).style, Bold);
    EXPECT_EQ(state_.lstView.at(1).style, Plain);
}

TEST_F(BasicReport, AReadingBelowFourIsRed)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 3.9, 1);
    diary_.addReading(QStringLiteral("05/03/2002 08:00"), 3.9999999, 1);
    build();
    EXPECT_THAT(styles(), ElementsAre(1, 0, 4, 4)) << "also one that shows as 04.0";
}

TEST_F(BasicReport, AReadingOfExactlyFourIsBlue)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 4.0, 1);
    build();
    EXPECT_THAT(styles(), ElementsAre(1, 0, 8));
}

TEST_F(BasicReport, AReadingOfExactlyEightIsBlue)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 8.0, 1);
    build();
    EXPECT_THAT(styles(), ElementsAre(1, 0, 8));
}

TEST_F(BasicReport, AReadingAboveEightIsGreen)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 8.1, 1);
    build();
    EXPECT_THAT(styles(), ElementsAre(1, 0, 16));
}

TEST_F(BasicReport, FivePointSixShowsWithTwoDigitsBeforeThePoint)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    build();
    EXPECT_EQ(lines().at(2).substr(0, 5), "05.6\t");
}

TEST_F(BasicReport, ANullCommentShowsAsAnEmptyColumn)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1, runtime::Null{});
    build();
    EXPECT_EQ(lines().at(2), "05.6\t05/03/2002 07:00:00\tGetting Up\t");
}

TEST_F(BasicReport, AnImportedReadingIsUnclassified)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 0);
    build();
    EXPECT_EQ(lines().at(2), "05.6\t05/03/2002 07:00:00\tUnclassified\t");
}

TEST_F(BasicReport, AReadingAtMidnightShowsItsDateAlone)
{
    diary_.addReading(QStringLiteral("05/03/2002"), 5.6, 5);
    build();
    EXPECT_EQ(lines().at(2), "05.6\t05/03/2002\tPre Bed\t");
}

TEST_F(BasicReport, WithAFilterItListsOnlyReadingsStrictlyInside)
{
    diary_.addReading(QStringLiteral("04/03/2002 23:59:59"), 4.1, 5);
    diary_.addReading(QStringLiteral("05/03/2002 00:00"), 4.2, 5);
    diary_.addReading(QStringLiteral("05/03/2002 00:00:01"), 4.3, 5);
    diary_.addReading(QStringLiteral("06/03/2002 23:59:59"), 4.4, 5);
    diary_.addReading(QStringLiteral("07/03/2002 00:00"), 4.5, 5);
    diary_.addReading(QStringLiteral("07/03/2002 08:00"), 4.6, 5);
    filter(QStringLiteral("05/03/2002"), QStringLiteral("07/03/2002"));
    build();
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "04.3\t05/03/2002 00:00:01\tPre Bed\t",
                                     "04.4\t06/03/2002 23:59:59\tPre Bed\t"));
}

TEST_F(BasicReport, AFilterWithATimeReachesIntoItsLastDay)
{
    diary_.addReading(QStringLiteral("07/03/2002 11:59"), 4.5, 5);
    diary_.addReading(QStringLiteral("07/03/2002 12:00"), 4.6, 5);
    filter(QStringLiteral("05/03/2002"), QStringLiteral("07/03/2002 12:00"));
    build();
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "04.5\t07/03/2002 11:59:00\tPre Bed\t"));
}

TEST_F(BasicReport, WithoutAFilterItListsTheWholeHistoryInTheOrderOfTime)
{
    for (int day = 28; day > 0; --day) {
        diary_.addReading(QStringLiteral("%1/02/2002 07:00").arg(day), 5 + day * 0.1, 1);
    }
    build();
    const std::vector<std::string> all = lines();
    ASSERT_EQ(all.size(), 30U);
    EXPECT_EQ(all.at(2), "05.1\t01/02/2002 07:00:00\tGetting Up\t");
    EXPECT_EQ(all.at(29), "07.8\t28/02/2002 07:00:00\tGetting Up\t");
}

TEST_F(BasicReport, ReadingsOfTheSameTimeKeepTheOrderOfEntry)
{
    for (const double mmol : {5.3, 5.1, 5.2}) {
        diary_.addReading(QStringLiteral("05/03/2002 07:00"), mmol, 1);
    }
    build();
    EXPECT_EQ(lines().at(2).substr(0, 4) + lines().at(3).substr(0, 4) + lines().at(4).substr(0, 4), "05.305.105.2");
}

TEST_F(BasicReport, WithoutAReadingInTheFilterHeadingAndSpacerStay)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    filter(QStringLiteral("06/03/2002"), QStringLiteral("07/03/2002"));
    QString hint;
    EXPECT_EQ(errorOfBuild(&hint), 3021);
    EXPECT_THAT(lines(), ElementsAre(kHeading, ""));
    EXPECT_THAT(hint.toStdString(), testing::HasSubstr("between the filter's dates"));
}

TEST_F(BasicReport, WithoutAnyReadingHeadingAndSpacerStay)
{
    QString hint;
    EXPECT_EQ(errorOfBuild(&hint), 3021);
    EXPECT_THAT(lines(), ElementsAre(kHeading, ""));
    EXPECT_THAT(hint.toStdString(), testing::HasSubstr("no blood sugar reading yet"));
}

TEST_F(BasicReport, AToDateBeforeTheFromDateYieldsNothing)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    filter(QStringLiteral("07/03/2002"), QStringLiteral("03/03/2002"));
    EXPECT_EQ(errorOfBuild(), 3021);
}

TEST_F(BasicReport, ClearsWhatTheListHeldBefore)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    state_.lstView.addItem(QStringLiteral("an older report"));
    build();
    build();
    EXPECT_EQ(state_.lstView.size(), 3);
}

TEST_F(BasicReport, SetsTabStopsPrintPositionsAndHeading)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    build();
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({30, 110, 160}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({1000, 2000, 4000, 5500, 6500, 7500}));
    EXPECT_EQ(state_.ReportTitle.toStdString(), "All Blood Sugar Readings\r\n" + diary_.path().toStdString() +
                                                    "\r\nPrinted - Tuesday 05 March 2002 08:05\r\n\r\n");
}

TEST_F(BasicReport, WithoutAFileTheListStaysAsItWas)
{
    state_.lstView.addItem(QStringLiteral("an older report"));
    state_.strPath = QStringLiteral("/no/such/Nutrition.mdb");
    EXPECT_EQ(errorOfBuild(), 3024);
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_THAT(state_.ReportTitle.toStdString(), testing::HasSubstr("/no/such/Nutrition.mdb")) << "it is set first";
}

TEST_F(BasicReport, ALevelThatIsNullEndsTheReportAtItsLine)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    data::Database database(diary_.path());
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    readings.addNew();
    readings.set(QStringLiteral("ReadingTime"), runtime::toDate(QStringLiteral("05/03/2002 08:00")));
    readings.set(QStringLiteral("ReadingType"), qint32{1});
    readings.update();
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_EQ(state_.lstView.size(), 3) << "the lines before it stay";
}

TEST_F(BasicReport, ShowsTheDecimalSignOfTheUsersLocale)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:00"), 5.6, 1);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    filter(QStringLiteral("04/03/2002"), QStringLiteral("06/M\u00e4rz/2002"));
    build();
    EXPECT_EQ(lines().at(2), "05,6\t05/03/2002 07:00:00\tGetting Up\t");
    EXPECT_THAT(state_.ReportTitle.toStdString(), testing::HasSubstr("Dienstag 05 M\u00e4rz 2002 08:05"));
}

} // namespace
} // namespace reports
