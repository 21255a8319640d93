#include "runtime/format.h"

#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <limits>

namespace runtime {
namespace {

std::string shown(const Value& value, const char* pattern)
{
    return format(value, QString::fromUtf8(pattern)).toStdString();
}

class Format : public testing::Test
{
private:
    LocaleInForce locale_{kBritish};
};

TEST_F(Format, NumbersThroughPatterns)
{
    const struct {
        double number;
        const char* pattern;
        const char* text;
    } kCases[] = {
        {5.6, "#0.0", "5.6"},
        {0, "#0.0", "0.0"},
        {0.04, "#0.0", "0.0"},
        {123.456, "#0.0", "123.5"},
        {5.6, "00.0", "05.6"},
        {12.3, "00.0", "12.3"},
        {5.2, "00.0", "05.2"},
        {12, "00.0", "12.0"},
        {0, "00.0", "00.0"},
        {-1.5, "00.0", "-01.5"},
        {123.4, "00.0", "123.4"},
        {9.96, "00.0", "10.0"},
        {1.005, "#0.00", "1.01"},
        {7, "#0.00", "7.00"},
        {0.456, "#0%", "46%"},
        {0, "#0%", "0%"},
        {1, "#0%", "100%"},
        {0.005, "#0%", "1%"},
        {0.0049, "#0%", "0%"},
        {-0.25, "#0%", "-25%"},
        {2.5, "0", "3"},
        {-2.5, "0", "-3"},
        {0.4, "0", "0"},
        {1234567, "0", "1234567"},
        {1234.5, "#,##0.00", "1,234.50"},
        {999.995, "#,##0.00", "1,000.00"},
        {-1234567, "#,##0.00", "-1,234,567.00"},
        {12, "#,##0.00", "12.00"},
        {0.5, "#.0", ".5"},
        {5.25, "0.0##", "5.25"},
        {5, "0.0##", "5.0"},
        {7, "000", "007"},
        {5.6, "#0.0 Mmol", "5.6 Mmol"},
        {1e21, "0", "1000000000000000000000"},
        {99.95, "#0.0", "100.0"},
        {0.95, "#0.0", "1.0"},
        {0.05, "#0.0", "0.1"},
    };
    for (const auto& expected : kCases) {
        EXPECT_EQ(shown(expected.number, expected.pattern), expected.text)
            << expected.number << ' ' << expected.pattern;
    }
}

TEST_F(Format, RoundsHalfAwayFromZeroOnFifteenDigits)
{
    EXPECT_EQ(shown(12.25, "#0.0"), "12.3");
    EXPECT_EQ(shown(12.35, "#0.0"), "12.4");
    EXPECT_EQ(shown(-12.25, "#0.0"), "-12.3");
    EXPECT_EQ(shown(2.675, "#0.00"), "2.68") << "stored as 2.67499999999999982";
    EXPECT_EQ(shown(0.285, "#0%"), "29%") << "times 100 it is 28.499999999999996";
    EXPECT_EQ(shown(8.2 - 5.2, "#0.0"), "3.0");
    EXPECT_EQ(shown(2.6749, "#0.00"), "2.67");
}

TEST_F(Format, WhatRoundsToZeroHasNoMinusSign)
{
    EXPECT_EQ(shown(-0.04, "#0.0"), "0.0");
    EXPECT_EQ(shown(-0.0, "#0.0"), "0.0");
    EXPECT_EQ(shown(5.2 - 5.2000000001, "00.0"), "00.0");
    EXPECT_EQ(shown(-0.05, "#0.0"), "-0.1");
    EXPECT_EQ(shown(-0.004, "#0%"), "0%");
}

TEST_F(Format, NumbersHaveTheDecimalSignOfTheLocale)
{
    const LocaleInForce german(kGerman);
    EXPECT_EQ(shown(5.6, "00.0"), "05,6");
    EXPECT_EQ(shown(1234.5, "#,##0.00"), "1.234,50");
}

TEST_F(Format, DatesThroughPatterns)
{
    const Date kTuesday{37320 + (8 * 60 + 5) / 1440.0 + 9 / 86400.0}; // Tuesday 5 March 2002, 08:05:09
    const struct {
        const char* pattern;
        const char* text;
    } kCases[] = {
        {"dd/mm/yyyy", "05/03/2002"},
        {"dd/mmm/yyyy", "05/Mar/2002"},
        {"dd mmm yyyy hh:mm", "05 Mar 2002 08:05"},
        {"dd mmm hh:mm", "05 Mar 08:05"},
        {"dddd dd mmm yyyy", "Tuesday 05 Mar 2002"},
        {"dddd dd mmmm yyyy hh:mm", "Tuesday 05 March 2002 08:05"},
        {"mmmm yyyy", "March 2002"},
        {"hh:mm", "08:05"},
        {"h:mm", "8:05"},
        {"hh:mm:ss", "08:05:09"},
        {"dd/mm/yyyy hh:mm:ss", "05/03/2002 08:05:09"},
        {"d/m/yy", "5/3/02"},
        {"ddd", "Tue"},
        {"h.n.s", "8.5.9"},
        {"hh:nn:ss", "08:05:09"},
        {"mm hh:mm mm", "03 08:05 03"},
        {"DD/MM/YYYY", "05/03/2002"},
    };
    for (const auto& expected : kCases) {
        EXPECT_EQ(shown(kTuesday, expected.pattern), expected.text);
    }
}

TEST_F(Format, TheTimeDropsTheSecondsAfterRoundingToTheSecond)
{
    EXPECT_EQ(shown(Date{37320 + 59.0 / 86400}, "hh:mm"), "00:00");
    EXPECT_EQ(shown(Date{37320 + 59.7 / 86400}, "hh:mm"), "00:01");
    EXPECT_EQ(shown(Date{37320 + 86399.7 / 86400}, "dd/mm/yyyy hh:mm"), "06/03/2002 00:00");
}

TEST_F(Format, ANegativeDifferenceShowsTheSizeOfItsTime)
{
    EXPECT_EQ(shown(Date{-2.25 / 24}, "h:mm"), "2:15");
    EXPECT_EQ(shown(-2.25 / 24, "h:mm"), "2:15") << "a plain number counts days as well";
    EXPECT_EQ(shown(Date{1 + 2.25 / 24}, "h:mm"), "2:15") << "of a day or more the time of day alone shows";
}

TEST_F(Format, NamesAreThoseOfTheLocale)
{
    const LocaleInForce german(kGerman);
    EXPECT_EQ(shown(Date{37320}, "dddd dd mmmm yyyy"), "Dienstag 05 M\u00e4rz 2002");
    EXPECT_EQ(shown(Date{37320}, "dd/mm/yyyy"), "05/03/2002") << "the separator stays";
}

TEST_F(Format, AMonthBesideItsDayTakesTheFormOfTheLanguage)
{
    const LocaleInForce polish(kPolish);
    EXPECT_EQ(shown(Date{37320}, "dd mmmm yyyy"), "05 marca 2002");
    EXPECT_EQ(shown(Date{37320}, "mmmm yyyy"), "marzec 2002");
}

TEST_F(Format, TextConvertsWhereItCanAndStaysWhereItCannot)
{
    EXPECT_EQ(shown(QStringLiteral("5.25"), "#0.0"), "5.3");
    EXPECT_EQ(shown(QStringLiteral("5/3/2002"), "dd mmm yyyy"), "05 Mar 2002");
    EXPECT_EQ(shown(QStringLiteral("Total"), "#0.0"), "Total");
    EXPECT_EQ(shown(QStringLiteral("soon"), "dd mmm yyyy"), "soon");
}

TEST_F(Format, OtherValues)
{
    EXPECT_EQ(shown(Null{}, "#0.0"), "");
    EXPECT_EQ(shown(Null{}, "dd/mm/yyyy"), "");
    EXPECT_EQ(shown(qint32{7}, "00.0"), "07.0");
    EXPECT_EQ(shown(5.6, ""), "5.6");
    EXPECT_EQ(shown(std::numeric_limits<double>::quiet_NaN(), "#0.0"), "NaN");
    EXPECT_EQ(shown(std::numeric_limits<double>::infinity(), "#0.0"), "Infinity");
    EXPECT_THROW(shown(1e300, "dd/mm/yyyy"), RunTimeError);
    EXPECT_THROW(shown(QByteArray("x"), "#0.0"), RunTimeError);
}

} // namespace
} // namespace runtime
