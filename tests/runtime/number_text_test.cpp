#include "runtime/number_text.h"

#include "runtime/conversions.h"
#include "runtime/locale_in_force.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace runtime {
namespace {

struct Reading {
    const char* text;
    double number;
};

void expectNumbers(const QLocale& locale, std::initializer_list<Reading> readings)
{
    for (const Reading& reading : readings) {
        const std::optional<double> number = parseNumber(QString::fromUtf8(reading.text), locale);
        EXPECT_TRUE(number.has_value()) << '"' << reading.text << '"';
        EXPECT_EQ(number.value_or(-1), reading.number) << '"' << reading.text << '"';
    }
}

void expectNoNumbers(const QLocale& locale, std::initializer_list<const char*> texts)
{
    for (const char* text : texts) {
        EXPECT_FALSE(parseNumber(QString::fromUtf8(text), locale).has_value()) << '"' << text << '"';
    }
}

TEST(NumberText, ReadsNumbersWithAPoint)
{
    expectNumbers(kBritish, {{"5.6", 5.6},
                             {"0", 0},
                             {"007", 7},
                             {".5", 0.5},
                             {"5.", 5},
                             {"+12", 12},
                             {"-0.25", -0.25},
                             {"\u22123", -3},
                             {"  8.0\t", 8},
                             {"1,234", 1234},
                             {"12,345,678.9", 12345678.9},
                             {"1e3", 1000},
                             {"2.5E-2", 0.025},
                             {"1E+2", 100},
                             {"\u0665.\u0666", 5.6}});
}

TEST(NumberText, RefusesWhatIsNoNumber)
{
    expectNoNumbers(kBritish,
                    {"",    " ",      ".",        "-",       "+",       "abc",  "5.6 mmol", "5 6",      "- 5",
                     "--5", "5-",     "1.2.3",    "0x10",    "&H10",    "inf",  "nan",      "INF",      "infinity",
                     "e5",  "1e",     "1e+",      "1e1.5",   "5,6",     "1,23", "1,2345",   "1234,567", ",5",
                     "1,",  "1,,234", "1,234,56", "1.234,5", "5\u00b2", "%"});
}

TEST(NumberText, WhereTheCommaIsTheDecimalSignAPointIsNeverOne)
{
    expectNumbers(kGerman, {{"5,6", 5.6}, {"-0,25", -0.25}, {"1.234", 1234}, {"1.234.567,5", 1234567.5}, {",5", 0.5}});
    expectNoNumbers(kGerman, {"5.6", "12.3", "0.5", "5.", ".5", "5.60", "1.2345", "1,234,567", "5,6,7", "1,234.5"});
}

TEST(NumberText, BlanksSeparateGroupsWhereTheLocaleHasThemSo)
{
    expectNumbers(kFrench, {{"1 234,5", 1234.5}, {"1\u00a0234", 1234}, {"1\u202f234\u202f567", 1234567}});
    expectNoNumbers(kFrench, {"5 6", "1 23", "1  234", "5.6", "1.234"});
    expectNumbers(kSwiss, {{"1'234.5", 1234.5}, {"1\u2019234", 1234}});
    expectNoNumbers(kSwiss, {"5,6", "1'23"});
}

TEST(NumberText, ANumberTooLargeIsInfiniteAndOneTooSmallIsZero)
{
    EXPECT_EQ(parseNumber(u"1e400", kBritish), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseNumber(u"1e-400", kBritish), 0.0);
}

TEST(NumberText, ShowsFifteenSignificantDigits)
{
    const struct {
        double number;
        const char* text;
    } kCases[] = {
        {0, "0"},
        {-0.0, "0"},
        {5.6, "5.6"},
        {-5.25, "-5.25"},
        {100, "100"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {0.00001, "0.00001"},
        {0.000001, "1E-06"},
        {123456789012345, "123456789012345"},
        {999999999999999.9, "1E+15"},
        {1e15, "1E+15"},
        {1.5e20, "1.5E+20"},
        {-2.5e-300, "-2.5E-300"},
        {std::numeric_limits<double>::infinity(), "Infinity"},
        {-std::numeric_limits<double>::infinity(), "-Infinity"},
        {std::numeric_limits<double>::quiet_NaN(), "NaN"},
    };
    for (const auto& expected : kCases) {
        EXPECT_EQ(numberToText(expected.number, kBritish).toStdString(), expected.text);
    }
    EXPECT_EQ(numberToText(5.6, kGerman).toStdString(), "5,6");
}

TEST(NumberText, WhatIsShownReadsBackAsTheSameNumber)
{
    for (const QLocale& locale : {kBritish, kGerman, kFrench, kSwiss}) {
        for (const double number : {0.1, 5.6, 12.25, 1234.5, 999999.75, 1.5e20, 2.5e-9}) {
            EXPECT_EQ(parseNumber(numberToText(number, locale), locale), number);
        }
    }
}

TEST(NumberText, DoesNotFollowTheLocaleOfTheCLibrary)
{
    const char* set = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"}) {
        set = set != nullptr ? set : std::setlocale(LC_ALL, name);
    }
    if (set == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    EXPECT_EQ(parseNumber(u"5.6", kBritish), 5.6);
    EXPECT_EQ(numberToText(5.6, kBritish).toStdString(), "5.6");
    std::setlocale(LC_ALL, "C");
}

} // namespace
} // namespace runtime
