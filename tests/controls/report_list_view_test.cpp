#include "controls/report_list_view.h"

#include "controls/report_list_model.h"
#include "controls/window_testing.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace controls {
namespace {

using testing::ElementsAre;
using testing_windows::handlePostedEvents;
using testing_windows::showActive;

/// Counts how often views ask for a line.
class CountingModel : public ReportListModel
{
public:
    using ReportListModel::ReportListModel;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override
    {
        ++asked;
        return ReportListModel::data(index, role);
    }
    mutable qint64 asked = 0;
};

class ReportListViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        view.resize(400, 300);
        view.showLines(model);
        showActive(view);
    }

    void addLines(int count)
    {
        for (int line = 0; line < count; ++line) {
            list.addItem(QStringLiteral("line\t%1").arg(line));
        }
        handlePostedEvents();
    }

    void click(int line, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint place = view.visualRect(model.index(line)).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, {20, place.y()});
    }

    reports::ReportList list;
    CountingModel model{list};
    ReportListView view;
};

TEST_F(ReportListViewTest, AClickSelectsOneLine)
{
    addLines(10);
    click(2);
    click(4);
    EXPECT_THAT(view.selectedLines(), ElementsAre(4));
}

TEST_F(ReportListViewTest, SelectOnlySelectsALineJustAddedAndBringsItIntoSight)
{
    addLines(10);
    click(2);
    for (int line = 10; line < 100; ++line) {
        list.addItem(QStringLiteral("line\t%1").arg(line));
    }
    view.selectOnly(99);
    EXPECT_THAT(view.selectedLines(), ElementsAre(99));
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(model.index(99))));
    view.selectOnly(0);
    EXPECT_THAT(view.selectedLines(), ElementsAre(0));
    EXPECT_EQ(view.topIndex(), 0);
}

TEST_F(ReportListViewTest, ShiftAndAClickSelectTheLinesBetween)
{
    addLines(10);
    click(5);
    click(2, Qt::ShiftModifier);
    EXPECT_THAT(view.selectedLines(), ElementsAre(2, 3, 4, 5));
}

TEST_F(ReportListViewTest, CtrlAndAClickAddAndTakeAwaySingleLines)
{
    addLines(10);
    click(7);
    click(1, Qt::ControlModifier);
    click(4, Qt::ControlModifier);
    click(7, Qt::ControlModifier);
    EXPECT_THAT(view.selectedLines(), ElementsAre(1, 4));
}

TEST_F(ReportListViewTest, TheKeyboardSelectsToo)
{
    addLines(10);
    click(3);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(view.selectedLines(), ElementsAre(3, 4, 5));
    QTest::keyClick(&view, Qt::Key_Home);
    EXPECT_THAT(view.selectedLines(), ElementsAre(0));
    QTest::keyClick(&view, Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(view.selectedLines().size(), 10);
}

TEST_F(ReportListViewTest, CtrlCCopiesTheSelectedLinesFromTopToBottom)
{
    list.addItem(QStringLiteral("a\tb"));
    list.addItem(QStringLiteral("c"));
    list.addItem(QStringLiteral("d\te"));
    handlePostedEvents();
    click(2);
    click(0, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("a\tb\nd\te\n"));
}

TEST_F(ReportListViewTest, CtrlCWithoutASelectionLeavesTheClipboard)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    addLines(3);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("kept"));
}

TEST_F(ReportListViewTest, TheTopLineCanBeSet)
{
    addLines(1000);
    view.setTopIndex(500);
    EXPECT_EQ(view.topIndex(), 500);
    EXPECT_EQ(view.indexAt({20, 2}).row(), 500);
}

TEST_F(ReportListViewTest, ATopLineBeforeTheFirstShowsTheFirst)
{
    addLines(1000);
    view.setTopIndex(500);
    view.setTopIndex(-7);
    EXPECT_EQ(view.topIndex(), 0);
}

TEST_F(ReportListViewTest, ATopLineNearTheEndKeepsTheLastPageFull)
{
    addLines(1000);
    view.setTopIndex(999);
    EXPECT_LT(view.topIndex(), 995);
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(model.index(999))));
}

TEST_F(ReportListViewTest, TheTopLineCanBeSetAmongLinesThatWereJustAdded)
{
    for (int line = 0; line < 1000; ++line) {
        list.addItem(QString::number(line));
    }
    view.setTopIndex(300);
    EXPECT_EQ(view.topIndex(), 300);
}

TEST_F(ReportListViewTest, AClearedListStartsAtTheTopWithNothingSelected)
{
    addLines(1000);
    view.setTopIndex(500);
    click(502);
    list.clear();
    EXPECT_TRUE(view.selectedLines().isEmpty());
    addLines(1000);
    EXPECT_EQ(view.topIndex(), 0);
    EXPECT_TRUE(view.selectedLines().isEmpty());
}

TEST_F(ReportListViewTest, LinesThatAreAddedLeaveTopLineAndSelection)
{
    addLines(1000);
    click(3);
    view.setTopIndex(500);
    addLines(10);
    EXPECT_EQ(view.topIndex(), 500);
    EXPECT_THAT(view.selectedLines(), ElementsAre(3));
}

TEST_F(ReportListViewTest, ALineThatIsRemovedIsNoLongerSelected)
{
    addLines(10);
    click(3);
    click(9, Qt::ControlModifier);
    list.removeLast();
    EXPECT_THAT(view.selectedLines(), ElementsAre(3));
    list.addItem(QStringLiteral("in its place"));
    handlePostedEvents();
    EXPECT_THAT(view.selectedLines(), ElementsAre(3));
}

TEST_F(ReportListViewTest, ARewrittenLineIsDrawnAnewAndStaysSelected)
{
    addLines(10);
    click(3);
    const auto picture = [&] { return view.viewport()->grab(view.visualRect(model.index(3))).toImage(); };
    const QImage before = picture();
    list.setText(3, QStringLiteral("other words"));
    handlePostedEvents();
    EXPECT_NE(picture(), before);
    EXPECT_THAT(view.selectedLines(), ElementsAre(3));
}

TEST_F(ReportListViewTest, ShortLinesNeedNoHorizontalScrolling)
{
    addLines(3);
    EXPECT_TRUE(QTest::qWaitFor([&] { return model.asked > 0; }));
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
}

TEST_F(ReportListViewTest, ALongLineCanBeScrolledToItsEnd)
{
    const QString text(300, u'w');
    list.addItem(text);
    const int width = QFontMetrics(view.font()).horizontalAdvance(text);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return view.horizontalScrollBar()->maximum() + view.viewport()->width() >= width; }));
}

TEST_F(ReportListViewTest, ALongLineFurtherDownCanBeScrolledOnceItIsInSight)
{
    addLines(500);
    list.addItem(QString(300, u'w'));
    handlePostedEvents();
    view.setTopIndex(500);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.horizontalScrollBar()->maximum() > 1000; }));
}

TEST_F(ReportListViewTest, AColumnIsDrawnAtItsTabStop)
{
    list.setTabStops({80});
    list.addItem(QStringLiteral("\t|"));
    handlePostedEvents();
    const QImage picture = view.viewport()->grab().toImage();
    const QColor background = view.palette().color(QPalette::Base);
    const int middle = view.visualRect(model.index(0)).center().y();
    int first = 0;
    while (first < picture.width() && picture.pixelColor(first, middle) == background) {
        ++first;
    }
    const double stop = 20 * averageCharacterWidth(QFontMetricsF(view.font()));
    EXPECT_NEAR(first, stop, 8) << "a margin and the side bearing of the bar away from the stop";
}

TEST_F(ReportListViewTest, AStyleCodeDoesNotShowOnTheScreen)
{
    list.addItem(QStringLiteral("text"));
    list.addItem(QStringLiteral("text"), reports::Bold | reports::Red);
    handlePostedEvents();
    const QImage picture = view.viewport()->grab().toImage();
    const QRect plain = view.visualRect(model.index(0));
    const QRect styled = view.visualRect(model.index(1));
    EXPECT_EQ(picture.copy(plain.adjusted(0, 1, 0, -1)), picture.copy(styled.adjusted(0, 1, 0, -1)));
}

TEST_F(ReportListViewTest, AMillionLinesCostNoMoreQuestionsThanAPageOfThem)
{
    for (int line = 0; line < 1'000'000; ++line) {
        list.addItem(QStringLiteral("line\t7.0"));
    }
    handlePostedEvents();
    view.grab();
    view.setTopIndex(500'000);
    view.grab();
    EXPECT_EQ(view.indexAt({20, 2}).row(), 500'000);
    // Around twenty lines are in sight. Each is asked for its text and a handful of decorations, some times over.
    EXPECT_LT(model.asked, 2'000);
}

TEST_F(ReportListViewTest, AScreenReaderFindsTheLines)
{
    addLines(3);
    QAccessibleInterface* shown = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->role(), QAccessible::List);
    EXPECT_EQ(shown->childCount(), 3);
}

TEST(ReportListView, OutlivesItsModel)
{
    reports::ReportList list;
    list.addItem(QStringLiteral("a"));
    ReportListView view;
    {
        ReportListModel model(list);
        view.showLines(model);
        showActive(view);
    }
    view.setTopIndex(3);
    EXPECT_EQ(view.topIndex(), 0);
    EXPECT_TRUE(view.selectedText().isEmpty());
}

} // namespace
} // namespace controls
