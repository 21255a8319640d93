#include "reports/report_runner.h"

#include <gtest/gtest.h>

namespace reports {
namespace {

TEST(ReportRunner, FindsEachReportByItsName)
{
    for (const Report& report : allReports()) {
        EXPECT_EQ(findReport(report.name), &report);
        EXPECT_FALSE(report.title.isEmpty());
        EXPECT_NE(report.build, nullptr);
    }
    ASSERT_NE(findReport(QStringLiteral("basic")), nullptr);
}

TEST(ReportRunner, KnowsNoOtherName)
{
    EXPECT_EQ(findReport(QStringLiteral("Basic")), nullptr) << "case counts";
    EXPECT_EQ(findReport(QString()), nullptr);
}

} // namespace
} // namespace reports
