#include "runtime/error_hints.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace runtime {
namespace {

TEST(RunTimeError, HasItsNumbersUsualWords)
{
    const struct {
        ErrorNumber number;
        int code;
        const char* words;
    } kCases[] = {
        {ErrorNumber::Overflow, 6, "Overflow"},
        {ErrorNumber::SubscriptOutOfRange, 9, "Subscript out of range"},
        {ErrorNumber::DivisionByZero, 11, "Division by zero"},
        {ErrorNumber::TypeMismatch, 13, "Type mismatch"},
        {ErrorNumber::InvalidUseOfNull, 94, "Invalid use of Null"},
        {ErrorNumber::PrinterError, 482, "Printer error"},
        {ErrorNumber::NoCurrentRecord, 3021, "No current record."},
        {ErrorNumber::ObjectInvalid, 3420, "Object invalid or no longer set."},
    };
    for (const auto& expected : kCases) {
        const RunTimeError error(expected.number);
        EXPECT_EQ(error.number(), expected.code);
        EXPECT_EQ(error.words().toStdString(), expected.words);
        EXPECT_TRUE(error.hint().isEmpty());
    }
}

TEST(RunTimeError, ShowsNumberThenWordsThenHint)
{
    const RunTimeError plain(ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(plain.text().toStdString(), "Run-time error '3021':\n\nNo current record.");
    const RunTimeError hinted = plain.withHint(QStringLiteral("There is no reading yet."));
    EXPECT_EQ(hinted.text().toStdString(), "Run-time error '3021':\n\nNo current record.\n\nThere is no reading yet.");
    EXPECT_EQ(hinted.code(), ErrorNumber::NoCurrentRecord);
}

TEST(RunTimeError, TakesAHintInThePlaceOfItsOwnOrBehindIt)
{
    const RunTimeError error = RunTimeError(ErrorNumber::Overflow).withHint(QStringLiteral("The dose is too large."));
    EXPECT_EQ(error.withHint(QStringLiteral("Type it again.")).hint().toStdString(), "Type it again.");
    EXPECT_EQ(error.withAddedHint(QStringLiteral("Type it again.")).hint().toStdString(),
              "The dose is too large. Type it again.");
    EXPECT_EQ(RunTimeError(ErrorNumber::Overflow).withAddedHint(QStringLiteral("Type it again.")).hint().toStdString(),
              "Type it again.");
}

TEST(RunTimeError, OfAnActionLeavesWithTheCallersHint)
{
    const QString hint = QStringLiteral("The dose is not a number.");
    EXPECT_EQ(withHintOnError(hint, [] { return 7; }), 7);
    try {
        withHintOnError(
            hint, [] { throw RunTimeError(ErrorNumber::TypeMismatch).withHint(QStringLiteral("Something else.")); });
        FAIL() << "nothing was thrown";
    } catch (const RunTimeError& error) {
        EXPECT_EQ(error.code(), ErrorNumber::TypeMismatch);
        EXPECT_EQ(error.hint().toStdString(), hint.toStdString());
    }
}

TEST(RunTimeError, TellsAPlainProgramItsNumberAndWords)
{
    const RunTimeError error(ErrorNumber::FileNotFound, QStringLiteral("Could not find file '/tmp/M\u00fcller.mdb'."));
    EXPECT_STREQ(error.what(), "3024: Could not find file '/tmp/M\u00fcller.mdb'.");
}

} // namespace
} // namespace runtime
