#include "dialogs/calendar_month.h"

#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/locale_in_force.h"

#include <QDate>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace dialogs {
namespace {

using testing::ElementsAre;

const runtime::FixedClock kClock(runtime::toDate(QStringLiteral("21/03/2002 08:15")));

CalendarMonth monthOf(const char* date)
{
    return CalendarMonth(QString::fromLatin1(date), kClock);
}

/// Day, month and year that a month was made for.
std::string shown(const CalendarMonth& month)
{
    return std::to_string(month.day()) + "." + std::to_string(month.month()) + "." + std::to_string(month.year());
}

constexpr auto kPresent = "21.3.2002";

/// A row of days, blank cells as dots.
std::string week(const CalendarMonth& month, int row)
{
    std::string text;
    for (int column = 0; column < CalendarMonth::kDaysAWeek; ++column) {
        const int day = month.dayAt({row, column});
        text += (text.empty() ? "" : " ") + (day == 0 ? "." : std::to_string(day));
    }
    return text;
}

std::vector<std::string> weeks(const CalendarMonth& month)
{
    std::vector<std::string> rows;
    for (int row = 1; row <= CalendarMonth::kWeeks; ++row) {
        rows.push_back(week(month, row));
    }
    return rows;
}

/// Fills a grid day by day, as a person does, and compares.
void expectAsCounted(const CalendarMonth& month, const QDate& first)
{
    EXPECT_EQ(month.firstWeekday(), first.dayOfWeek() % 7 + 1) << "Qt counts from Monday = 1 to Sunday = 7";
    EXPECT_EQ(month.daysInMonth(), first.daysInMonth());
    std::vector<std::vector<int>> grid(7, std::vector<int>(7, 0));
    std::size_t row = 1;
    std::size_t column = static_cast<std::size_t>(first.dayOfWeek() % 7);
    for (int day = 1; day <= first.daysInMonth(); ++day) {
        grid.at(row).at(column) = day;
        EXPECT_EQ(month.cellOf(day), (Cell{static_cast<int>(row), static_cast<int>(column)}));
        column = (column + 1) % 7;
        if (column == 0) {
            ++row;
        }
    }
    for (int cellRow = 0; cellRow < 7; ++cellRow) {
        for (int cellColumn = 0; cellColumn < 7; ++cellColumn) {
            EXPECT_EQ(month.dayAt({cellRow, cellColumn}),
                      grid.at(static_cast<std::size_t>(cellRow)).at(static_cast<std::size_t>(cellColumn)));
        }
    }
}

void expectYearsAsCounted(int firstYear, int lastYear)
{
    for (QDate first(firstYear, 1, 1); first.year() <= lastYear; first = first.addMonths(1)) {
        SCOPED_TRACE(first.toString(Qt::ISODate).toStdString());
        const CalendarMonth month(first.toString(QStringLiteral("dd/MM/yyyy")), kClock);
        EXPECT_EQ(month.year(), first.year());
        EXPECT_EQ(month.month(), first.month());
        EXPECT_EQ(month.day(), 1);
        expectAsCounted(month, first);
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

TEST(CalendarMonth, EachMonthOfTwoCenturiesIsAsCountedByHand)
{
    expectYearsAsCounted(1900, 2100);
}

TEST(CalendarMonth, SoAreTheMonthsOfTheFirstAndTheLastYears)
{
    expectYearsAsCounted(100, 104);
    expectYearsAsCounted(9996, 9999);
}

TEST(CalendarMonth, AMonthStartingOnSundayFillsRowOneFromColumnZero)
{
    EXPECT_EQ(monthOf("15/09/2002").firstWeekday(), 1);
    EXPECT_THAT(weeks(monthOf("15/09/2002")), ElementsAre("1 2 3 4 5 6 7", "8 9 10 11 12 13 14", "15 16 17 18 19 20 21",
                                                          "22 23 24 25 26 27 28", "29 30 . . . . .", ". . . . . . ."));
}

TEST(CalendarMonth, AMonthStartingOnSaturdayHasDayOneInColumnSixAndDayTwoInTheNextRow)
{
    EXPECT_EQ(monthOf("15/06/2002").firstWeekday(), 7);
    EXPECT_EQ(week(monthOf("15/06/2002"), 1), ". . . . . . 1");
    EXPECT_EQ(week(monthOf("15/06/2002"), 2), "2 3 4 5 6 7 8");
}

TEST(CalendarMonth, AMonthOf31DaysStartingOnFridayOrSaturdayUsesAllSixRows)
{
    EXPECT_EQ(week(monthOf("01/03/2002"), 1), ". . . . . 1 2");
    EXPECT_EQ(week(monthOf("01/03/2002"), 6), "31 . . . . . .");
    EXPECT_EQ(week(monthOf("01/12/2001"), 1), ". . . . . . 1");
    EXPECT_EQ(week(monthOf("01/12/2001"), 6), "30 31 . . . . .");
}

TEST(CalendarMonth, FebruaryHas29DaysInALeapYearAnd28InOthers)
{
    EXPECT_EQ(monthOf("01/02/2000").daysInMonth(), 29);
    EXPECT_EQ(monthOf("01/02/2004").daysInMonth(), 29);
    EXPECT_EQ(monthOf("01/02/1900").daysInMonth(), 28);
    EXPECT_EQ(monthOf("01/02/2002").daysInMonth(), 28);
    EXPECT_EQ(monthOf("01/02/2100").daysInMonth(), 28);
}

TEST(CalendarMonth, OpensOnADateAsTyped)
{
    EXPECT_EQ(shown(monthOf("05/04/2001")), "5.4.2001") << "day first";
    EXPECT_EQ(shown(monthOf("5 apr 2001")), "5.4.2001");
    EXPECT_EQ(shown(monthOf("2001-04-05 13:30")), "5.4.2001");
}

TEST(CalendarMonth, ATextThatIsNoDateMeansThePresentDate)
{
    for (const char* text : {"", " ", "soon", "31/02/2002", "03/13/2002", "0/1/2002", "01/01/10000"}) {
        EXPECT_EQ(shown(monthOf(text)), kPresent) << text;
    }
}

TEST(CalendarMonth, ATimeAloneIsATimeOfDayZero)
{
    EXPECT_EQ(shown(monthOf("08:15")), "30.12.1899");
}

TEST(CalendarMonth, KeepsTheDayInAnotherMonthOrYear)
{
    const CalendarMonth month = monthOf("30/04/2001");
    EXPECT_EQ(shown(month.inMonth(12, kClock)), "30.12.2001");
    EXPECT_EQ(shown(month.inMonth(12, kClock).inMonth(1, kClock)), "30.1.2001") << "the year stays";
    EXPECT_EQ(shown(month.inYear(2000, kClock)), "30.4.2000");
    EXPECT_EQ(shown(month.inYear(2002, kClock)), "30.4.2002");
    EXPECT_EQ(shown(monthOf("29/02/2000").inYear(2004, kClock)), "29.2.2004");
}

TEST(CalendarMonth, AMonthWithoutThatDayGivesWayToThePresentDate)
{
    EXPECT_EQ(shown(monthOf("31/01/2001").inMonth(2, kClock)), kPresent);
    EXPECT_EQ(shown(monthOf("31/01/2001").inMonth(4, kClock)), kPresent);
    EXPECT_EQ(shown(monthOf("31/01/2001").inMonth(2, kClock).inMonth(4, kClock)), "21.4.2002")
        << "the present day is then the one that is kept";
}

TEST(CalendarMonth, AYearWithoutThe29thOfFebruaryGivesWayToThePresentDate)
{
    EXPECT_EQ(shown(monthOf("29/02/2000").inYear(1999, kClock)), kPresent);
    EXPECT_EQ(shown(monthOf("29/02/2000").inYear(2001, kClock)), kPresent);
}

TEST(CalendarMonth, BeyondTheFirstAndTheLastYearComesThePresentDate)
{
    EXPECT_EQ(shown(monthOf("15/06/0101").inYear(100, kClock)), "15.6.100");
    EXPECT_EQ(shown(monthOf("15/06/0100").inYear(99, kClock)), kPresent);
    EXPECT_EQ(shown(monthOf("15/06/9998").inYear(9999, kClock)), "15.6.9999");
    EXPECT_EQ(shown(monthOf("15/06/9999").inYear(10000, kClock)), kPresent);
}

TEST(CalendarMonth, KnowsItsDayOfADate)
{
    const CalendarMonth month = monthOf("05/03/2002");
    const auto dayOf = [&](const char* date) { return month.dayOf(runtime::toDate(QString::fromLatin1(date))); };
    EXPECT_EQ(dayOf("21/03/2002 23:59:59"), 21);
    EXPECT_EQ(dayOf("21/04/2002"), 0);
    EXPECT_EQ(dayOf("21/03/2003"), 0);
}

TEST(CalendarMonth, WritesADateWithoutLeadingZeros)
{
    EXPECT_EQ(monthOf("15/03/2002").dateText(5).toStdString(), "5/3/2002");
    EXPECT_EQ(monthOf("15/12/2002").dateText(31).toStdString(), "31/12/2002");
}

TEST(CalendarMonth, ADateOfAnEarlyYearReadsBackAsThatDate)
{
    EXPECT_EQ(shown(CalendarMonth(monthOf("05/03/0250").dateText(6), kClock)), "6.3.250");
    EXPECT_EQ(shown(CalendarMonth(monthOf("05/03/0100").dateText(6), kClock)), "6.3.100");
}

TEST(CalendarMonth, IsCalledByItsMonthInTheLocaleInForce)
{
    EXPECT_EQ(monthOf("05/03/2002").caption().toStdString(), "March 2002");
    const LocaleInForce german(QLocale::German, QLocale::Germany);
    EXPECT_EQ(monthOf("05/03/2002").caption().toStdString(), "März 2002");
}

} // namespace
} // namespace dialogs
