// frmMain: the window that lives for the whole run, with the date filter, the report list and the menus.
#pragma once

#include "controls/event_handlers.h"
#include "controls/report_list_model.h"
#include "reports/report_state.h"

#include <QMainWindow>

class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

namespace controls {
class Dialogs;
class FieldFocus;
class ReportListView;
} // namespace controls

namespace app {

/// What the program takes from outside. References outlive the window.
struct World {
    const runtime::Clock& clock;
    controls::Dialogs& dialogs;
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
    void cmdApply_Click();
    void cmdClear_Click();
    void mnuExit_Click();
    void mnuBloodSugar_Click();
    void mnuBasicBloodSugar_Click();

    void createFilterBar();
    void createReportList();
    void connectHandlers();
    void connectEntry(const char* name, const QString& tip, void (frmMain::*handler)());
    void setFilterFromFields();
    void keepUntilDate(QLineEdit& field);
    void askForDate();

    World world_;
    reports::ReportState state_;
    controls::ReportListModel lines_{state_.lstView};
    controls::EventHandlers<frmMain> handlers_;

    QFrame* fraToolBar = nullptr;
    QLineEdit* txtFrom = nullptr;
    QPushButton* cmdFrom = nullptr;
    QLineEdit* txtTo = nullptr;
    QPushButton* cmdTo = nullptr;
    QComboBox* cboType = nullptr;
    QPushButton* cmdClear = nullptr;
    QPushButton* cmdApply = nullptr;
    controls::ReportListView* lstView = nullptr;
    controls::FieldFocus* focus_ = nullptr;
};

} // namespace app
