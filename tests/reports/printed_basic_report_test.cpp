#include "reports/basic_report.h"

#include "runtime/run_time_error.h"
#include "support/recording_printer.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <QLocale>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class PrintedBasicReport : public testing::Test
{
protected:
    PrintedBasicReport()
    {
        QLocale::setDefault(QLocale::c());
        state_.strPath = diary_.path();
    }

    /// Prints with a printer of its own; the number of the error that it ends with.
    int errorOfPrinting(int failingOutput = 0)
    {
        RecordingPrinter printer(printout_);
        printer.failAtOutput(failingOutput);
        const auto error = errorOf([&] { printBasicReport(printer, state_); });
        hint_ = error ? error->hint().toStdString() : std::string();
        return error ? error->number() : 0;
    }

    TestDiary diary_;
    runtime::SystemClock clock_;
    ReportState state_{clock_};
    Printout printout_;
    std::string hint_;
};

constexpr const char* kHeading = "Mmol\tWhen\tType\tComment";

TEST_F(PrintedBasicReport, HasTheColumnsNamesAnEmptyLineAndAReadingALineAfterATab)
{
    diary_.addReading(QStringLiteral("05/03/2002 12:30"), 12.3, 2, QStringLiteral("after a walk"));
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5.6, 1);
    EXPECT_EQ(errorOfPrinting(), 0);
    ASSERT_EQ(printout_.size(), 1U);
    EXPECT_TRUE(printout_.front().isPrinted());
    ASSERT_EQ(printout_.front().pages.size(), 1U);
    EXPECT_THAT(printout_.front().pages.front().words(),
                ElementsAre(kHeading, "", "\t05.6\t05/03/2002 07:15:00\tGetting Up\t",
                            "\t12.3\t05/03/2002 12:30:00\tMeal\tafter a walk"));
}

TEST_F(PrintedBasicReport, IsPlainAndHasNoPositionsOfColumns)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 3.6, 1);
    diary_.addReading(QStringLiteral("05/03/2002 12:30"), 12.3, 2);
    EXPECT_EQ(errorOfPrinting(), 0);
    double y = 0;
    for (const PrintedText& text : printout_.front().pages.front().texts) {
        EXPECT_EQ(text.x, 0);
        EXPECT_EQ(text.y, y);
        EXPECT_FALSE(text.bold);
        EXPECT_FALSE(text.underlined);
        EXPECT_EQ(text.colour, Printer::Colour::Black);
        y += 240;
    }
}

TEST_F(PrintedBasicReport, HasTheWholeHistoryWhileAFilterIsInForce)
{
    diary_.addReading(QStringLiteral("05/03/2001 07:15"), 5.6, 1);
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5.7, 1);
    state_.fields = {QStringLiteral("01/03/2002"), QStringLiteral("02/03/2002")};
    state_.strWhere = state_.fields.strWhere();
    EXPECT_EQ(errorOfPrinting(), 0);
    EXPECT_EQ(printout_.front().pages.front().texts.size(), 4U);
}

TEST_F(PrintedBasicReport, RunsOverOntoPagesWithoutHeadingOrNumber)
{
    for (int minute = 10; minute < 22; ++minute) { // 12 readings: 14 lines, of which a page takes 10
        diary_.addReading(QStringLiteral("05/03/2002 07:%1").arg(minute), 5.6, 1);
    }
    EXPECT_EQ(errorOfPrinting(), 0);
    ASSERT_EQ(printout_.front().pages.size(), 2U);
    EXPECT_EQ(printout_.front().pages.front().texts.size(), 10U);
    EXPECT_EQ(printout_.front().pages.back().texts.size(), 4U);
    EXPECT_THAT(printout_.front().pages.back().words().front(), HasSubstr("07:18:00"));
}

TEST_F(PrintedBasicReport, WithoutAnyReadingNothingComesOut)
{
    EXPECT_EQ(errorOfPrinting(), 3021);
    EXPECT_THAT(hint_, HasSubstr("no blood sugar reading yet"));
    ASSERT_EQ(printout_.size(), 1U);
    EXPECT_EQ(printout_.front().state, PrintedDocument::State::Discarded);
}

TEST_F(PrintedBasicReport, WithoutAnyReadingTheHintDoesNotBlameTheFilter)
{
    state_.strWhere = DateFilter{QStringLiteral("01/03/2002"), QStringLiteral("02/03/2002")}.strWhere();
    EXPECT_EQ(errorOfPrinting(), 3021);
    EXPECT_THAT(hint_, HasSubstr("no blood sugar reading yet"));
}

TEST_F(PrintedBasicReport, APrinterThatFailsEndsItAndNothingComesOut)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5.6, 1);
    for (const int output : {1, 3, 4}) { // the first line, the last, the end of the document
        printout_.clear();
        EXPECT_EQ(errorOfPrinting(output), 482);
        for (const PrintedDocument& document : printout_) {
            EXPECT_EQ(document.state, PrintedDocument::State::Discarded);
        }
    }
}

TEST_F(PrintedBasicReport, WithoutAFileThePrinterIsNotBegun)
{
    state_.strPath = QStringLiteral("/no/such/Nutrition.mdb");
    EXPECT_EQ(errorOfPrinting(), 3024);
    EXPECT_TRUE(printout_.empty());
}

} // namespace
} // namespace reports
