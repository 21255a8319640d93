#include "cli/quillonctl.h"
#include "support/diary_content.h"
#include "support/test_diary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ReportCommand : public testing::Test
{
protected:
    Outcome report(const char* names, const char* options = "", const char* locale = "C.UTF-8") const
    {
        return quillonctl(QStringList{QStringLiteral("report"), diary_.path(), QString::fromLatin1(names)} +
                              QString::fromLatin1(options).split(u' ', Qt::SkipEmptyParts),
                          {QString::fromLatin1(locale), {}});
    }

    void addThreeReadings()
    {
        diary_.addReading(QStringLiteral("05/03/2002 07:15"), 3.9, 1);
        diary_.addReading(QStringLiteral("06/03/2002 12:30"), 8, 2, QStringLiteral("soup"));
        diary_.addReading(QStringLiteral("07/03/2002 18:00"), 12.25, 2);
    }

    TestDiary diary_;
};

constexpr const char* kHeading = "Mmol\tWhen\tType\tComment";

TEST_F(ReportCommand, WritesTheListsLinesWithTheirTabs)
{
    addThreeReadings();
    const Outcome outcome = report("basic");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(linesOf(outcome.out),
                ElementsAre(kHeading, "", "03.9\t05/03/2002 07:15:00\tGetting Up\t",
                            "08.0\t06/03/2002 12:30:00\tMeal\tsoup", "12.3\t07/03/2002 18:00:00\tMeal\t"));
}

TEST_F(ReportCommand, StylesStandBeforeTheLines)
{
    addThreeReadings();
    EXPECT_THAT(linesOf(report("basic", "--styles").out),
                ElementsAre("1\tMmol\tWhen\tType\tComment", "0\t", StartsWith("4\t03.9"), StartsWith("8\t08.0"),
                            StartsWith("16\t12.3")));
}

TEST_F(ReportCommand, FromAndToFilterStrictly)
{
    addThreeReadings();
    EXPECT_THAT(linesOf(report("basic", "--from 06/03/2002 --to 07/03/2002").out),
                ElementsAre(kHeading, "", StartsWith("08.0")));
    EXPECT_THAT(linesOf(report("basic", "--from 5/Mar/2002 --to 08/03/2002").out),
                ElementsAre(kHeading, "", StartsWith("03.9"), StartsWith("08.0"), StartsWith("12.3")));
}

TEST_F(ReportCommand, ARunTimeErrorKeepsTheLinesBeforeIt)
{
    const Outcome outcome = report("basic");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(linesOf(outcome.out), ElementsAre(kHeading, ""));
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '3021': No current record."));
}

TEST_F(ReportCommand, SeveralReportsRunInOneWindow)
{
    addThreeReadings();
    EXPECT_EQ(linesOf(report("basic,basic").out).size(), 5U) << "the basic report clears the list first";
}

TEST_F(ReportCommand, StatisticsStandBelowTheReportBeforeAndNameTheDates)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5, 1);
    diary_.addReading(QStringLiteral("06/03/2002 07:15"), 7, 1);
    const std::vector<std::string> lines = linesOf(report("basic,stats", "--from 05/03/2002 --to 07/03/2002").out);
    ASSERT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines.at(4), "Statistics for 05/03/2002 to 07/03/2002");
    EXPECT_EQ(lines.at(6), "Average Blood Sugar Level = 6.0 Mmol");
    EXPECT_EQ(linesOf(report("stats").out).at(0), "Statistics for  to ") << "without a filter";
}

TEST_F(ReportCommand, SeveralDiariesShareTheSumsOfTheDay)
{
    reports::addFood(diary_.path(), 1, {QStringLiteral("BREAD"), 250, 50, 4, 8});
    reports::addMeal(diary_.path(), {QStringLiteral("05/03/2002 08:00"), 1, 5, {{1, 100}}});
    diary_.addReading(QStringLiteral("05/03/2002 07:45"), 5, 2);
    diary_.addReading(QStringLiteral("05/03/2002 10:00"), 7, 3);
    EXPECT_THAT(linesOf(report("diary-summary").out), Contains("\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0"));
    EXPECT_THAT(linesOf(report("insulin,diary-summary").out),
                Contains("\tDay Total kCal/gms/gms/gms\t500.0\t100.0\t8.0\t16.0"))
        << "the insulin diary leaves its meals to the next day that is closed";
}

TEST_F(ReportCommand, AFailedReportEndsTheRunUnlessItKeepsGoing)
{
    const auto errorsOf = [](const Outcome& outcome) { return linesOf(outcome.err).size(); };
    const Outcome stopped = report("basic,basic,basic");
    EXPECT_EQ(stopped.status, 1);
    EXPECT_EQ(errorsOf(stopped), 1U);
    const Outcome keptGoing = report("basic,basic,basic", "--keep-going");
    EXPECT_EQ(keptGoing.status, 1);
    EXPECT_EQ(errorsOf(keptGoing), 3U);
    EXPECT_THAT(linesOf(keptGoing.out), ElementsAre(kHeading, ""));
}

TEST_F(ReportCommand, ShowsNumbersAsTheWindowDoesInTheLocaleInForce)
{
    addThreeReadings();
    EXPECT_THAT(linesOf(report("basic", "", "de_DE.UTF-8").out).at(2), StartsWith("03,9\t05/03/2002 07:15:00"));
}

} // namespace
