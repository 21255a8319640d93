#include "reports/modTabs.h"

#include "runtime/run_time_error.h"
#include "support/recording_printer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class TabbedLine : public testing::Test
{
protected:
    void print(const char* line) { PrintTabbedLine(printer_, QString::fromLatin1(line), {500, 2000, 6000}); }
    const std::vector<PrintedText>& textsOfPage(std::size_t number) const
    {
        return printout_.back().pages.at(number - 1).texts;
    }

    Printout printout_;
    RecordingPrinter printer_{printout_}; // ten lines of 240
};

TEST_F(TabbedLine, EachPieceStandsAtItsPositionAtOneHeight)
{
    printer_.setCurrentY(720);
    print("a\tb\tc");
    ASSERT_THAT(textsOfPage(1), SizeIs(3));
    EXPECT_EQ(textsOfPage(1)[0].x, 500);
    EXPECT_EQ(textsOfPage(1)[1].x, 2000);
    EXPECT_EQ(textsOfPage(1)[2].x, 6000);
    for (const PrintedText& text : textsOfPage(1)) {
        EXPECT_EQ(text.y, 720);
    }
}

TEST_F(TabbedLine, TheNextLineBeginsBelowOnTheLeft)
{
    print("a\tb");
    EXPECT_EQ(printer_.currentX(), 0);
    EXPECT_EQ(printer_.currentY(), 240);
}

TEST_F(TabbedLine, AnEmptyPieceKeepsItsColumn)
{
    print("\tb");
    EXPECT_EQ(textsOfPage(1)[0].text, QString());
    EXPECT_EQ(textsOfPage(1)[1].x, 2000);
}

TEST_F(TabbedLine, TheHeightIsRoundedToAWholeTwip)
{
    for (const auto& [height, rounded] : {std::pair{100.4, 100.0}, {100.5, 100.0}, {101.5, 102.0}, {101.6, 102.0}}) {
        printer_.setCurrentY(height);
        print("a\tb");
        EXPECT_EQ(textsOfPage(1).at(textsOfPage(1).size() - 2).y, rounded) << height;
        EXPECT_EQ(textsOfPage(1).back().y, rounded) << height;
        EXPECT_EQ(printer_.currentY(), rounded + 240) << height;
    }
}

TEST_F(TabbedLine, MorePiecesThanPositionsIsOutOfRangeAfterThoseThatHaveOne)
{
    try {
        print("a\tb\tc\td");
        ADD_FAILURE() << "a fourth position is there";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 9);
        EXPECT_THAT(error.hint().toStdString(), testing::HasSubstr("4 columns, and there are print positions for 3"));
    }
    EXPECT_THAT(printout_.back().pages.back().words(), ElementsAre("a", "b", "c"));
}

TEST_F(TabbedLine, WithoutAnyPositionTheHintNamesAReportThatSetsThem)
{
    try {
        PrintTabbedLine(printer_, QStringLiteral("a"), {});
        ADD_FAILURE() << "a first position is there";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 9);
        EXPECT_THAT(error.hint().toStdString(), testing::HasSubstr("Basic Blood Sugar Data"));
    }
    EXPECT_TRUE(printout_.empty());
}

TEST_F(TabbedLine, ALineThatJustFitsStays)
{
    printer_.setCurrentY(9 * 240);
    print("a\tb");
    EXPECT_THAT(printout_.back().pages, SizeIs(1));
}

TEST_F(TabbedLine, ALineThatDoesNotFitGoesToTheNextPageAsAWhole)
{
    printer_.setCurrentY(9 * 240 + 1);
    print("a\tb\tc");
    ASSERT_THAT(printout_.back().pages, SizeIs(2));
    EXPECT_THAT(printout_.back().pages.back().words(), ElementsAre("a", "b", "c"));
    for (const PrintedText& text : textsOfPage(2)) {
        EXPECT_EQ(text.y, 0);
    }
}

TEST_F(TabbedLine, ALineThatRoundingPushesOverTheEdgeGoesToTheNextPageAsAWhole)
{
    Printout printout;
    RecordingPrinter printer(printout, {10000, 2400.8, 240}); // 2160.8 is the last height that fits, 2161 is not
    printer.setCurrentY(2160.7);
    PrintTabbedLine(printer, QStringLiteral("a\tb"), {0, 1000});
    ASSERT_THAT(printout.back().pages, SizeIs(2));
    EXPECT_THAT(printout.back().pages.back().words(), ElementsAre("a", "b"));
}

} // namespace
} // namespace reports
