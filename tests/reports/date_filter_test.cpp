#include "reports/date_filter.h"

#include "runtime/calendar.h"

#include <gtest/gtest.h>

namespace reports {
namespace {

DateFilter filterOn(const runtime::DateParts& now)
{
    const runtime::FixedClock clock(runtime::dateFromParts(now).value());
    return filterAtStart(clock);
}

TEST(DateFilter, OnTheThirdOfMarchItGoesFromTheFirstToTheFourth)
{
    const DateFilter filter = filterOn({2026, 3, 3, 14, 30, 0});
    EXPECT_EQ(filter.from, QStringLiteral("01/03/2026"));
    EXPECT_EQ(filter.to, QStringLiteral("04/03/2026"));
}

TEST(DateFilter, CrossesTheEndsOfMonthsAndYears)
{
    EXPECT_EQ(filterOn({2024, 3, 1}).from, QStringLiteral("28/02/2024"));
    EXPECT_EQ(filterOn({2024, 2, 28, 23, 59, 59}).to, QStringLiteral("29/02/2024"));
    EXPECT_EQ(filterOn({2026, 1, 1}).from, QStringLiteral("30/12/2025"));
    EXPECT_EQ(filterOn({2025, 12, 31}).to, QStringLiteral("01/01/2026"));
}

TEST(DateFilter, OfAClockAtTheEndOfTheCalendarEndsThereToo)
{
    EXPECT_EQ(filterOn({9999, 12, 31, 23, 59, 59}).from, QStringLiteral("29/12/9999"));
    EXPECT_EQ(filterOn({9999, 12, 31, 23, 59, 59}).to, QStringLiteral("31/12/9999"));
    EXPECT_EQ(filterOn({100, 1, 1, 0, 0, 1}).from, QStringLiteral("01/01/0100"));
    EXPECT_EQ(filterOn({100, 1, 1, 0, 0, 1}).to, QStringLiteral("02/01/0100"));
}

TEST(DateFilter, TheClauseHoldsBothTextsAsTyped)
{
    const DateFilter filter{QStringLiteral("1/3/2026"), QStringLiteral("04/Mar/2026 12:00")};
    EXPECT_EQ(filter.strWhere().toStdString(), "where When > Cdate('1/3/2026') and When < Cdate('04/Mar/2026 12:00')");
}

TEST(DateFilter, IsCompleteWithBothDates)
{
    const QString day = QStringLiteral("01/03/2026");
    EXPECT_TRUE((DateFilter{day, day}).isComplete());
    EXPECT_FALSE((DateFilter{day, {}}).isComplete());
    EXPECT_FALSE((DateFilter{{}, day}).isComplete());
}

TEST(DateFilter, AReportOpensTheQueryByNameWhenThereIsNoFilter)
{
    EXPECT_EQ(filteredSource(QStringLiteral("ExcelHistory"), {}).toStdString(), "ExcelHistory");
    EXPECT_EQ(
        filteredSource(QStringLiteral("ExcelHistory"), QStringLiteral("where When > Cdate('1/3/2026')")).toStdString(),
        "Select * from ExcelHistory where When > Cdate('1/3/2026')");
}

} // namespace
} // namespace reports
