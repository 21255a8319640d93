#include "controls/tab_stops.h"

#include "controls/mock_dialogs.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace controls {
namespace {

// With letters of 8 pixels a dialog unit is 2 pixels, and the default distance of eight letters 64.
constexpr double kLetter = 8;

TEST(TabStops, AreQuartersOfTheAverageCharacterWidth)
{
    const TabStops stops({30, 110, 160}, kLetter);
    EXPECT_DOUBLE_EQ(stops.next(0), 60);
    EXPECT_DOUBLE_EQ(stops.next(61), 220);
    EXPECT_DOUBLE_EQ(stops.next(221), 320);
}

TEST(TabStops, ATextThatEndsAtAStopGoesOnToTheNext)
{
    const TabStops stops({30, 110}, kLetter);
    EXPECT_DOUBLE_EQ(stops.next(59.5), 60);
    EXPECT_DOUBLE_EQ(stops.next(60), 220);
}

TEST(TabStops, BehindTheLastStopTabsAreEightCharactersApart)
{
    const TabStops stops({30, 110}, kLetter);
    EXPECT_DOUBLE_EQ(stops.next(230), 256);
    EXPECT_DOUBLE_EQ(stops.next(256), 320);
}

TEST(TabStops, OneStopAloneIsRepeated)
{
    const TabStops stops({50}, kLetter);
    EXPECT_DOUBLE_EQ(stops.next(0), 100);
    EXPECT_DOUBLE_EQ(stops.next(100), 200);
    EXPECT_DOUBLE_EQ(stops.next(250), 300);
}

TEST(TabStops, WithoutAnyTabsAreEightCharactersApart)
{
    const TabStops stops({}, kLetter);
    EXPECT_DOUBLE_EQ(stops.next(0), 64);
    EXPECT_DOUBLE_EQ(stops.next(70), 128);
}

TEST(TabStops, ADistanceOfNothingStillMovesOn)
{
    EXPECT_DOUBLE_EQ(TabStops({0}, kLetter).next(10), 64);
    EXPECT_GT(TabStops({}, 0).next(10), 10);
}

TEST(ColumnLayout, PutsEachColumnAtItsStop)
{
    const QFontMetricsF metrics(QGuiApplication::font());
    const double character = averageCharacterWidth(metrics);
    const TabStops stops({40, 400}, character);
    const ColumnLayout layout = layOutColumns(QStringLiteral("a\tb\tc"), stops, metrics);
    ASSERT_EQ(layout.columns.size(), 3);
    EXPECT_DOUBLE_EQ(layout.columns[0].x, 0);
    EXPECT_DOUBLE_EQ(layout.columns[1].x, 10 * character);
    EXPECT_DOUBLE_EQ(layout.columns[2].x, 100 * character);
    EXPECT_EQ(layout.columns[2].text, QStringLiteral("c"));
    EXPECT_DOUBLE_EQ(layout.width, 100 * character + metrics.horizontalAdvance(u'c'));
}

TEST(ColumnLayout, AnEmptyColumnTakesItsPlace)
{
    const QFontMetricsF metrics(QGuiApplication::font());
    const double character = averageCharacterWidth(metrics);
    const ColumnLayout layout = layOutColumns(QStringLiteral("\t\tc"), TabStops({40, 80}, character), metrics);
    ASSERT_EQ(layout.columns.size(), 3);
    EXPECT_DOUBLE_EQ(layout.columns[2].x, 20 * character);
}

TEST(ColumnLayout, AColumnThatIsTooWideIsCutWhereItMayBe)
{
    const QFontMetricsF metrics(QGuiApplication::font());
    const double character = averageCharacterWidth(metrics);
    const TabStops stops({40, 80}, character); // after 10 and 20 characters
    const QString wide(30, u'n');
    const ColumnLayout layout = layOutColumns(QStringLiteral("a\t") + wide + QStringLiteral("\tc"), stops, metrics, 1);
    ASSERT_EQ(layout.columns.size(), 3);
    EXPECT_TRUE(layout.columns[1].text.startsWith(QStringLiteral("nnn")));
    EXPECT_TRUE(layout.columns[1].text.endsWith(QChar(0x2026))) << "an ellipsis";
    EXPECT_LT(metrics.horizontalAdvance(layout.columns[1].text), 10 * character);
    EXPECT_DOUBLE_EQ(layout.columns[2].x, 20 * character);
}

TEST(ColumnLayout, NoOtherColumnIsCut)
{
    const QFontMetricsF metrics(QGuiApplication::font());
    const TabStops stops({40, 80}, averageCharacterWidth(metrics));
    const QString wide(30, u'n');
    EXPECT_EQ(layOutColumns(QStringLiteral("a\t") + wide + QStringLiteral("\tc"), stops, metrics).columns[1].text, wide)
        << "none is to be cut";
    EXPECT_EQ(layOutColumns(wide + QStringLiteral("\tb\tc"), stops, metrics, 1).columns[0].text, wide);
    EXPECT_EQ(layOutColumns(QStringLiteral("a\tb\t") + wide, stops, metrics, 2).columns[2].text, wide)
        << "nothing follows";
    EXPECT_EQ(layOutColumns(QStringLiteral("a\t") + wide, stops, metrics, 1).columns[1].text, wide)
        << "not a column for each place";
}

TEST(ColumnLayout, ALineBreakInsideAColumnShowsAsABlank)
{
    const QFontMetricsF metrics(QGuiApplication::font());
    const ColumnLayout layout = layOutColumns(QStringLiteral("one\r\ntwo"), TabStops(), metrics);
    EXPECT_EQ(layout.columns.first().text, QStringLiteral("one  two"));
}

} // namespace
} // namespace controls
