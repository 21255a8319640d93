#include "app/main_menu.h"

#include "app/main_window.h"

#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QStatusBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace app {
namespace {

using testing::ElementsAre;

std::string line(const QAction& action)
{
    const QString caption = action.isSeparator() ? "-" : action.text();
    const QString shortcut = action.shortcut().isEmpty() ? "" : " [" + action.shortcut().toString() + "]";
    return "  " + (action.objectName() + ": " + caption + shortcut).toStdString();
}

TEST_F(MainWindow, HasItsMenusInOrder)
{
    std::vector<std::string> lines;
    for (const QAction* bar : window->menuBar()->actions()) {
        lines.push_back((bar->menu()->objectName() + ": " + bar->text()).toStdString());
        for (const QAction* entry : bar->menu()->actions()) {
            lines.push_back(line(*entry));
        }
    }
    EXPECT_THAT(lines, ElementsAre("mnuFile: File",                                    //
                                   "  mnuExport: Export",                              //
                                   "  mnuImport: Import",                              //
                                   "  mnuExit: Exit",                                  //
                                   "mnuAdd: Add",                                      //
                                   "  mnuBloodSugar: Blood Sugar Reading",             //
                                   "  mnuImportBlood: Import Blood Sugar Data",        //
                                   "  mnuAddMeal: Meal",                               //
                                   "  mnuAddIngredient: Ingredient",                   //
                                   "mnuEdit: Edit",                                    //
                                   "  mnuEditBloodSugar: Blood Sugar",                 //
                                   "  mnuEditMealTime: Meal Time",                     //
                                   "  mnuSep4: -",                                     //
                                   "  mnuFind: Find [Ctrl+F]",                         //
                                   "  mnuFindNext: Find Next [F3]",                    //
                                   "mnuReports: Reports",                              //
                                   "  mnuBasicBloodSugar: Basic Blood Sugar Data",     //
                                   "  mnuDailyAnalysis: Daily Analysis",               //
                                   "  mnuSep2: -",                                     //
                                   "  mnuDairy: Overall Diary - Inc Meal",             //
                                   "  mnuDairySummary: Overall Diary - Summary",       //
                                   "  mnuSep3: -",                                     //
                                   "  mnuInsulinDiary: Insulin Diary",                 //
                                   "  mnuStats: Stats",                                //
                                   "mnuPrntReports: Print Reports",                    //
                                   "  mnuPrntBasicBloodSugar: Basic Blood Sugar Data", //
                                   "  mnuPrintDailyAnalysis: Daily Analysis",          //
                                   "  mnuSep: -",                                      //
                                   "  mnuPrintCurrent: Currently Displayed Report",    //
                                   "  mnuSelCurr: Selected Part of Current Report"));
}

TEST_F(MainWindow, ExportAndImportAreGreyedAndDoNothing)
{
    for (const char* name : {"mnuExport", "mnuImport"}) {
        const auto& entry = testing_windows::child<QAction>(*window, name);
        EXPECT_FALSE(entry.isEnabled());
        const QSignalSpy triggered(&entry, &QAction::triggered);
        choose("mnuFile", name);
        EXPECT_EQ(triggered.count(), 0);
        EXPECT_TRUE(window->isVisible());
    }
}

TEST_F(MainWindow, EveryEntrySaysWhatItDoesOrThatItIsNotThereYet)
{
    for (const QAction* bar : window->menuBar()->actions()) {
        for (const QAction* entry : bar->menu()->actions()) {
            if (entry->isSeparator()) {
                continue;
            }
            EXPECT_FALSE(entry->statusTip().isEmpty()) << entry->objectName().toStdString();
            EXPECT_EQ(entry->statusTip() == "Not in this version of Quillon.", !entry->isEnabled())
                << entry->objectName().toStdString();
        }
    }
}

TEST_F(MainWindow, AnEntryThatTheMenuLacksIsAnErrorOfTheProgram)
{
    EXPECT_EQ(menuEntry(*window->menuBar(), "mnuExit").text().toStdString(), "Exit");
    EXPECT_THROW(static_cast<void>(menuEntry(*window->menuBar(), "mnuNone")), std::logic_error);
}

TEST_F(MainWindow, TheStatusBarShowsTheTipOfAnEntry)
{
    QMenu& menu = openMenu("mnuReports");
    QTest::keyClick(&menu, Qt::Key_Down);
    EXPECT_EQ(window->statusBar()->currentMessage().toStdString(), "Lists the blood sugar readings inside the filter.");
    menu.close();
}

TEST_F(MainWindow, ExitClosesTheWindow)
{
    choose("mnuFile", "mnuExit");
    EXPECT_FALSE(window->isVisible());
}

} // namespace
} // namespace app
