#include "reports/all_reports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace reports {
namespace {

TEST(AllReports, FindsEachReportByItsName)
{
    for (const Report& report : allReports()) {
        EXPECT_EQ(findReport(report.name), &report);
        EXPECT_FALSE(report.title.isEmpty());
        EXPECT_NE(report.build, nullptr);
    }
}

TEST(AllReports, HasTheReportsInTheOrderOfTheMenu)
{
    std::vector<std::string> reports;
    for (const Report& report : allReports()) {
        reports.push_back((report.name + QStringLiteral(": ") + report.title).toStdString());
    }
    EXPECT_THAT(reports,
                testing::ElementsAre("basic: Basic Blood Sugar Data", "daily: Daily Analysis",
                                     "diary: Overall Diary - Inc Meal", "diary-summary: Overall Diary - Summary",
                                     "insulin: Insulin Diary", "stats: Stats"));
}

TEST(AllReports, KnowsNoOtherName)
{
    EXPECT_EQ(findReport(QStringLiteral("Basic")), nullptr) << "case counts";
    EXPECT_EQ(findReport(QString()), nullptr);
}

} // namespace
} // namespace reports
