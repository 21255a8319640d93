// What a print job puts on its pages, and what becomes of one that fails.
#include "reports/print_list_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(PrintListTest, TheFirstPageHasNoHeading)
{
    addNumbered(2);
    print();
    ASSERT_THAT(pages(), SizeIs(1));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "2", "Page - 1"));
    EXPECT_TRUE(printout_.back().isPrinted());
}

TEST_F(PrintListTest, ColumnsStandAtTheirPositionsAndLinesBelowEachOther)
{
    add("a\tb\tc");
    add("d\t\tf");
    print();
    const std::vector<PrintedText>& texts = textsOfPage(1);
    ASSERT_THAT(texts, SizeIs(7));
    for (std::size_t column = 0; column < 3; ++column) {
        EXPECT_EQ(texts.at(column).x, columns_.at(static_cast<qsizetype>(column)));
        EXPECT_EQ(texts.at(column).y, 0);
        EXPECT_EQ(texts.at(3 + column).x, columns_.at(static_cast<qsizetype>(column)));
        EXPECT_EQ(texts.at(3 + column).y, kLine);
    }
    EXPECT_THAT(wordsOfPage(1), ElementsAre("a", "b", "c", "d", "", "f", "Page - 1"));
}

TEST_F(PrintListTest, TheFooterIsAtTheFootOfThePageOnTheLeft)
{
    add("a");
    print();
    const PrintedText& footer = textsOfPage(1).back();
    EXPECT_EQ(footer.text, QStringLiteral("Page - 1"));
    EXPECT_EQ(footer.x, 0);
    EXPECT_EQ(footer.y, kFooter);
}

TEST_F(PrintListTest, AnEmptyListIsAPageWithNothingButItsNumber)
{
    print();
    ASSERT_THAT(pages(), SizeIs(1));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("Page - 1"));
    EXPECT_EQ(textsOfPage(1).front().y, kFooter);
    EXPECT_TRUE(printout_.back().isPrinted());
}

TEST_F(PrintListTest, AnEmptyLineAdvancesByALine)
{
    add("a");
    add("");
    add("b");
    print();
    EXPECT_THAT(wordsOfPage(1), ElementsAre("a", " ", "b", "Page - 1"));
    EXPECT_EQ(textsOfPage(1).at(2).y, 2 * kLine);
    EXPECT_EQ(lineCounter_, 3) << "it counts as a line";
}

// Selected lines

TEST_F(PrintListTest, OnlyTheSelectedLinesArePrintedWithTheirStyles)
{
    addNumbered(5);
    list_.setStyle(3, Bold);
    print(selected({1, 3}));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("2", "4", "Page - 1"));
    EXPECT_FALSE(textsOfPage(1).at(0).bold);
    EXPECT_TRUE(textsOfPage(1).at(1).bold);
    EXPECT_EQ(textsOfPage(1).at(1).y, kLine) << "what is not selected leaves no gap";
    EXPECT_EQ(lineCounter_, 2);
}

TEST_F(PrintListTest, WithNothingSelectedNothingIsPrinted)
{
    addNumbered(5);
    lineCounter_ = 4;
    EXPECT_TRUE(selected({}).isVoid());
    print(selected({}));
    EXPECT_THAT(printout_, IsEmpty());
    EXPECT_EQ(lineCounter_, 4);
}

TEST_F(PrintListTest, ASelectionDoesNotCountWhenTheWholeListIsPrinted)
{
    addNumbered(3);
    PrintJob whole = job();
    whole.selectedLines = {1};
    print(whole);
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "2", "3", "Page - 1"));
}

TEST_F(PrintListTest, ASeparatorThatIsNotSelectedEndsNoPage)
{
    add("a");
    addSeparator();
    add("b");
    print(selected({0, 2}));
    ASSERT_THAT(pages(), SizeIs(1));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("a", "b", "Page - 1"));
}

// Failures

/// Of a list that fills its first page: the lines, the footer, the new page, four lines of heading, the last footer and
/// the end of the document.
constexpr int kOutputs = kLinesOfAPage + 1 + 1 + 4 + 1 + 1;

TEST_F(PrintListTest, MoreColumnsThanPositionsIsOutOfRangeAndNothingComesOut)
{
    add("a");
    add("b\tc\td\te");
    {
        RecordingPrinter printer(printout_, measures_);
        EXPECT_EQ(errorOfPrinting(printer), 9);
    }
    EXPECT_EQ(printout_.back().state, PrintedDocument::State::Discarded);
    EXPECT_THAT(wordsOfPage(1), ElementsAre("a", "b", "c", "d"));
    EXPECT_EQ(lineCounter_, 1) << "the line that failed is not counted";
}

TEST_F(PrintListTest, APrinterThatFailsEndsTheJobAndTheNextOneIsPrinted)
{
    addNumbered(kLinesOfAPage);
    for (int output = 1; output <= kOutputs; ++output) {
        printout_.clear();
        lineCounter_ = 0;
        RecordingPrinter printer(printout_, measures_);
        printer.failAtOutput(output);
        EXPECT_EQ(errorOfPrinting(printer), 482) << output;
        for (const PrintedDocument& document : printout_) {
            EXPECT_EQ(document.state, PrintedDocument::State::Discarded) << output;
        }

        lineCounter_ = 0;
        EXPECT_EQ(errorOfPrinting(printer), 0) << output;
        EXPECT_TRUE(printout_.back().isPrinted()) << output;
        EXPECT_THAT(pages(), SizeIs(2)) << output;
        EXPECT_EQ(wordsOfPage(1).front(), "1") << output;
        EXPECT_EQ(textsOfPage(1).front().y, 0) << output;
    }
}

TEST_F(PrintListTest, AJobHasNoMoreOutputsThanThose)
{
    addNumbered(kLinesOfAPage);
    RecordingPrinter printer(printout_, measures_);
    printer.failAtOutput(kOutputs + 1);
    EXPECT_EQ(errorOfPrinting(printer), 0);
}

} // namespace
} // namespace reports
