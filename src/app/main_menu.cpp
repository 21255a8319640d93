#include "app/main_menu.h"

#include <QMenu>
#include <QMenuBar>

#include <stdexcept>
#include <string>

namespace app {

namespace {

struct Entry {
    enum class Kind { Action, NotInThisVersion, Separator };

    const char* name;
    const char* caption;
    const char* tip; ///< what it does
    const char* shortcut = "";
    Kind kind = Kind::Action;
};

Entry notInThisVersion(const char* name, const char* caption)
{
    return {name, caption, "Not in this version of Quillon.", "", Entry::Kind::NotInThisVersion};
}

Entry separator(const char* name)
{
    return {name, "", "", "", Entry::Kind::Separator};
}

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
         {notInThisVersion("mnuExport", "Export"),
          notInThisVersion("mnuImport", "Import"),
          {"mnuExit", "Exit", "Ends the program."}}},
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
          separator("mnuSep4"),
          {"mnuFind", "Find", "Finds a text in the report.", "Ctrl+F"},
          {"mnuFindNext", "Find Next", "Finds the text further down in the report.", "F3"}}},
        {"mnuReports",
         "Reports",
         {{"mnuBasicBloodSugar", "Basic Blood Sugar Data", "Lists the blood sugar readings inside the filter."},
          {"mnuDailyAnalysis", "Daily Analysis", "Shows how blood sugar moved after each meal and over each night."},
          separator("mnuSep2"),
          {"mnuDairy", "Overall Diary - Inc Meal",
           "Lists each meal with its foods, the insulin and the readings around it, and the totals of each day."},
          {"mnuDairySummary", "Overall Diary - Summary", "The overall diary without the foods."},
          separator("mnuSep3"),
          {"mnuInsulinDiary", "Insulin Diary",
           "Lists the insulin of each meal, its carbohydrate, and the readings around it."},
          {"mnuStats", "Stats", "Adds the averages of the readings inside the filter."}}},
        {"mnuPrntReports",
         "Print Reports",
         {{"mnuPrntBasicBloodSugar", "Basic Blood Sugar Data", "Prints all blood sugar readings of the diary."},
          {"mnuPrintDailyAnalysis", "Daily Analysis", "Prints a picture of this window with what it shows."},
          separator("mnuSep"),
          {"mnuPrintCurrent", "Currently Displayed Report", "Prints the report."},
          {"mnuSelCurr", "Selected Part of Current Report", "Prints the selected lines of the report."}}},
    };
}

void addEntry(QMenu& menu, const Entry& entry)
{
    const bool isSeparator = entry.kind == Entry::Kind::Separator;
    QAction* action = isSeparator ? menu.addSeparator() : menu.addAction(QLatin1String(entry.caption));
    action->setObjectName(QLatin1String(entry.name));
    action->setStatusTip(QLatin1String(entry.tip));
    action->setShortcut(QKeySequence(QLatin1String(entry.shortcut)));
    action->setEnabled(entry.kind != Entry::Kind::NotInThisVersion);
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
    if (entry == nullptr) {
        throw std::logic_error(std::string("The main menu has no entry ") + name);
    }
    return *entry;
}

} // namespace app
