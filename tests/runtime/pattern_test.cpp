#include "runtime/date_pattern.h"
#include "runtime/number_pattern.h"

#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace runtime {
namespace {

class APatternReadOnce : public testing::Test
{
private:
    LocaleInForce locale_{kBritish};
};

TEST_F(APatternReadOnce, ServesManyNumbers)
{
    const NumberPattern oneDecimal(QStringLiteral("#0.0"));
    QString line = QStringLiteral("mmol:");
    for (const double number : {5.25, -0.04, 1234.5, 0.0}) {
        line += u' ';
        oneDecimal.append(line, number);
    }
    EXPECT_EQ(line.toStdString(), "mmol: 5.3 0.0 1234.5 0.0");
    EXPECT_EQ(oneDecimal.format(7).toStdString(), "7.0");
}

TEST_F(APatternReadOnce, AppendsValuesOfEachKind)
{
    const NumberPattern oneDecimal(QStringLiteral("#0.0"));
    QString line;
    for (const Value& value :
         {Value(Null{}), Value(qint32{4}), Value(QStringLiteral("5.66")), Value(QStringLiteral("high")), Value(true)}) {
        line += u'|';
        oneDecimal.append(line, value);
    }
    EXPECT_EQ(line.toStdString(), "||4.0|5.7|high|-1.0");
    EXPECT_THROW(oneDecimal.append(line, Value(QByteArray("4"))), RunTimeError);
}

TEST_F(APatternReadOnce, ServesManyDates)
{
    const DatePattern day(QStringLiteral("dd mmm hh:mm"));
    QString line = QStringLiteral("at");
    for (const double days : {37257.5, 37257.0, 37290.25}) {
        line += u' ';
        day.append(line, Date{days});
    }
    EXPECT_EQ(line.toStdString(), "at 01 Jan 12:00 01 Jan 00:00 03 Feb 06:00");
    EXPECT_THROW(static_cast<void>(day.format(Date{1e9})), RunTimeError);
}

TEST_F(APatternReadOnce, KeepsTheLocaleItWasReadIn)
{
    const NumberPattern number(QStringLiteral("#,##0.0"));
    const DatePattern month(QStringLiteral("mmmm"));
    const LocaleInForce german(kGerman);
    EXPECT_EQ(number.format(1234.5).toStdString(), "1,234.5");
    EXPECT_EQ(month.format(Date{37257}).toStdString(), "January");
    EXPECT_EQ(NumberPattern(QStringLiteral("#,##0.0")).format(1234.5).toStdString(), "1.234,5");
    EXPECT_EQ(DatePattern(QStringLiteral("mmmm")).format(Date{37257}).toStdString(), "Januar");
}

} // namespace
} // namespace runtime
