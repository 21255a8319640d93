// frmMain: the window that lives for the whole run, with the date filter, the report list and the menus.
#pragma once

#include "app/filter_bar.h"
#include "controls/event_handlers.h"
#include "controls/report_list_model.h"
#include "reports/find_in_report.h"
#include "reports/report_state.h"

#include <QMainWindow>

#include <memory>
#include <optional>

namespace controls {
class Dialogs;
class FieldFocus;
class Printers;
class ReportListView;
} // namespace controls

namespace app {

/// What the program takes from outside. References outlive the window.
struct World {
    const runtime::Clock& clock;
    controls::Dialogs& dialogs;
    controls::Printers& printers;
    QString programFolder;  ///< where the program was started from, with the system's own separators
    QString fixedDiaryPath; ///< the diary that new readings always go to
};

class frmMain : public QMainWindow
{
    Q_OBJECT

public:
    explicit frmMain(World world);

    /// `strPath`, `strWhere`, `ReportTitle`, `PrintTabs` and the report list, as reports and dialogs use them.
    [[nodiscard]] reports::ReportState& state() { return state_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Form_Load();
    void Form_Resize();
    void txtFrom_LostFocus();
    void txtTo_LostFocus();
    void cmdFrom_Click();
    void cmdTo_Click();
    void cmdApply_Click();
    void cmdClear_Click();
    void mnuExit_Click();
    void mnuBloodSugar_Click();
    void mnuImportBlood_Click();
    void mnuAddMeal_Click();
    void mnuAddIngredient_Click();
    void mnuEditBloodSugar_Click();
    void mnuEditMealTime_Click();
    void mnuFind_Click();
    void mnuFindNext_Click();
    void mnuBasicBloodSugar_Click();
    void mnuDailyAnalysis_Click();
    void mnuDairy_Click();
    void mnuDairySummary_Click();
    void mnuInsulinDiary_Click();
    void mnuStats_Click();
    void mnuPrntBasicBloodSugar_Click();
    void mnuPrintDailyAnalysis_Click();
    void mnuPrintCurrent_Click();
    void mnuSelCurr_Click();
    void ChangeDate(QLineEdit& field);

    void createReportList();
    void connectHandlers();
    void connectMenu();
    void takeFilterFields();
    void setFilterFromFields();
    void keepUntilDate(QLineEdit& field);
    void askForDate();
    void showFound(std::optional<qsizetype> line);
    void printReportList(bool selectedOnly);

    World world_;
    reports::ReportState state_{world_.clock};
    reports::FindInReport search_;
    controls::ReportListModel lines_{state_.lstView};
    controls::EventHandlers<frmMain> handlers_;

    FilterBar bar_;
    controls::ReportListView* lstView = nullptr;
    controls::FieldFocus* focus_ = nullptr;
};

/// Makes the window and shows it. Null when something keeps it from opening: a box has said what by then.
[[nodiscard]] std::unique_ptr<frmMain> openMainWindow(const World& world);

} // namespace app
