#include "runtime/date_text.h"

#include "runtime/conversions.h"
#include "runtime/locale_in_force.h"

#include <gtest/gtest.h>

namespace runtime {
namespace {

/// The date in the plain form, or "no date".
std::string read(const char* text, const QLocale& locale = kBritish)
{
    const std::optional<Date> date = parseDate(QString::fromUtf8(text), locale);
    return date ? dateToText(*date).toStdString() : "no date";
}

TEST(DateText, ReadsTheDayFirst)
{
    EXPECT_EQ(read("05/03/2002"), "05/03/2002");
    EXPECT_EQ(read("5/3/2002"), "05/03/2002");
    EXPECT_EQ(read("5-3-2002"), "05/03/2002");
    EXPECT_EQ(read("5.3.2002"), "05/03/2002");
    EXPECT_EQ(read("5 3 2002"), "05/03/2002");
    EXPECT_EQ(read("  5 / 3 / 2002  "), "05/03/2002");
    EXPECT_EQ(read("12/01/2002"), "12/01/2002");
    EXPECT_EQ(read("05/03/2002", QLocale(QLocale::English, QLocale::UnitedStates)), "05/03/2002");
}

TEST(DateText, ThirteenInTheMonthsPlaceIsNoDate)
{
    EXPECT_EQ(read("5/13/2002"), "no date");
    EXPECT_EQ(read("12/13/2002"), "no date");
    EXPECT_EQ(read("13/12/2002"), "13/12/2002");
    EXPECT_EQ(read("2002-13-05"), "no date");
}

TEST(DateText, ReadsTheYearFirstWhenItHasFourDigits)
{
    EXPECT_EQ(read("2002-03-05"), "05/03/2002");
    EXPECT_EQ(read("2002-3-5 7:30"), "05/03/2002 07:30:00");
}

TEST(DateText, ReadsMonthNamesInEnglishEverywhere)
{
    for (const QLocale& locale : {kBritish, kGerman, kPolish}) {
        EXPECT_EQ(read("05/Mar/2002", locale), "05/03/2002");
        EXPECT_EQ(read("5 mar 2002", locale), "05/03/2002");
        EXPECT_EQ(read("5 MARCH 2002", locale), "05/03/2002");
        EXPECT_EQ(read("5-Sep-2002", locale), "05/09/2002");
        EXPECT_EQ(read("5 Sept 2002", locale), "05/09/2002");
        EXPECT_EQ(read("31 december 1999", locale), "31/12/1999");
    }
}

TEST(DateText, ReadsMonthNamesOfTheLocale)
{
    EXPECT_EQ(read("05/M\u00e4rz/2002", kGerman), "05/03/2002");
    EXPECT_EQ(read("5. Dez. 2002", kGerman), "05/12/2002");
    EXPECT_EQ(read("5 dez 2002", kGerman), "05/12/2002");
    EXPECT_EQ(read("5 DEZEMBER 2002", kGerman), "05/12/2002");
    EXPECT_EQ(read("5 marca 2002", kPolish), "05/03/2002");
    EXPECT_EQ(read("5 marzec 2002", kPolish), "05/03/2002");
    EXPECT_EQ(read("05/M\u00e4rz/2002", kBritish), "no date");
}

TEST(DateText, AMonthsNameMustStandWhole)
{
    EXPECT_EQ(read("5 Marc 2002"), "no date");
    EXPECT_EQ(read("5 Ma 2002"), "no date");
    EXPECT_EQ(read("5 Mar2002"), "no date");
    EXPECT_EQ(read("5Mar 2002"), "no date");
    EXPECT_EQ(read("5 Smarch 2002"), "no date");
}

TEST(DateText, AYearOfTwoDigitsIsOfTheNearerCentury)
{
    EXPECT_EQ(read("5/3/00"), "05/03/2000");
    EXPECT_EQ(read("5/3/29"), "05/03/2029");
    EXPECT_EQ(read("5/3/30"), "05/03/1930");
    EXPECT_EQ(read("5/3/99"), "05/03/1999");
}

TEST(DateText, AYearOfOneThreeOrFiveDigitsIsASlip)
{
    EXPECT_EQ(read("5/3/2"), "no date");
    EXPECT_EQ(read("5/3/202"), "no date");
    EXPECT_EQ(read("5/3/20022"), "no date");
    EXPECT_EQ(read("5/3/0099"), "no date");
}

TEST(DateText, JoinsDateAndTimeByBlanks)
{
    EXPECT_EQ(read("05/03/2002 08:15"), "05/03/2002 08:15:00");
    EXPECT_EQ(read("05/Mar/2002   8:15:30"), "05/03/2002 08:15:30");
    EXPECT_EQ(read("5 Mar 2002 23:59:59"), "05/03/2002 23:59:59");
    EXPECT_EQ(read("5 3 02 8:15"), "05/03/2002 08:15:00");
    EXPECT_EQ(read("05/03/200208:15"), "no date");
    EXPECT_EQ(read("05/03/2002T08:15"), "no date");
    EXPECT_EQ(read("08:15 05/03/2002"), "no date");
}

TEST(DateText, ATimeAloneIsAFractionOfADay)
{
    EXPECT_EQ(parseDate(u"06:00", kBritish), Date{0.25});
    EXPECT_EQ(parseDate(u"0:00", kBritish), Date{0});
    EXPECT_EQ(parseDate(u" 18:00:00 ", kBritish), Date{0.75});
}

TEST(DateText, AdditionOfDateAndTimeIsTheDateTime)
{
    const double date = parseDate(u"05/03/2002", kBritish)->days;
    for (int minute = 0; minute < 24 * 60; ++minute) {
        const QString time = QStringLiteral("%1:%2").arg(minute / 60).arg(minute % 60, 2, 10, QLatin1Char('0'));
        ASSERT_EQ(parseDate(QStringLiteral("05/03/2002 ") + time, kBritish)->days,
                  date + parseDate(time, kBritish)->days);
    }
}

TEST(DateText, ReadsHalvesOfTheDay)
{
    EXPECT_EQ(read("05/03/2002 8:15 am"), "05/03/2002 08:15:00");
    EXPECT_EQ(read("05/03/2002 8:15PM"), "05/03/2002 20:15:00");
    EXPECT_EQ(read("05/03/2002 12:00 AM"), "05/03/2002");
    EXPECT_EQ(read("05/03/2002 12:30:15 pm"), "05/03/2002 12:30:15");
    EXPECT_EQ(read("05/03/2002 13:00 pm"), "no date");
    EXPECT_EQ(read("05/03/2002 0:15 am"), "no date");
    EXPECT_EQ(read("05/03/2002 8:15 xm"), "no date");
    EXPECT_EQ(read("05/03/2002 pm"), "no date");
}

TEST(DateText, RefusesWhatTheCalendarOrTheClockDoesNotHave)
{
    for (const char* text : {"31/02/2002", "29/02/2001", "31/04/2002", "0/1/2002", "1/0/2002", "32/1/2002", "24:00",
                             "05/03/2002 24:00", "12:60", "12:00:60", "05/03/0001"}) {
        EXPECT_EQ(read(text), "no date") << text;
    }
    EXPECT_EQ(read("29/02/2000"), "29/02/2000");
}

TEST(DateText, RefusesWhatIsNotWhollyADate)
{
    for (const char* text : {"",
                             " ",
                             "5",
                             "5/3",
                             "March 2002",
                             "5 March",
                             "05/03/2002x",
                             "x05/03/2002",
                             "05/03/2002 8",
                             "05/03/2002 8:5",
                             "8:5",
                             "8:015",
                             "008:15",
                             "8:15:3",
                             "8",
                             "8:",
                             ":15",
                             "05//03/2002",
                             "05/03/",
                             "/03/2002",
                             "005/03/2002",
                             "05/003/2002",
                             "20020305",
                             "5.6",
                             "37320",
                             "Date",
                             "05/03/2002,08:15",
                             "05/03/2002 08:15 Meal",
                             "-5/3/2002"}) {
        EXPECT_EQ(read(text), "no date") << text;
    }
}

TEST(DateText, ShowsTheTimeUnlessItIsMidnight)
{
    EXPECT_EQ(dateToText(Date{37320}).toStdString(), "05/03/2002");
    EXPECT_EQ(dateToText(Date{37320.75}).toStdString(), "05/03/2002 18:00:00");
    EXPECT_EQ(dateToText(Date{37320 + 1.0 / 86400}).toStdString(), "05/03/2002 00:00:01");
    EXPECT_EQ(dateToText(Date{37320 + 0.2 / 86400}).toStdString(), "05/03/2002");
    EXPECT_EQ(dateToText(Date{0.25}).toStdString(), "30/12/1899 06:00:00");
}

} // namespace
} // namespace runtime
