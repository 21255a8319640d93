#include "reports/report_list.h"

#include "runtime/run_time_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    }
}

TEST(ReportList, TellsItsListenerOfEveryChange)
{
    ReportList list;
    std::vector<ReportList::Change> changes;
    list.setListener([&](ReportList::Change change) { changes.push_back(change); });
    list.addItem(QStringLiteral("line"));
    list.setStyle(0, Red);
    list.setTabStops({10});
    list.clear();
    using Change = ReportList::Change;
    EXPECT_THAT(changes, testing::ElementsAre(Change::Added, Change::Restyled, Change::TabStops, Change::Cleared));
}

TEST(ReportList, TellsAfterTheChangeIsMade)
{
    ReportList list;
    qsizetype seen = -1;
    list.setListener([&](ReportList::Change) { seen = list.size(); });
    list.addItem(QStringLiteral("line"));
    EXPECT_EQ(seen, 1);
    list.clear();
    EXPECT_EQ(seen, 0);
}

} // namespace
} // namespace reports
