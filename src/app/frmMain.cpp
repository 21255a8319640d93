#include "app/frmMain.h"

#include "app/main_menu.h"
#include "app/print_window.h"
#include "app/program_icon.h"
#include "controls/dialogs.h"
#include "controls/field_focus.h"
#include "controls/hourglass_pointer.h"
#include "controls/modApplication.h"
#include "controls/named.h"
#include "controls/printers.h"
#include "controls/report_list_view.h"
#include "data/diary_location.h"
#include "dialogs/change_date.h"
#include "meals/frmAddIngredient.h"
#include "meals/frmAddMeal.h"
#include "meals/frmEditMealTime.h"
#include "readings/frmAddBloodSugar.h"
#include "readings/frmEditBldSugar.h"
#include "readings/frmImportBldResults.h"
#include "reports/basic_report.h"
#include "reports/daily_analysis.h"
#include "reports/date_filter.h"
#include "reports/diary_report.h"
#include "reports/modDisp.h"
#include "reports/statistics.h"
#include "runtime/conversions.h"

#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>

namespace app {

namespace {

const QSize kInitialSize(900, 600);
constexpr int kLinesAboveFound = 10;

} // namespace

frmMain::frmMain(World world) : world_(std::move(world)), handlers_(*this, world_.dialogs)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Quillon"));
    setWindowIcon(programIcon());
    setContextMenuPolicy(Qt::NoContextMenu);
    createMainMenu(*menuBar());
    setCentralWidget(new QWidget);
    bar_ = createFilterBar(*centralWidget());
    const int barHeight = bar_.fraToolBar->height();
    centralWidget()->setMinimumSize(bar_.fraToolBar->minimumSizeHint() + QSize(0, 4 * barHeight));
    createReportList();
    statusBar(); // shows the tips of menu entries and buttons
    Form_Load();
    connectHandlers();
    resize(kInitialSize.boundedTo(screen()->availableSize() * 19 / 20)); // the title bar needs room too
}

void frmMain::Form_Load()
{
    state_.strPath = data::diaryPath(world_.programFolder);
    const reports::DateFilter filter = reports::filterAtStart(world_.clock);
    bar_.txtFrom->setText(filter.from);
    bar_.txtTo->setText(filter.to);
    bar_.cboType->setEnabled(false);
    takeFilterFields();
    setFilterFromFields();
}

void frmMain::Form_Resize()
{
    const QSize inner = centralWidget()->size();
    bar_.fraToolBar->setGeometry(0, 0, inner.width(), bar_.fraToolBar->height());
    if (!isMinimized()) {
        lstView->setGeometry(0, bar_.fraToolBar->height(), inner.width(), inner.height() - bar_.fraToolBar->height());
    }
}

void frmMain::txtFrom_LostFocus()
{
    keepUntilDate(*bar_.txtFrom);
}

void frmMain::txtTo_LostFocus()
{
    keepUntilDate(*bar_.txtTo);
}

void frmMain::cmdFrom_Click()
{
    ChangeDate(*bar_.txtFrom);
}

void frmMain::cmdTo_Click()
{
    ChangeDate(*bar_.txtTo);
}

void frmMain::ChangeDate(QLineEdit& field)
{
    dialogs::ChangeDate(field, *this, world_.clock, world_.dialogs);
}

void frmMain::cmdApply_Click()
{
    if (!focus_->moveTo(*bar_.cmdApply)) {
        return;
    }
    setFilterFromFields();
    state_.lstView.clear();
}

void frmMain::cmdClear_Click()
{
    if (!focus_->moveTo(*bar_.cmdClear)) {
        return;
    }
    state_.strWhere.clear();
    bar_.txtFrom->clear();
    bar_.txtTo->clear();
    state_.lstView.clear();
}

void frmMain::mnuExit_Click()
{
    close();
}

void frmMain::mnuBloodSugar_Click()
{
    readings::frmAddBloodSugar form(this, world_.clock, world_.dialogs, world_.fixedDiaryPath);
    controls::ShowCentredModal(form, *this);
}

void frmMain::mnuImportBlood_Click()
{
    readings::frmImportBldResults form(this, world_.dialogs, state_.strPath);
    controls::ShowCentredModal(form, *this);
}

void frmMain::mnuAddMeal_Click()
{
    meals::frmAddMeal form(this, {world_.clock, world_.dialogs, world_.printers, state_});
    controls::ShowCentredModal(form, *this);
}

void frmMain::mnuAddIngredient_Click()
{
    meals::frmAddIngredient form(this, world_.dialogs, state_.strPath);
    controls::ShowCentredModal(form, *this);
}

void frmMain::mnuEditBloodSugar_Click()
{
    readings::frmEditBldSugar form(this, world_.dialogs, state_.strPath);
    controls::ShowCentredModal(form, *this);
}

void frmMain::mnuEditMealTime_Click()
{
    meals::frmEditMealTime form(this, world_.dialogs, state_.strPath);
    controls::ShowCentredModal(form, *this);
}

void frmMain::mnuFind_Click()
{
    const QString text = world_.dialogs.askText(this, QStringLiteral("Find what?"));
    showFound(search_.find(state_.lstView, text));
}

void frmMain::mnuFindNext_Click()
{
    showFound(search_.findNext(state_.lstView));
}

void frmMain::showFound(std::optional<qsizetype> line)
{
    if (!line) {
        return;
    }
    const int found = static_cast<int>(*line);
    lstView->addToSelection(found);
    lstView->setTopIndex(found - kLinesAboveFound);
}

void frmMain::mnuBasicBloodSugar_Click()
{
    const controls::HourglassPointer hourglass;
    reports::buildBasicReport(state_);
}

void frmMain::mnuDailyAnalysis_Click()
{
    const controls::HourglassPointer hourglass;
    reports::buildDailyAnalysis(state_);
}

void frmMain::mnuDairy_Click()
{
    reports::DisplayDiary(state_, true);
}

void frmMain::mnuDairySummary_Click()
{
    reports::DisplayDiary(state_, false);
}

/// A diary that ends with an error leaves the hourglass, until the next action that shows one has ended.
void frmMain::mnuInsulinDiary_Click()
{
    controls::showHourglass();
    reports::DisplayInsulinDiary(state_);
    controls::showDefaultPointer();
}

void frmMain::mnuStats_Click()
{
    reports::buildStatistics(state_);
}

void frmMain::mnuPrntBasicBloodSugar_Click()
{
    const auto printer = world_.printers.open(this, QStringLiteral("Basic Blood Sugar Data"));
    if (!printer) {
        return;
    }
    const controls::HourglassPointer hourglass;
    reports::printBasicReport(*printer, state_);
}

void frmMain::mnuPrintDailyAnalysis_Click()
{
    const QString caption = QStringLiteral("Quillon - Daily Meal Blood Sugar Change");
    if (const auto printer = world_.printers.open(this, caption)) {
        printWindow(*this, caption,
                    {QStringLiteral("mnuPrntReports"), QStringLiteral("mnuAdd"), QStringLiteral("mnuFile"),
                     QStringLiteral("mnuReports")},
                    *printer);
    }
}

void frmMain::mnuPrintCurrent_Click()
{
    printReportList(false);
}

void frmMain::mnuSelCurr_Click()
{
    printReportList(true);
}

void frmMain::printReportList(bool selectedOnly)
{
    const reports::PrintJob job{.list = state_.lstView,
                                .columns = state_.PrintTabs,
                                .heading = state_.ReportTitle,
                                .selectedLines = lstView->selectedLines(),
                                .selectedOnly = selectedOnly,
                                .useStyles = true};
    if (job.isVoid()) {
        return;
    }
    const QString firstLine = state_.ReportTitle.section(QStringLiteral("\r\n"), 0, 0);
    const auto printer = world_.printers.open(this, firstLine.isEmpty() ? QStringLiteral("Report") : firstLine);
    if (!printer) {
        return;
    }
    const controls::HourglassPointer hourglass;
    reports::PrintList(*printer, job, state_.printedLines);
}

void frmMain::takeFilterFields()
{
    state_.fields = {bar_.txtFrom->text(), bar_.txtTo->text()};
}

/// An incomplete filter leaves the one in force.
void frmMain::setFilterFromFields()
{
    if (state_.fields.isComplete()) {
        state_.strWhere = state_.fields.strWhere();
    }
}

void frmMain::keepUntilDate(QLineEdit& field)
{
    if (runtime::isDate(field.text())) {
        return;
    }
    focus_->giveBack(field);
    // The box opens once the click or key that moved the focus is over.
    QMetaObject::invokeMethod(this, handlers_.function(&frmMain::askForDate), Qt::QueuedConnection);
}

void frmMain::askForDate()
{
    if (!isVisible()) {
        return;
    }
    world_.dialogs.beep();
    world_.dialogs.showMessage(this, QStringLiteral("From must be a valid date, use clear button to clear"));
}

bool frmMain::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == centralWidget() && event->type() == QEvent::Resize) {
        Form_Resize();
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmMain::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        Form_Resize();
    }
}

void frmMain::createReportList()
{
    lstView = controls::named("lstView", new controls::ReportListView(centralWidget()));
    lstView->setAccessibleName(QStringLiteral("Report"));
    lstView->showLines(lines_);
}

void frmMain::connectHandlers()
{
    centralWidget()->installEventFilter(this);
    focus_ = new controls::FieldFocus(*this);
    focus_->watch(*bar_.txtFrom, handlers_.function(&frmMain::txtFrom_LostFocus));
    focus_->watch(*bar_.txtTo, handlers_.function(&frmMain::txtTo_LostFocus));
    for (const QLineEdit* field : {bar_.txtFrom, bar_.txtTo}) {
        handlers_.connect(field, &QLineEdit::textChanged, &frmMain::takeFilterFields);
    }
    handlers_.connect(bar_.cmdFrom, &QPushButton::clicked, &frmMain::cmdFrom_Click);
    handlers_.connect(bar_.cmdTo, &QPushButton::clicked, &frmMain::cmdTo_Click);
    handlers_.connect(bar_.cmdApply, &QPushButton::clicked, &frmMain::cmdApply_Click);
    handlers_.connect(bar_.cmdClear, &QPushButton::clicked, &frmMain::cmdClear_Click);
    connectMenu();
}

void frmMain::connectMenu()
{
    const auto connectEntry = [this](const char* name, void (frmMain::*handler)()) {
        handlers_.connect(&menuEntry(*menuBar(), name), &QAction::triggered, handler);
    };
    connectEntry("mnuExit", &frmMain::mnuExit_Click);
    connectEntry("mnuBloodSugar", &frmMain::mnuBloodSugar_Click);
    connectEntry("mnuImportBlood", &frmMain::mnuImportBlood_Click);
    connectEntry("mnuAddMeal", &frmMain::mnuAddMeal_Click);
    connectEntry("mnuAddIngredient", &frmMain::mnuAddIngredient_Click);
    connectEntry("mnuEditBloodSugar", &frmMain::mnuEditBloodSugar_Click);
    connectEntry("mnuEditMealTime", &frmMain::mnuEditMealTime_Click);
    connectEntry("mnuFind", &frmMain::mnuFind_Click);
    connectEntry("mnuFindNext", &frmMain::mnuFindNext_Click);
    connectEntry("mnuBasicBloodSugar", &frmMain::mnuBasicBloodSugar_Click);
    connectEntry("mnuDailyAnalysis", &frmMain::mnuDailyAnalysis_Click);
    connectEntry("mnuDairy", &frmMain::mnuDairy_Click);
    connectEntry("mnuDairySummary", &frmMain::mnuDairySummary_Click);
    connectEntry("mnuInsulinDiary", &frmMain::mnuInsulinDiary_Click);
    connectEntry("mnuStats", &frmMain::mnuStats_Click);
    connectEntry("mnuPrntBasicBloodSugar", &frmMain::mnuPrntBasicBloodSugar_Click);
    connectEntry("mnuPrintDailyAnalysis", &frmMain::mnuPrintDailyAnalysis_Click);
    connectEntry("mnuPrintCurrent", &frmMain::mnuPrintCurrent_Click);
    connectEntry("mnuSelCurr", &frmMain::mnuSelCurr_Click);
}

std::unique_ptr<frmMain> openMainWindow(const World& world)
{
    std::unique_ptr<frmMain> window;
    controls::guarded(world.dialogs, nullptr, [&] {
        auto made = std::make_unique<frmMain>(world);
        made->show();
        window = std::move(made);
    });
    return window;
}

} // namespace app
