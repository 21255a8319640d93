// Where a printed list goes on to the next page.
#include "reports/print_list_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

// The page separator

TEST_F(PrintListTest, ASeparatorEndsThePageAndTheNextHasTheHeading)
{
    add("a");
    addSeparator();
    add("b");
    print();
    ASSERT_THAT(pages(), SizeIs(2));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("a", "Page - 1"));
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "Printed", "", "", "b", "Page - 2"));

    EXPECT_EQ(textsOfPage(1).back().y, kFooter);
    for (std::size_t piece = 0; piece < 4; ++piece) {
        const PrintedText& text = textsOfPage(2).at(piece);
        EXPECT_EQ(text.x, 0);
        EXPECT_EQ(text.y, static_cast<double>(piece) * kLine);
        EXPECT_EQ(text.underlined, text.text == QStringLiteral("Printed"));
    }
    EXPECT_EQ(textsOfPage(2).at(4).y, 4 * kLine);
    EXPECT_FALSE(textsOfPage(2).at(4).underlined);
}

TEST_F(PrintListTest, ASeparatorAsTheFirstLineLeavesAPageWithNothingButItsNumber)
{
    addSeparator();
    add("a");
    print();
    ASSERT_THAT(pages(), SizeIs(2));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("Page - 1"));
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "Printed", "", "", "a", "Page - 2"));
}

TEST_F(PrintListTest, ASeparatorAsTheLastLineLeavesAPageWithTheHeadingAlone)
{
    add("a");
    addSeparator();
    print();
    ASSERT_THAT(pages(), SizeIs(2));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("a", "Page - 1"));
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "Printed", "", "", "Page - 2"));
    EXPECT_EQ(textsOfPage(2).back().y, kFooter);
}

TEST_F(PrintListTest, ASeparatorSetsTheLineCounterBack)
{
    addNumbered(5);
    addSeparator();
    addNumbered(2);
    print();
    EXPECT_EQ(lineCounter_, 2);
}

TEST_F(PrintListTest, OnlyALineOf57EqualsSignsIsASeparator)
{
    const QString signs = kPageSeparator;
    ASSERT_EQ(signs.toStdString(), "=========================================================");
    list_.addItem(signs.chopped(1));
    list_.addItem(signs + u'=');
    list_.addItem(signs + u' ');
    list_.addItem(u'\t' + signs);
    print();
    ASSERT_THAT(pages(), SizeIs(1));
    EXPECT_THAT(textsOfPage(1), SizeIs(6)) << "the last line has two columns; and the footer";
}

// Full pages

TEST_F(PrintListTest, ALineLessThanAPageHoldsMakesNoBreak)
{
    addNumbered(kLinesOfAPage - 1);
    print();
    EXPECT_THAT(pages(), SizeIs(1));
    EXPECT_EQ(lineCounter_, 8);
}

TEST_F(PrintListTest, TheLineThatFillsAPageBreaksIt)
{
    addNumbered(kLinesOfAPage);
    print();
    ASSERT_THAT(pages(), SizeIs(2));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "2", "3", "4", "5", "6", "7", "8", "9", "Page - 1"));
    EXPECT_EQ(textsOfPage(1).at(8).y, 8 * kLine);
    EXPECT_EQ(textsOfPage(1).at(9).y, kFooter);
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "Printed", "", "", "Page - 2"));
    EXPECT_EQ(lineCounter_, 0);
}

// The heading is not counted. Page 2: 4 lines of heading, then 6 of the 9 lines that the counter allows; the page is
// full then, at 10 lines, without a footer. Page 3: the last 3 of the 9, its footer, and the break. Page 4 begins with
// the heading again.
TEST_F(PrintListTest, AContinuationPageWhoseHeadingTakesRoomRunsOverOntoAPageWithoutHeading)
{
    addNumbered(2 * kLinesOfAPage + 1);
    print();
    ASSERT_THAT(pages(), SizeIs(4));
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "Printed", "", "", "10", "11", "12", "13", "14", "15"));
    EXPECT_EQ(textsOfPage(2).back().y, 9 * kLine);
    EXPECT_THAT(wordsOfPage(3), ElementsAre("16", "17", "18", "Page - 3"));
    EXPECT_EQ(textsOfPage(3).at(0).y, 0);
    EXPECT_EQ(textsOfPage(3).at(2).y, 2 * kLine);
    EXPECT_EQ(textsOfPage(3).at(3).y, kFooter);
    EXPECT_THAT(wordsOfPage(4), ElementsAre("Title", "Printed", "", "", "19", "Page - 4"));
}

TEST_F(PrintListTest, ALineOfSeveralColumnsRunsOverAsAWhole)
{
    heading_ = QStringLiteral("Title");
    measures_.height = 9.6 * kLine; // 6.6 is 7 lines: page 2 is to take nine as before, but has room for eight
    addNumbered(kLinesOfAPage + 8);
    add("a\tb\tc");
    print();
    ASSERT_THAT(pages(), SizeIs(4));
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "10", "11", "12", "13", "14", "15", "16", "17"));
    EXPECT_THAT(wordsOfPage(3), ElementsAre("a", "b", "c", "Page - 3"));
    for (std::size_t column = 0; column < 3; ++column) {
        EXPECT_EQ(textsOfPage(3).at(column).y, 0);
        EXPECT_EQ(textsOfPage(3).at(column).x, columns_.at(static_cast<qsizetype>(column)));
    }
}

TEST_F(PrintListTest, HalfALineRoundsToTheEvenNumberOfLines)
{
    addNumbered(20);
    measures_.height = 10.5 * kLine; // 7.5 lines: 8, so the page holds 10
    print();
    EXPECT_THAT(wordsOfPage(1), SizeIs(11));

    lineCounter_ = 0;
    measures_.height = 9.5 * kLine; // 6.5 lines: 6, so the page holds 8
    print();
    EXPECT_THAT(wordsOfPage(1), SizeIs(9));
}

TEST_F(PrintListTest, TheFirstPageEndsTheEarlierTheLowerItBegins)
{
    addNumbered(20);
    RecordingPrinter printer(printout_, measures_);
    printer.setCurrentY(2 * kLine); // (10 - 2) - 3 = 5 lines, so the page holds 7
    PrintList(printer, job(), lineCounter_);
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "2", "3", "4", "5", "6", "7", "Page - 1"));
    EXPECT_EQ(textsOfPage(1).front().y, 2 * kLine);
    EXPECT_EQ(textsOfPage(2).at(0).text, QStringLiteral("Title"));
    EXPECT_EQ(textsOfPage(2).at(4).text, QStringLiteral("8"));
    // Reckoned once: page 2 takes 7 lines, too, although it begins at its top: 6 below the heading, one on page 3.
    EXPECT_THAT(wordsOfPage(3), ElementsAre("14", "Page - 3"));
}

TEST_F(PrintListTest, APageTooSmallForALineAndItsFooterHasALineEach)
{
    measures_.height = 2 * kLine; // 2 - 3 = -1: the counter of 0 is above it
    heading_.clear();
    addNumbered(2);
    print();
    ASSERT_THAT(pages(), SizeIs(3));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "Page - 1"));
    EXPECT_THAT(wordsOfPage(2), ElementsAre("2", "Page - 2"));
    EXPECT_THAT(wordsOfPage(3), ElementsAre("Page - 3"));
}

TEST_F(PrintListTest, TheSecondJobBreaksEarlierByTheLinesOfTheFirst)
{
    addNumbered(4);
    print();
    EXPECT_EQ(lineCounter_, 4);

    addNumbered(5); // 9 lines
    print();
    ASSERT_THAT(printout_, SizeIs(2));
    ASSERT_THAT(pages(), SizeIs(2));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "2", "3", "4", "1", "Page - 1")) << "9 - 4 lines";
    EXPECT_THAT(wordsOfPage(2), ElementsAre("Title", "Printed", "", "", "2", "3", "4", "5", "Page - 2"));
    EXPECT_EQ(lineCounter_, 4) << "counted from the break";
}

TEST_F(PrintListTest, ACounterAboveTheLinesOfThePageBreaksAtTheFirstLine)
{
    lineCounter_ = 200; // left by a job on larger paper
    addNumbered(2);
    print();
    ASSERT_THAT(pages(), SizeIs(2));
    EXPECT_THAT(wordsOfPage(1), ElementsAre("1", "Page - 1"));
    EXPECT_EQ(lineCounter_, 1);
}

} // namespace
} // namespace reports
