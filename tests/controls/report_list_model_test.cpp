#include "controls/report_list_model.h"

#include "controls/window_testing.h"

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
    for (int line = 0; line < 1000; ++line)
        list.addItem(QString::number(line));
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
