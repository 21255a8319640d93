#include "runtime/calendar.h"
#include "runtime/clock.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace runtime {
namespace {

std::string shown(Date date)
{
    const DateParts parts = partsOf(date);
    std::string text;
    for (const int part : {parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second}) {
        text += (text.empty() ? "" : " ") + std::to_string(part);
    }
    return text;
}

// Day numbers counted with a spreadsheet's own calendar from 30 December 1899 on.
TEST(Calendar, CountsDaysFromTheThirtiethOfDecember1899)
{
    EXPECT_EQ(shown(Date{0}), "1899 12 30 0 0 0");
    EXPECT_EQ(shown(Date{2}), "1900 1 1 0 0 0");
    EXPECT_EQ(shown(Date{60}), "1900 2 28 0 0 0") << "1900 was no leap year";
    EXPECT_EQ(shown(Date{61}), "1900 3 1 0 0 0");
    EXPECT_EQ(shown(Date{36526}), "2000 1 1 0 0 0");
    EXPECT_EQ(shown(Date{37320.5}), "2002 3 5 12 0 0");
    EXPECT_EQ(shown(Date{-657434}), "100 1 1 0 0 0");
    EXPECT_EQ(shown(Date{2958465}), "9999 12 31 0 0 0");
}

TEST(Calendar, ANegativeDateTimeShowsTheSizeOfItsFraction)
{
    EXPECT_EQ(shown(Date{-0.25}), "1899 12 30 6 0 0");
    EXPECT_EQ(shown(Date{-1.25}), "1899 12 29 6 0 0");
    EXPECT_EQ(shown(Date{-2.0}), "1899 12 28 0 0 0");
}

TEST(Calendar, RoundsToTheNearestSecond)
{
    constexpr double kSecond = 1.0 / 86400;
    EXPECT_EQ(shown(Date{1 + 59.4 * kSecond}), "1899 12 31 0 0 59");
    EXPECT_EQ(shown(Date{1 + 59.6 * kSecond}), "1899 12 31 0 1 0");
}

TEST(Calendar, TheLastHalfSecondOfADayBelongsToTheNextDay)
{
    constexpr double kLate = (86399 + 0.7) / 86400;
    EXPECT_EQ(shown(Date{37320 + kLate}), "2002 3 6 0 0 0");
    EXPECT_EQ(shown(Date{-1 - kLate}), "1899 12 30 0 0 0");
    EXPECT_EQ(shown(Date{37314 + kLate}), "2002 2 28 0 0 0");
    EXPECT_EQ(shown(Date{37315 + kLate}), "2002 3 1 0 0 0");
}

TEST(Calendar, ADayOutsideTheYears100To9999IsAnOverflow)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double days : {-657435.0, 2958466.0, 2958465.99999999, 1e300, -1e300, kInfinity, -kInfinity,
                              std::numeric_limits<double>::quiet_NaN()}) {
        try {
            static_cast<void>(partsOf(Date{days}));
            ADD_FAILURE() << days << " has parts";
        } catch (const RunTimeError& error) {
            EXPECT_EQ(error.number(), 6);
        }
    }
}

TEST(Calendar, MakesDatesFromParts)
{
    EXPECT_EQ(dateFromParts({2002, 3, 5, 12, 0, 0}), Date{37320.5});
    EXPECT_EQ(dateFromParts({1899, 12, 29, 6, 0, 0}), Date{-1.25});
    EXPECT_EQ(dateFromParts({2000, 2, 29, 0, 0, 0}), Date{36585});
}

TEST(Calendar, RefusesPartsThatAreNoDate)
{
    for (const DateParts& parts :
         {DateParts{2002, 2, 29}, DateParts{1900, 2, 29}, DateParts{2002, 4, 31}, DateParts{2002, 13, 1},
          DateParts{2002, 0, 1}, DateParts{2002, 1, 0}, DateParts{99, 1, 1}, DateParts{10000, 1, 1},
          DateParts{2002, 1, 1, 24, 0, 0}, DateParts{2002, 1, 1, 0, 60, 0}, DateParts{2002, 1, 1, 0, 0, 60}}) {
        EXPECT_FALSE(dateFromParts(parts).has_value()) << parts.year << '-' << parts.month << '-' << parts.day;
    }
}

TEST(Calendar, EveryMinuteOfADaySurvivesTheWayThereAndBack)
{
    for (int minute = 0; minute < 24 * 60; ++minute) {
        const DateParts parts{2024, 2, 29, minute / 60, minute % 60, 0};
        const DateParts back = partsOf(dateFromParts(parts).value());
        ASSERT_EQ(back.day, 29);
        ASSERT_EQ(back.hour * 60 + back.minute, minute);
        ASSERT_EQ(back.second, 0);
    }
}

TEST(Clock, TodayIsMidnight)
{
    FixedClock clock(Date{37318.75});
    EXPECT_EQ(clock.today(), Date{37318});
    clock.set(Date{37319});
    EXPECT_EQ(clock.today(), Date{37319});
}

TEST(Clock, TheSystemsClockTellsAWholeSecondOfOurTimes)
{
    const Date now = SystemClock().now();
    EXPECT_GE(partsOf(now).year, 2024);
    EXPECT_EQ(dateFromParts(partsOf(now)), now);
}

} // namespace
} // namespace runtime
