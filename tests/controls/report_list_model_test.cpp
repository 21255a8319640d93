#include "controls/report_list_model.h"

#include "controls/window_testing.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace controls {
namespace {

using testing_windows::handlePostedEvents;

QString textOf(const ReportListModel& model, int row)
{
    return model.data(model.index(row)).toString();
}

TEST(ReportListModel, ShowsTheLinesThatAreThereFromTheStart)
{
    reports::ReportList list;
    list.addItem(QStringLiteral("a\tb"), reports::Bold | reports::Red);
    const ReportListModel model(list);
    ASSERT_EQ(model.rowCount(), 1);
    EXPECT_EQ(textOf(model, 0), QStringLiteral("a\tb"));
    EXPECT_EQ(model.data(model.index(0), ReportListModel::StyleRole).toInt(), 5);
}

TEST(ReportListModel, TellsLinesThatAreAddedOneByOneTogether)
{
    reports::ReportList list;
    const ReportListModel model(list);
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    for (int line = 0; line < 1000; ++line) {
        list.addItem(QString::number(line));
    }
    handlePostedEvents();
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(model.rowCount(), 1000);
    list.addItem(QStringLiteral("one more"));
    handlePostedEvents();
    EXPECT_EQ(inserted.count(), 2);
    EXPECT_EQ(textOf(model, 1000), QStringLiteral("one more"));
}

TEST(ReportListModel, ForgetsClearedLinesAtOnce)
{
    reports::ReportList list;
    const ReportListModel model(list);
    list.addItem(QStringLiteral("old"));
    handlePostedEvents();
    list.addItem(QStringLiteral("never shown"));
    list.clear();
    EXPECT_EQ(model.rowCount(), 0);
    list.addItem(QStringLiteral("new"));
    handlePostedEvents();
    ASSERT_EQ(model.rowCount(), 1);
    EXPECT_EQ(textOf(model, 0), QStringLiteral("new"));
}

TEST(ReportListModel, TellsARewrittenLineAtOnce)
{
    reports::ReportList list;
    list.addItem(QStringLiteral("heading"));
    list.addItem(QStringLiteral("100.0\tButter"));
    const ReportListModel model(list);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    list.setText(1, QStringLiteral("50.0\tButter"));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex(), model.index(1));
    EXPECT_EQ(changed.at(0).at(1).toModelIndex(), model.index(1));
    EXPECT_EQ(textOf(model, 1), QStringLiteral("50.0\tButter"));
}

TEST(ReportListModel, SaysNothingOfALineThatIsRewrittenBeforeViewsKnowOfIt)
{
    reports::ReportList list;
    const ReportListModel model(list);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    list.addItem(QStringLiteral("draft"));
    list.setText(0, QStringLiteral("final"));
    EXPECT_EQ(changed.count(), 0);
    handlePostedEvents();
    ASSERT_EQ(model.rowCount(), 1);
    EXPECT_EQ(textOf(model, 0), QStringLiteral("final"));
}

TEST(ReportListModel, TellsRemovedLinesAtOnce)
{
    reports::ReportList list;
    for (int line = 0; line < 5; ++line) {
        list.addItem(QString::number(line));
    }
    ReportListModel model(list);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    list.removeLast(3);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0).at(1).toInt(), 2);
    EXPECT_EQ(removed.at(0).at(2).toInt(), 4);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST(ReportListModel, TellsOnlyOfRemovedLinesThatViewsKnowOf)
{
    reports::ReportList list;
    for (int line = 0; line < 4; ++line) {
        list.addItem(QString::number(line));
    }
    const ReportListModel model(list);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);

    list.addItem(QStringLiteral("never shown"));
    list.removeLast();
    EXPECT_EQ(removed.count(), 0);
    EXPECT_EQ(model.rowCount(), 4);

    // The last line that is known goes with two that are not.
    list.addItem(QStringLiteral("never shown"));
    list.addItem(QStringLiteral("never shown"));
    list.removeLast(3);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0).at(1).toInt(), 3);
    EXPECT_EQ(removed.at(0).at(2).toInt(), 3);
    EXPECT_EQ(model.rowCount(), 3);
    handlePostedEvents();
    EXPECT_EQ(inserted.count(), 0);
}

TEST(ReportListModel, ALineThatTakesARemovedOnesPlaceIsANewLine)
{
    reports::ReportList list;
    list.addItem(QStringLiteral("heading"));
    list.addItem(QStringLiteral("Total"));
    const ReportListModel model(list);
    list.removeLast();
    list.addItem(QStringLiteral("food"));
    list.addItem(QStringLiteral("Total grams"));
    EXPECT_EQ(model.rowCount(), 1);
    handlePostedEvents();
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(textOf(model, 1), QStringLiteral("food"));
    EXPECT_EQ(textOf(model, 2), QStringLiteral("Total grams"));
}

TEST(ReportListModel, LeavesTheListInPeaceOnceItIsGone)
{
    reports::ReportList list;
    auto model = std::make_unique<ReportListModel>(list);
    model.reset();
    list.addItem(QStringLiteral("a"));
    list.clear();
    EXPECT_TRUE(list.isEmpty());
}

} // namespace
} // namespace controls
