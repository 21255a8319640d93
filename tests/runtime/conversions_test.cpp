#include "runtime/conversions.h"

#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"

#include <gtest/gtest.h>

#include <limits>

namespace runtime {
namespace {

Value text(const char* value)
{
    return QString::fromUtf8(value);
}

class Conversions : public testing::Test
{
private:
    LocaleInForce locale_{kBritish};
};

TEST_F(Conversions, TextIsNumericWhenItConverts)
{
    EXPECT_TRUE(isNumeric(QStringLiteral(" 5.6 ")));
    EXPECT_FALSE(isNumeric(QString()));
    EXPECT_FALSE(isNumeric(QStringLiteral("1e400")));
    EXPECT_EQ(toDouble(text(" 5.6 ")), 5.6);
    EXPECT_EQ(errorNumberOf([] { return toDouble(text("")); }), 13);
    EXPECT_EQ(errorNumberOf([] { return toDouble(text("1e400")); }), 6);
}

TEST_F(Conversions, TextFollowsTheLocaleInForce)
{
    const LocaleInForce german(kGerman);
    EXPECT_EQ(toDouble(text("5,6")), 5.6);
    EXPECT_FALSE(isNumeric(QStringLiteral("5.6"))) << "a point must never vanish: 5.6 is not 56";
    EXPECT_EQ(toText(5.6).toStdString(), "5,6");
    EXPECT_TRUE(isDate(QStringLiteral("05/M\u00e4rz/2002")));
}

TEST_F(Conversions, NumbersFromOtherValues)
{
    EXPECT_EQ(toDouble(qint32{-7}), -7);
    EXPECT_EQ(toDouble(2.5), 2.5);
    EXPECT_EQ(toDouble(true), -1);
    EXPECT_EQ(toDouble(false), 0);
    EXPECT_EQ(toDouble(Date{37320.5}), 37320.5);
    EXPECT_EQ(errorNumberOf([] { return toDouble(Null{}); }), 94);
    EXPECT_EQ(errorNumberOf([] { return toDouble(QByteArray("5")); }), 13);
}

TEST_F(Conversions, DatesFromOtherValues)
{
    EXPECT_EQ(toDate(Date{37320.5}), Date{37320.5});
    EXPECT_EQ(toDate(37320.5), Date{37320.5});
    EXPECT_EQ(toDate(qint32{37320}), Date{37320});
    EXPECT_EQ(toDate(text("05/03/2002 12:00")), Date{37320.5});
    EXPECT_EQ(errorNumberOf([] { return toDate(text("31/02/2002")); }), 13);
    EXPECT_EQ(errorNumberOf([] { return toDate(text("")); }), 13);
    EXPECT_EQ(errorNumberOf([] { return toDate(1e9); }), 6);
    EXPECT_EQ(errorNumberOf([] { return toDate(Null{}); }), 94);
}

TEST_F(Conversions, WholeNumbersRoundHalfToEven)
{
    EXPECT_EQ(toLong(0.5), 0);
    EXPECT_EQ(toLong(1.5), 2);
    EXPECT_EQ(toLong(2.5), 2);
    EXPECT_EQ(toLong(-0.5), 0);
    EXPECT_EQ(toLong(-1.5), -2);
    EXPECT_EQ(toLong(-2.5), -2);
    EXPECT_EQ(toLong(2.4999999), 2);
    EXPECT_EQ(toLong(2.5000001), 3);
    EXPECT_EQ(toInteger(text("3.5")), 4);
    EXPECT_EQ(toInteger(text("4.5")), 4);
}

TEST_F(Conversions, WholeNumbersOverflowAtTheirWidth)
{
    EXPECT_EQ(toInteger(32767.5 - 0.1), 32767);
    EXPECT_EQ(errorNumberOf([] { return toInteger(32767.5); }), 6) << "rounds to 32768";
    EXPECT_EQ(toInteger(-32768.5), -32768) << "rounds to the even -32768";
    EXPECT_EQ(errorNumberOf([] { return toInteger(-32768.6); }), 6);
    EXPECT_EQ(errorNumberOf([] { return toInteger(qint32{32768}); }), 6);
    EXPECT_EQ(toLong(2147483647.4), std::numeric_limits<qint32>::max());
    EXPECT_EQ(errorNumberOf([] { return toLong(2147483647.5); }), 6);
    EXPECT_EQ(toLong(-2147483648.0), std::numeric_limits<qint32>::min());
    EXPECT_EQ(errorNumberOf([] { return toLong(-2147483649.0); }), 6);
    EXPECT_EQ(errorNumberOf([] { return toLong(std::numeric_limits<double>::quiet_NaN()); }), 6);
    EXPECT_EQ(errorNumberOf([] { return toLong(std::numeric_limits<double>::infinity()); }), 6);
    EXPECT_EQ(errorNumberOf([] { return toLong(Null{}); }), 94);
    EXPECT_EQ(errorNumberOf([] { return toInteger(text("ten")); }), 13);
}

TEST_F(Conversions, PlainTextOfEveryKindOfValue)
{
    EXPECT_EQ(toText(Null{}).toStdString(), "");
    EXPECT_EQ(toText(true).toStdString(), "True");
    EXPECT_EQ(toText(false).toStdString(), "False");
    EXPECT_EQ(toText(qint32{-12345}).toStdString(), "-12345");
    EXPECT_EQ(toText(12.25).toStdString(), "12.25");
    EXPECT_EQ(toText(Date{37320}).toStdString(), "05/03/2002");
    EXPECT_EQ(toText(Date{37320.75}).toStdString(), "05/03/2002 18:00:00");
    EXPECT_EQ(toText(text("Caf\u00e9 ")).toStdString(), "Caf\u00e9 ");
    EXPECT_EQ(toText(QByteArray("\x00\xff", 2)).toStdString(), "00ff");
}

} // namespace
} // namespace runtime
