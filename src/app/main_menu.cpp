#include "main_menu.h"

#include <QMenu>
#include <QMenuBar>

namespace app {

namespace {

struct Entry {
    const char* name;
    const char* caption; ///< "-" for a separator
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
        {"mnuFile", "File", {{"mnuExport", "Export"}, {"mnuImport", "Import"}, {"mnuExit", "Exit"}}},
        {"mnuAdd",
         "Add",
         {{"mnuBloodSugar", "Blood Sugar Reading"},
          {"mnuImportBlood", "Import Blood Sugar Data"},
          {"mnuAddMeal", "Meal"},
          {"mnuAddIngredient", "Ingredient"}}},
        {"mnuEdit",
         "Edit",
         {{"mnuEditBloodSugar", "Blood Sugar"},
          {"mnuEditMealTime", "Meal Time"},
          {"mnuSep4", "-"},
          {"mnuFind", "Find", "Ctrl+F"},
          {"mnuFindNext", "Find Next", "F3"}}},
        {"mnuReports",
         "Reports",
         {{"mnuBasicBloodSugar", "Basic Blood Sugar Data"},
          {"mnuDailyAnalysis", "Daily Analysis"},
          {"mnuSep2", "-"},
          {"mnuDairy", "Overall Diary - Inc Meal"},
          {"mnuDairySummary", "Overall Diary - Summary"},
          {"mnuSep3", "-"},
          {"mnuInsulinDiary", "Insulin Diary"},
          {"mnuStats", "Stats"}}},
        {"mnuPrntReports",
         "Print Reports",
         {{"mnuPrntBasicBloodSugar", "Basic Blood Sugar Data"},
          {"mnuPrintDailyAnalysis", "Daily Analysis"},
          {"mnuSep", "-"},
          {"mnuPrintCurrent", "Currently Displayed Report"},
          {"mnuSelCurr", "Selected Part of Current Report"}}},
    };
}

void addEntry(QMenu& menu, const Entry& entry)
{
    const QString caption = QLatin1String(entry.caption);
    QAction* action = caption == u"-" ? menu.addSeparator() : menu.addAction(caption);
    action->setObjectName(QLatin1String(entry.name));
    if (action->isSeparator())
        return;
    action->setShortcut(QKeySequence(QLatin1String(entry.shortcut)));
    action->setEnabled(false);
    action->setStatusTip(QStringLiteral("Not in this version of Quillon."));
    action->setToolTip(action->statusTip());
}

} // namespace

void createMainMenu(QMenuBar& bar)
{
    for (const Menu& menu : mainMenu()) {
        QMenu* shown = bar.addMenu(QLatin1String(menu.caption));
        shown->setObjectName(QLatin1String(menu.name));
        shown->setToolTipsVisible(true);
        for (const Entry& entry : menu.entries)
            addEntry(*shown, entry);
    }
}

} // namespace app
