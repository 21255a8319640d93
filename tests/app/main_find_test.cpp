// Find and Find Next in the main window.
#include "app/main_window.h"

#include "controls/report_list_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;

class MainFind : public MainWindow
{
protected:
    controls::ReportListView& view() { return testing_windows::child<controls::ReportListView>(*window, "lstView"); }

    void answer(const char* text)
    {
        EXPECT_CALL(dialogs, askText(&*window, QString("Find what?"), QString()))
            .WillOnce(Return(QString::fromLatin1(text)));
    }

    void find(const char* text)
    {
        answer(text);
        choose("mnuEdit", "mnuFind");
    }

    void findNext() { choose("mnuEdit", "mnuFindNext"); }

    /// Lines "line 0" to "line 99", every tenth of them with a meal.
    void fill()
    {
        for (int line = 0; line < 100; ++line) {
            state().lstView.addItem(QStringLiteral("line %1%2").arg(line).arg(line % 10 == 5 ? "\tMeal + 2" : ""));
        }
    }
};

TEST_F(MainFind, CapitalsFindALineWithSmallLetters)
{
    fill();
    find("MEAL");
    EXPECT_THAT(view().selectedLines(), ElementsAre(5));
    EXPECT_EQ(view().currentIndex().row(), 5);
}

TEST_F(MainFind, TheFoundLineStandsBelowTenOthers)
{
    fill();
    find("line 45");
    EXPECT_EQ(view().topIndex(), 35);
}

TEST_F(MainFind, AMatchAmongTheFirstTenLinesShowsTheListFromItsTop)
{
    fill();
    view().setTopIndex(50);
    find("line 4");
    EXPECT_EQ(view().topIndex(), 0);
    EXPECT_THAT(view().selectedLines(), ElementsAre(4));
}

TEST_F(MainFind, EachFindLeavesTheLinesFoundBeforeSelected)
{
    fill();
    find("meal");
    findNext();
    findNext();
    EXPECT_THAT(view().selectedLines(), ElementsAre(5, 15, 25));
    EXPECT_EQ(view().currentIndex().row(), 25);
    EXPECT_EQ(view().topIndex(), 15);
}

TEST_F(MainFind, AfterTheLastMatchFindNextFindsNothingMore)
{
    fill();
    find("line 99");
    findNext();
    findNext();
    EXPECT_THAT(view().selectedLines(), ElementsAre(99));
}

TEST_F(MainFind, ACancelledFindMatchesTheFirstLine)
{
    fill();
    find("");
    EXPECT_THAT(view().selectedLines(), ElementsAre(0));
}

TEST_F(MainFind, WhatIsNotThereLeavesTheListAsItWas)
{
    fill();
    find("line 45");
    find("breakfast");
    findNext();
    EXPECT_THAT(view().selectedLines(), ElementsAre(45));
    EXPECT_EQ(view().topIndex(), 35);
}

TEST_F(MainFind, InAnEmptyListNothingIsFound)
{
    find("meal");
    EXPECT_THAT(view().selectedLines(), IsEmpty());
}

TEST_F(MainFind, HasItsKeys)
{
    fill();
    answer("meal");
    QTest::keyClick(&*window, Qt::Key_F, Qt::ControlModifier);
    QTest::keyClick(&*window, Qt::Key_F3);
    EXPECT_THAT(view().selectedLines(), ElementsAre(5, 15));
}

TEST_F(MainFind, BeyondTheLinesThatTheSearchCanCountThereIsAnError)
{
    for (int line = 0; line <= 32768; ++line) {
        state().lstView.addItem(QStringLiteral("x"));
    }
    EXPECT_CALL(dialogs, showError(&*window, testing::Truly([](const QString& text) {
                    return text.startsWith("Run-time error '6':");
                }),
                                   QString("Quillon")));
    find("y");
}

} // namespace
} // namespace app
