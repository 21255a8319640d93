// The styles of printed lines.
#include "reports/print_list_under_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using Colour = Printer::Colour;

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

} // namespace
} // namespace reports
