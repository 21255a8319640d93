#include "reports/modDisp.h"
#include "support/recording_printer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PrintHeadingTest : public testing::Test
{
protected:
    /// The underlined pieces in brackets.
    std::vector<std::string> print(const char* heading)
    {
        Printout printout;
        RecordingPrinter printer(printout);
        PrintHeading(printer, QString::fromLatin1(heading));
        std::vector<std::string> pieces;
        if (!printout.empty()) {
            for (const PrintedText& text : printout.back().pages.back().texts) {
                const std::string piece = text.text.toStdString();
                pieces.push_back(text.underlined ? '[' + piece + ']' : piece);
            }
        }
        return pieces;
    }
};

TEST_F(PrintHeadingTest, AnEmptyTrailingPieceIsALine)
{
    EXPECT_THAT(print("A\r\nB\r\n\r\n"), ElementsAre("A", "[B]", "", ""));
}

TEST_F(PrintHeadingTest, ThePieceBeforeTheLastTwoIsUnderlined)
{
    EXPECT_THAT(print("A\r\nB\r\nC"), ElementsAre("[A]", "B", "C"));
    EXPECT_THAT(print("A\r\nB\r\nC\r\nD\r\n"), ElementsAre("A", "B", "[C]", "D", ""));
}

TEST_F(PrintHeadingTest, FewerThanThreePiecesHaveNoneUnderlined)
{
    EXPECT_THAT(print("Meal Compiled"), ElementsAre("Meal Compiled"));
    EXPECT_THAT(print("A\r\nB"), ElementsAre("A", "B"));
}

TEST_F(PrintHeadingTest, NoHeadingIsNoLine)
{
    EXPECT_THAT(print(""), IsEmpty());
}

TEST_F(PrintHeadingTest, ALoneLineFeedBreaksNoLine)
{
    EXPECT_THAT(print("A\nB"), ElementsAre("A\nB"));
}

} // namespace
} // namespace reports
