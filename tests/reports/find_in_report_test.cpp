#include "reports/find_in_report.h"

#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"

#include <QStringList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::Optional;

ReportList listOf(const QStringList& lines)
{
    ReportList list;
    for (const QString& line : lines) {
        list.addItem(line);
    }
    return list;
}

ReportList listOfEmptyLines(int count)
{
    ReportList list;
    for (int line = 0; line < count; ++line) {
        list.addItem(QString());
    }
    return list;
}

/// The daily analysis of a short day.
ReportList shortReport()
{
    return listOf({QStringLiteral("Date / Time\tMeal\tMeal + 2"), QString(), QStringLiteral("Tuesday 05 Mar 2002"),
                   QStringLiteral("05 Mar 2002 12:00\t05.2\t08.2"), QStringLiteral("05 Mar 2002 08:00\t05.6\t10.2")});
}

constexpr auto kNone = std::nullopt;

TEST(FindInReport, FindsWithoutRegardToCase)
{
    FindInReport search;
    EXPECT_THAT(search.find(listOf({QString(), QStringLiteral("Date\tMeal + 2")}), QStringLiteral("MEAL")),
                Optional(1));
    EXPECT_THAT(search.find(listOf({QStringLiteral("TUESDAY")}), QStringLiteral("tuesday")), Optional(0));
    EXPECT_THAT(search.find(listOf({QStringLiteral("1 M\u00c4RZ")}), QStringLiteral("m\u00e4rz")), Optional(0));
}

TEST(FindInReport, FindsTheTextAnywhereInALine)
{
    FindInReport search;
    const ReportList list = shortReport();
    EXPECT_THAT(search.find(list, QStringLiteral("05 Mar")), Optional(2));
    EXPECT_THAT(search.find(list, QStringLiteral("10.2")), Optional(4));
    EXPECT_THAT(search.find(list, QStringLiteral("Date")), Optional(0));
}

TEST(FindInReport, ATabIsACharacterLikeAnyOther)
{
    FindInReport search;
    EXPECT_THAT(search.find(shortReport(), QStringLiteral("12:00\t05")), Optional(3));
    EXPECT_EQ(search.find(shortReport(), QStringLiteral("12:00 05")), kNone);
}

TEST(FindInReport, ThereAreNoWildcards)
{
    FindInReport search;
    EXPECT_EQ(search.find(shortReport(), QStringLiteral("M*al")), kNone);
    EXPECT_EQ(search.find(shortReport(), QStringLiteral("Me.l")), kNone);
    EXPECT_THAT(search.find(shortReport(), QStringLiteral("Meal + 2")), Optional(0));
}

TEST(FindInReport, AnEmptyTextIsInTheFirstLine)
{
    FindInReport search;
    EXPECT_THAT(search.find(shortReport(), QString()), Optional(0));
    EXPECT_THAT(search.find(listOf({QString()}), QString()), Optional(0)) << "an empty line, too";
}

TEST(FindInReport, AnEmptyListHoldsNothing)
{
    FindInReport search;
    EXPECT_EQ(search.find(ReportList(), QStringLiteral("Meal")), kNone);
    EXPECT_EQ(search.find(ReportList(), QString()), kNone);
    EXPECT_EQ(search.findNext(ReportList()), kNone);
}

TEST(FindInReport, FindNextGoesOnAfterTheLineFound)
{
    FindInReport search;
    const ReportList list = shortReport();
    EXPECT_THAT(search.find(list, QStringLiteral("05 mar")), Optional(2));
    EXPECT_THAT(search.findNext(list), Optional(3));
    EXPECT_THAT(search.findNext(list), Optional(4));
    EXPECT_EQ(search.findNext(list), kNone);
}

TEST(FindInReport, FindNextNeverGoesRoundToTheFirstLine)
{
    FindInReport search;
    const ReportList list = shortReport();
    EXPECT_THAT(search.find(list, QStringLiteral("Meal")), Optional(0));
    EXPECT_EQ(search.findNext(list), kNone);
    EXPECT_EQ(search.findNext(list), kNone);
    EXPECT_THAT(search.find(list, QStringLiteral("Meal")), Optional(0)) << "only Find begins anew";
}

TEST(FindInReport, FindNextAfterAFailedSearchFindsNothing)
{
    FindInReport search;
    const ReportList list = shortReport();
    EXPECT_EQ(search.find(list, QStringLiteral("insulin")), kNone);
    EXPECT_EQ(search.findNext(list), kNone);
}

TEST(FindInReport, FindNextBeforeAnyFindMatchesEveryLineButTheFirst)
{
    FindInReport search;
    const ReportList list = listOfEmptyLines(3);
    EXPECT_THAT(search.findNext(list), Optional(1));
    EXPECT_THAT(search.findNext(list), Optional(2));
    EXPECT_EQ(search.findNext(list), kNone);
}

TEST(FindInReport, FindNextGoesOnInAListThatHasGrown)
{
    FindInReport search;
    ReportList list = listOf({QStringLiteral("Average = 6.7"), QString()});
    EXPECT_THAT(search.find(list, QStringLiteral("average")), Optional(0));
    EXPECT_EQ(search.findNext(list), kNone);
    list.addItem(QStringLiteral("Average = 6.8"));
    EXPECT_EQ(search.findNext(list), kNone) << "the line after the end of that time is passed over";
    list.addItem(QStringLiteral("Average = 6.9"));
    list.addItem(QStringLiteral("Average = 7.0"));
    EXPECT_THAT(search.findNext(list), Optional(4));
}

TEST(FindInReport, TheLastPositionIsThatOfASixteenBitNumber)
{
    constexpr int kLinesInReach = 32768;
    FindInReport search;
    ReportList list = listOfEmptyLines(kLinesInReach - 1);
    EXPECT_EQ(search.find(list, QStringLiteral("Meal")), kNone) << "the position past the end is 32,767";

    list.addItem(QStringLiteral("Meal"));
    EXPECT_THAT(search.find(list, QStringLiteral("Meal")), Optional(kLinesInReach - 1));
}

TEST(FindInReport, BeyondThatPositionItOverflowsAndSaysWhatToDo)
{
    FindInReport search;
    ReportList list = listOfEmptyLines(32768);
    list.addItem(QStringLiteral("Meal"));
    const auto error = requiredErrorOf([&] { return search.find(list, QStringLiteral("Meal")); });
    EXPECT_EQ(error.number(), 6);
    EXPECT_EQ(error.hint().toStdString(),
              "Find looks no further than line 32,768 of the list; set a shorter filter and choose the report again to "
              "reach the rest.");
    EXPECT_EQ(requiredErrorOf([&] { return search.findNext(list); }).number(), 6);
    EXPECT_THAT(search.find(list, QString()), Optional(0)) << "a new search begins at the first line";
}

} // namespace
} // namespace reports
