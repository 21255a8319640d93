#include "reports/modDisp.h"

#include "runtime/run_time_error.h"
#include "support/recording_printer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace reports {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Colour = Printer::Colour;

// A page of ten lines takes 10 - 3 + 2 = 9 lines of a report from a counter of 0; the tenth is the footer.
constexpr int kLinesOfAPage = 9;
constexpr double kLine = 240;
constexpr double kFooter = 9 * kLine;

class PrintListTest : public testing::Test
{
protected:
    void add(const char* text, int style = Plain) { list_.addItem(QString::fromLatin1(text), style); }
    void addSeparator(int style = Plain) { list_.addItem(kPageSeparator, style); }

    /// Adds lines "1", "2", ...
    void addNumbered(int count)
    {
        for (int number = 1; number <= count; ++number) {
            list_.addItem(QString::number(number));
        }
    }

    PrintJob job() const { return {list_, columns_, heading_, {}, false, true}; }

    PrintJob selected(const QList<int>& lines) const
    {
        PrintJob job = this->job();
        job.selectedOnly = true;
        job.selectedLines = lines;
        return job;
    }

    void print(const PrintJob& job)
    {
        RecordingPrinter printer(printout_, measures_);
        PrintList(printer, job, lineCounter_);
    }

    void print() { print(job()); }

    /// Prints on this printer; the number of the error that it ends with.
    int errorOfPrinting(Printer& printer)
    {
        try {
            PrintList(printer, job(), lineCounter_);
            return 0;
        } catch (const runtime::RunTimeError& error) {
            return error.number();
        }
    }

    const std::vector<PrintedPage>& pages() const { return printout_.back().pages; }
    const std::vector<PrintedText>& textsOfPage(std::size_t number) const { return pages().at(number - 1).texts; }
    std::vector<std::string> wordsOfPage(std::size_t number) const { return pages().at(number - 1).words(); }

    ReportList list_;
    QList<double> columns_{1000, 3000, 4000};
    QString heading_ = QStringLiteral("Title\r\nPrinted\r\n\r\n");
    RecordingPrinter::Measures measures_;
    qint16 lineCounter_ = 0;
    Printout printout_;
};

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

// Styles

struct Look {
    int style;
    bool bold;
    bool underlined;
    Colour colour;
};

TEST_F(PrintListTest, EachBitOfAStyleHasItsEffect)
{
    const std::vector<Look> looks = {
        {Plain, false, false, Colour::Black},
        {Bold, true, false, Colour::Black},
        {Underlined, false, true, Colour::Black},
        {Red, false, false, Colour::Red},
        {Blue, false, false, Colour::Blue},
        {Green, false, false, Colour::Green},
        {Bold | Underlined | Red, true, true, Colour::Red},
    };
    for (const Look& look : looks) {
        add("a\tb", look.style);
    }
    print();
    for (std::size_t line = 0; line < looks.size(); ++line) {
        for (std::size_t column = 0; column < 2; ++column) {
            const PrintedText& text = textsOfPage(1).at(2 * line + column);
            EXPECT_EQ(text.bold, looks[line].bold) << looks[line].style;
            EXPECT_EQ(text.underlined, looks[line].underlined) << looks[line].style;
            EXPECT_EQ(text.colour, looks[line].colour) << looks[line].style;
        }
    }
}

TEST_F(PrintListTest, GreenWinsOverBlueAndBlueOverRed)
{
    add("red and blue", Red | Blue);
    add("red and green", Red | Green);
    add("blue and green", Blue | Green);
    add("all", Red | Blue | Green);
    print();
    EXPECT_EQ(textsOfPage(1).at(0).colour, Colour::Blue);
    EXPECT_EQ(textsOfPage(1).at(1).colour, Colour::Green);
    EXPECT_EQ(textsOfPage(1).at(2).colour, Colour::Green);
    EXPECT_EQ(textsOfPage(1).at(3).colour, Colour::Green);
}

TEST_F(PrintListTest, OtherBitsHaveNoEffect)
{
    add("a", 32 | 1024);
    print();
    EXPECT_FALSE(textsOfPage(1).at(0).bold);
    EXPECT_FALSE(textsOfPage(1).at(0).underlined);
    EXPECT_EQ(textsOfPage(1).at(0).colour, Colour::Black);
}

TEST_F(PrintListTest, AfterALineThePrinterIsSetBack)
{
    add("a", Bold | Underlined | Green);
    print();
    const PrintedText& footer = textsOfPage(1).back();
    EXPECT_FALSE(footer.bold);
    EXPECT_FALSE(footer.underlined);
    EXPECT_EQ(footer.colour, Colour::Black);
}

TEST_F(PrintListTest, FooterAndHeadingOfABreakHaveTheStyleOfTheLineThatMadeIt)
{
    addSeparator(Bold | Red | Underlined);
    add("a");
    print();
    const PrintedText& footer = textsOfPage(1).at(0);
    EXPECT_TRUE(footer.bold);
    EXPECT_TRUE(footer.underlined);
    EXPECT_EQ(footer.colour, Colour::Red);
    for (std::size_t piece = 0; piece < 4; ++piece) {
        EXPECT_TRUE(textsOfPage(2).at(piece).bold);
        EXPECT_EQ(textsOfPage(2).at(piece).colour, Colour::Red);
        EXPECT_EQ(textsOfPage(2).at(piece).underlined, piece < 2) << "until after the underlined piece";
    }
    EXPECT_FALSE(textsOfPage(2).at(4).bold);
    EXPECT_EQ(textsOfPage(2).at(4).colour, Colour::Black);
}

TEST_F(PrintListTest, WithoutStylesEveryLineIsPlain)
{
    add("a", Bold | Underlined | Red);
    PrintJob plain = job();
    plain.useStyles = false;
    print(plain);
    EXPECT_FALSE(textsOfPage(1).at(0).bold);
    EXPECT_FALSE(textsOfPage(1).at(0).underlined);
    EXPECT_EQ(textsOfPage(1).at(0).colour, Colour::Black);
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

// The heading

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
