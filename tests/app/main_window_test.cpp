#include "app/main_window.h"

#include "data/diary_location.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <QLabel>
#include <QMenuBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_windows::child;
using testing_windows::handlePostedEvents;
using testing_windows::showActive;

constexpr auto kFilterAtStart = "where When > Cdate('01/03/2002') and When < Cdate('04/03/2002')";

TEST_F(MainWindow, OnTheThirdOfMarchFromIsTheFirstAndToTheFourth)
{
    EXPECT_EQ(field("txtFrom").text().toStdString(), "01/03/2002");
    EXPECT_EQ(field("txtTo").text().toStdString(), "04/03/2002");
    EXPECT_EQ(state().strWhere.toStdString(), kFilterAtStart);
    EXPECT_TRUE(state().lstView.isEmpty());
}

TEST_F(MainWindow, TheFilterAtStartCrossesMonthAndYear)
{
    open("31/12/1999 23:59");
    EXPECT_EQ(field("txtFrom").text().toStdString(), "29/12/1999");
    EXPECT_EQ(field("txtTo").text().toStdString(), "01/01/2000");
}

TEST_F(MainWindow, HasItsControlsAndCaptions)
{
    EXPECT_EQ(window->windowTitle().toStdString(), "Quillon");
    const auto& bar = child<QFrame>(*window, "fraToolBar");
    EXPECT_EQ(bar.toolTip().toStdString(), "SQL Filter Bar - Allows data to be sorted using SQL like Query Language");
    EXPECT_LT(bar.font().pointSizeF(), window->font().pointSizeF()) << "small fonts";
    EXPECT_EQ(child<QLabel>(bar, "lblFilter").text().toStdString(), "Filter:");
    EXPECT_EQ(child<QLabel>(bar, "lblFrom").text().toStdString(), "From .");
    EXPECT_EQ(child<QLabel>(bar, "lblTo").text().toStdString(), "To ...");
    EXPECT_EQ(button("cmdFrom").text().toStdString(), "...");
    EXPECT_EQ(button("cmdTo").text().toStdString(), "...");
    EXPECT_EQ(button("cmdClear").text().toStdString(), "Clear");
    EXPECT_EQ(button("cmdApply").text().toStdString(), "Apply");
    EXPECT_EQ(child<QComboBox>(bar, "cboType").currentText().toStdString(), "Type");
    EXPECT_FALSE(child<QComboBox>(bar, "cboType").isEnabled());
    EXPECT_FALSE(window->windowIcon().isNull());
}

TEST_F(MainWindow, TheFilterBarIsOneRowInOrder)
{
    int right = -1;
    for (const char* name :
         {"lblFilter", "lblFrom", "txtFrom", "cmdFrom", "lblTo", "txtTo", "cmdTo", "cboType", "cmdClear", "cmdApply"}) {
        const auto& control = child<QWidget>(*window, name);
        EXPECT_GT(control.x(), right) << name;
        right = control.geometry().right();
        EXPECT_TRUE(control.parentWidget()->rect().contains(control.geometry())) << name;
    }
}

TEST_F(MainWindow, TabGoesThroughTheFilterToTheReport)
{
    field("txtFrom").setFocus();
    std::vector<std::string> visited;
    for (int step = 0; step < 8; ++step) {
        visited.push_back(window->focusWidget()->objectName().toStdString());
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(visited,
                ElementsAre("txtFrom", "cmdFrom", "txtTo", "cmdTo", "cmdClear", "cmdApply", "lstView", "txtFrom"));
}

TEST_F(MainWindow, FromAProgramInCQuillonTheDiaryIsBesideIt)
{
    const auto pathFor = [this](const char* folder) {
        frmMain started(World{
            .clock = clock, .dialogs = dialogs, .printers = printers, .programFolder = folder, .fixedDiaryPath = {}});
        return started.state().strPath;
    };
    EXPECT_EQ(pathFor("C:\\Quillon").toStdString(), "C:\\Quillon\\Nutrition.mdb");
    EXPECT_EQ(pathFor("C:\\quillon"), data::fixedDiaryPath()) << "case matters";
    EXPECT_EQ(pathFor("C:\\Quillon\\bin"), data::fixedDiaryPath());
}

TEST_F(MainWindow, ResizingKeepsTheBarOnTopAndTheListBelow)
{
    auto& bar = child<QFrame>(*window, "fraToolBar");
    const int height = bar.height();
    for (const QSize size : {QSize(780, 400), QSize(640, 700)}) {
        window->resize(size);
        handlePostedEvents();
        const QSize inner = window->centralWidget()->size();
        EXPECT_EQ(bar.geometry(), QRect(0, 0, inner.width(), height));
        EXPECT_EQ(list().geometry(), QRect(0, height, inner.width(), inner.height() - height));
    }
}

TEST_F(MainWindow, MinimisingMovesOnlyTheFilterBar)
{
    auto& bar = child<QFrame>(*window, "fraToolBar");
    const QRect anywhere(7, 70, 100, 80);
    bar.move(9, 9);
    list().setGeometry(anywhere);
    window->showMinimized();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->isMinimized(); }));
    handlePostedEvents();
    EXPECT_EQ(bar.geometry(), QRect(0, 0, window->centralWidget()->width(), bar.height()));
    EXPECT_EQ(list().geometry(), anywhere);
}

TEST_F(MainWindow, ApplyTakesTheDatesAsTypedAndEmptiesTheReport)
{
    state().lstView.addItem("an old line");
    type("txtFrom", "1/mar/2002");
    type("txtTo", "2/3/2002 14:30");
    click("cmdApply");
    EXPECT_EQ(state().strWhere.toStdString(), "where When > Cdate('1/mar/2002') and When < Cdate('2/3/2002 14:30')");
    EXPECT_TRUE(state().lstView.isEmpty());
}

TEST_F(MainWindow, ApplyWithAnEmptyFieldKeepsTheFilterAndEmptiesTheReport)
{
    state().lstView.addItem("an old line");
    field("txtTo").clear();
    click("cmdApply");
    EXPECT_EQ(state().strWhere.toStdString(), kFilterAtStart);
    EXPECT_TRUE(state().lstView.isEmpty());

    state().lstView.addItem("an old line");
    field("txtTo").setText("04/03/2002");
    field("txtTo").setFocus();
    field("txtFrom").clear();
    click("cmdApply");
    EXPECT_EQ(state().strWhere.toStdString(), kFilterAtStart);
    EXPECT_TRUE(state().lstView.isEmpty());
}

TEST_F(MainWindow, ClearRemovesFilterDatesAndReport)
{
    state().lstView.addItem("an old line");
    click("cmdClear");
    EXPECT_EQ(state().strWhere.toStdString(), "");
    EXPECT_TRUE(field("txtFrom").text().isEmpty());
    EXPECT_TRUE(field("txtTo").text().isEmpty());
    EXPECT_TRUE(state().lstView.isEmpty());
    click("cmdApply");
    EXPECT_EQ(state().strWhere.toStdString(), "") << "two empty dates bring no filter back";
}

TEST_F(MainWindow, ClearedDatesDisturbNobodyUntilOneIsEntered)
{
    click("cmdClear");
    QTest::mouseClick(&list(), Qt::LeftButton);
    click("cmdApply");
    handlePostedEvents();
}

TEST_F(MainWindow, LeavingAnEmptyFromFieldShowsTheMessageAndReturns)
{
    type("txtFrom", "");
    QTest::keyClick(&field("txtFrom"), Qt::Key_Tab);
    EXPECT_TRUE(field("txtFrom").hasFocus());
    expectDateMessage();
    handlePostedEvents();
    EXPECT_TRUE(field("txtFrom").hasFocus());
}

TEST_F(MainWindow, TheMessageForAWrongToDateIsTheSame)
{
    for (const char* wrong : {"", "31/02/2002", "03/13/2002", "yesterday"}) {
        type("txtTo", wrong);
        QTest::mouseClick(&list(), Qt::LeftButton);
        expectDateMessage();
        handlePostedEvents();
        EXPECT_TRUE(field("txtTo").hasFocus()) << wrong;
    }
}

TEST_F(MainWindow, ADateLetsTheUserLeave)
{
    type("txtFrom", "wrong");
    QTest::keyClick(&field("txtFrom"), Qt::Key_Tab);
    expectDateMessage();
    handlePostedEvents();
    type("txtFrom", "1/3/2002");
    QTest::keyClick(&field("txtFrom"), Qt::Key_Tab);
    handlePostedEvents();
    EXPECT_TRUE(button("cmdFrom").hasFocus());
}

TEST_F(MainWindow, TwoEmptyFieldsDoNotPassTheFocusToAndFro)
{
    click("cmdClear");
    field("txtFrom").setFocus();
    QTest::mouseClick(&field("txtTo"), Qt::LeftButton);
    expectDateMessage();
    handlePostedEvents();
    EXPECT_TRUE(field("txtFrom").hasFocus());
}

TEST_F(MainWindow, ClearAndApplyComeAfterADateHasBeenTyped)
{
    state().lstView.addItem("a line");
    type("txtFrom", "wrong");
    for (const char* name : {"cmdClear", "cmdApply"}) {
        click(name);
        expectDateMessage();
        handlePostedEvents();
        EXPECT_TRUE(field("txtFrom").hasFocus());
        EXPECT_EQ(field("txtFrom").text().toStdString(), "wrong");
        EXPECT_EQ(state().strWhere.toStdString(), kFilterAtStart);
        EXPECT_THAT(lines(), ElementsAre("a line"));
    }
    type("txtFrom", "1/3/2002");
    click("cmdClear");
    EXPECT_TRUE(field("txtFrom").text().isEmpty());
    EXPECT_TRUE(field("txtTo").text().isEmpty());
}

TEST_F(MainWindow, TheWindowCanBeClosedWithAWrongDate)
{
    type("txtFrom", "wrong");
    window->close();
    handlePostedEvents();
    EXPECT_FALSE(window->isVisible());

    open("03/03/2002 10:00");
    type("txtFrom", "wrong");
    choose("mnuFile", "mnuExit");
    handlePostedEvents();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindow, ClosedRightAfterAWrongDateNoMessageComesLate)
{
    type("txtFrom", "wrong");
    QTest::keyClick(&field("txtFrom"), Qt::Key_Tab);
    window->close();
    handlePostedEvents();
}

TEST_F(MainWindow, FieldsAndButtonsHaveNamesForScreenReaders)
{
    EXPECT_EQ(field("txtFrom").accessibleName().toStdString(), "From date");
    EXPECT_EQ(field("txtTo").accessibleName().toStdString(), "To date");
    EXPECT_FALSE(button("cmdFrom").accessibleName().isEmpty());
    EXPECT_FALSE(list().accessibleName().isEmpty());
}

/// A clock whose battery is flat.
class BrokenClock : public runtime::Clock
{
public:
    [[nodiscard]] runtime::Date now() const override { throw runtime::RunTimeError(runtime::ErrorNumber::Overflow); }
};

TEST(OpenMainWindow, ShowsTheWindow)
{
    const runtime::FixedClock clock(runtime::toDate(QStringLiteral("03/03/2002 10:00")));
    controls::StrictDialogs dialogs;
    RecordingPrinters printers;
    const auto window = openMainWindow({clock, dialogs, printers, {}, {}});
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
}

TEST(OpenMainWindow, SaysWhatKeepsTheWindowFromOpening)
{
    const BrokenClock clock;
    controls::StrictDialogs dialogs;
    RecordingPrinters printers;
    EXPECT_CALL(dialogs, showError(nullptr, QString("Run-time error '6':\n\nOverflow"), QString("Quillon")));
    EXPECT_EQ(openMainWindow({clock, dialogs, printers, {}, {}}), nullptr);
}

} // namespace
} // namespace app
