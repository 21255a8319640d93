#include "reports/report_list.h"

#include "runtime/run_time_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace reports {
namespace {

TEST(ReportList, KeepsLinesWithTheirStyles)
{
    ReportList list;
    list.addItem(QStringLiteral("Heading\tof two columns"), Bold | Underlined);
    list.addItem(QString());
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list.at(0).text, QStringLiteral("Heading\tof two columns"));
    EXPECT_EQ(list.at(0).style, 3);
    EXPECT_EQ(list.at(1).text, QString());
    EXPECT_EQ(list.at(1).style, Plain) << "a line added without a style is plain";
    list.setStyle(1, Green);
    EXPECT_EQ(list.at(1).style, 16);
}

TEST(ReportList, StylesAreTheBitsThatPrintingReads)
{
    EXPECT_EQ(Bold, 1);
    EXPECT_EQ(Underlined, 2);
    EXPECT_EQ(Red, 4);
    EXPECT_EQ(Blue, 8);
    EXPECT_EQ(Green, 16);
}

TEST(ReportList, ClearingKeepsTheTabStops)
{
    ReportList list;
    list.setTabStops({30, 110});
    list.addItem(QStringLiteral("line"));
    list.clear();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.tabStops(), QList<int>({30, 110}));
}

TEST(ReportList, ALineThatIsNotThereIsOutOfRange)
{
    ReportList list;
    list.addItem(QStringLiteral("only line"));
    for (const qsizetype line : {qsizetype{-1}, qsizetype{1}, qsizetype{1000}}) {
        const auto expectOutOfRange = [line](auto action) {
            try {
                action();
                ADD_FAILURE() << "line " << line << " is there";
            } catch (const runtime::RunTimeError& error) {
                EXPECT_EQ(error.number(), 9);
            }
        };
        expectOutOfRange([&] { static_cast<void>(list.at(line)); });
        expectOutOfRange([&] { list.setStyle(line, Bold); });
        expectOutOfRange([&] { list.setText(line, QStringLiteral("text")); });
    }
}

TEST(ReportList, ARewrittenLineKeepsItsPlaceAndStyle)
{
    ReportList list;
    list.addItem(QStringLiteral("first"));
    list.addItem(QStringLiteral("100.0\tButter"), Bold);
    list.addItem(QStringLiteral("last"));
    list.setText(1, QStringLiteral("50.0\tButter"));
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list.at(1).text, QStringLiteral("50.0\tButter"));
    EXPECT_EQ(list.at(1).style, Bold);
    EXPECT_EQ(list.at(2).text, QStringLiteral("last"));
}

TEST(ReportList, RemovesLinesFromItsEnd)
{
    ReportList list;
    for (const char* text : {"a", "b", "c", "d", "e"}) {
        list.addItem(QString::fromLatin1(text));
    }
    list.removeLast();
    list.removeLast(2);
    list.removeLast(0);
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list.at(1).text, QStringLiteral("b"));
    list.removeLast(2);
    EXPECT_TRUE(list.isEmpty());
}

TEST(ReportList, RemovingMoreLinesThanThereAreIsOutOfRangeAndRemovesNone)
{
    ReportList list;
    list.addItem(QStringLiteral("a"));
    list.addItem(QStringLiteral("b"));
    for (const qsizetype count : {qsizetype{3}, qsizetype{-1}}) {
        try {
            list.removeLast(count);
            ADD_FAILURE() << "removed " << count << " of two lines";
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.number(), 9);
        }
    }
    EXPECT_EQ(list.size(), 2);
}

TEST(ReportList, TellsItsListenerOfEveryChange)
{
    ReportList list;
    std::vector<std::pair<ReportList::Change, qsizetype>> changes;
    list.setListener([&](ReportList::Change change, qsizetype line) { changes.emplace_back(change, line); });
    list.addItem(QStringLiteral("line"));
    list.addItem(QStringLiteral("line"));
    list.addItem(QStringLiteral("line"));
    list.setStyle(0, Red);
    list.setText(1, QStringLiteral("other"));
    list.setTabStops({10});
    list.removeLast(2);
    list.clear();
    using Change = ReportList::Change;
    using testing::Pair;
    EXPECT_THAT(changes,
                testing::ElementsAre(Pair(Change::Added, 0), Pair(Change::Added, 1), Pair(Change::Added, 2),
                                     Pair(Change::Restyled, 0), Pair(Change::Rewritten, 1), Pair(Change::TabStops, -1),
                                     Pair(Change::Removed, 1), Pair(Change::Cleared, -1)));
}

TEST(ReportList, TellsAfterTheChangeIsMade)
{
    ReportList list;
    qsizetype seen = -1;
    list.setListener([&](ReportList::Change, qsizetype) { seen = list.size(); });
    list.addItem(QStringLiteral("line"));
    EXPECT_EQ(seen, 1);
    list.addItem(QStringLiteral("line"));
    list.removeLast();
    EXPECT_EQ(seen, 1);
    list.clear();
    EXPECT_EQ(seen, 0);
}

} // namespace
} // namespace reports
