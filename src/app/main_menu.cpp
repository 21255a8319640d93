#include "main_menu.h"

#include <QMenu>
#include <QMenuBar>

namespace app {

namespace {

struct Entry {
    const char* name;
    const char* caption;  ///< "-" for a separator
    const char* tip = ""; ///< what it does; empty where it is not in this version
    const char* shortcut = "";
};

struct Menu {
    const char* name;
    const char* caption;
    QList<Entry> entries;
};

QList<Menu> mainMenu()
{
    return {
        {"mnuFile",
         "File",
         {{"mnuExport", "Export"}, {"mnuImport", "Import"}, {"mnuExit", "Exit", "Ends the program."}}},
        {"mnuAdd",
         "Add",
         {{"mnuBloodSugar", "Blood Sugar Reading", "Adds a blood sugar reading to the diary."},
          {"mnuImportBlood", "Import Blood Sugar Data", "Adds the readings of a meter's export to the diary."},
          {"mnuAddMeal", "Meal", "Composes a meal of foods and stores it with its insulin."},
          {"mnuAddIngredient", "Ingredient", "Adds a food or a recipe to the food table."}}},
        {"mnuEdit",
         "Edit",
         {{"mnuEditBloodSugar", "Blood Sugar", "Shows the stored readings one by one, to correct them."},
          {"mnuEditMealTime", "Meal Time", "Shows the stored meals one by one, to correct their time."},
          {"mnuSep4", "-"},
          {"mnuFind", "Find", "Finds a text in the report.", "Ctrl+F"},
          {"mnuFindNext", "Find Next", "Finds the text further down in the report.", "F3"}}},
        {"mnuReports",
         "Reports",
         {{"mnuBasicBloodSugar", "Basic Blood Sugar Data", "Lists the blood sugar readings inside the filter."},
          {"mnuDailyAnalysis", "Daily Analysis", "Shows how blood sugar moved after each meal and over each night."},
          {"mnuSep2", "-"},
          {"mnuDairy", "Overall Diary - Inc Meal",
           "Lists each meal with its foods, the insulin and the readings around it, and the totals of each day."},
          {"mnuDairySummary", "Overall Diary - Summary", "The overall diary without the foods."},
          {"mnuSep3", "-"},
          {"mnuInsulinDiary", "Insulin Diary",
           "Lists the insulin of each meal, its carbohydrate, and the readings around it."},
          {"mnuStats", "Stats", "Adds the averages of the readings inside the filter."}}},
        {"mnuPrntReports",
         "Print Reports",
         {{"mnuPrntBasicBloodSugar", "Basic Blood Sugar Data", "Prints all blood sugar readings of the diary."},
          {"mnuPrintDailyAnalysis", "Daily Analysis", "Prints a picture of this window with what it shows."},
          {"mnuSep", "-"},
          {"mnuPrintCurrent", "Currently Displayed Report", "Prints the report."},
          {"mnuSelCurr", "Selected Part of Current Report", "Prints the selected lines of the report."}}},
    };
}

void addEntry(QMenu& menu, const Entry& entry)
{
    const QString caption = QLatin1String(entry.caption);
    QAction* action = caption == u"-" ? menu.addSeparator() : menu.addAction(caption);
    action->setObjectName(QLatin1String(entry.name));
    if (action->isSeparator()) {
        return;
    }
    action->setShortcut(QKeySequence(QLatin1String(entry.shortcut)));
    action->setStatusTip(QLatin1String(entry.tip));
    if (action->statusTip().isEmpty()) {
        action->setEnabled(false);
        action->setStatusTip(QStringLiteral("Not in this version of Quillon."));
    }
}

} // namespace

void createMainMenu(QMenuBar& bar)
{
    for (const Menu& menu : mainMenu()) {
        QMenu* shown = bar.addMenu(QLatin1String(menu.caption));
        shown->setObjectName(QLatin1String(menu.name));
        for (const Entry& entry : menu.entries) {
            addEntry(*shown, entry);
        }
    }
}

QAction& menuEntry(const QMenuBar& bar, const char* name)
{
    auto* entry = bar.findChild<QAction*>(QLatin1String(name));
    Q_ASSERT(entry != nullptr);
    return *entry;
}

} // namespace app
