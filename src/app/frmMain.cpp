#include "app/frmMain.h"

#include "controls/dialogs.h"
#include "controls/field_focus.h"
#include "controls/hourglass_pointer.h"
#include "controls/modApplication.h"
#include "controls/report_list_view.h"
#include "data/diary_location.h"
#include "main_menu.h"
#include "program_icon.h"
#include "readings/frmAddBloodSugar.h"
#include "reports/basic_report.h"
#include "reports/date_filter.h"
#include "runtime/conversions.h"

#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>

namespace app {

namespace {

const QSize kInitialSize(900, 600);
constexpr double kSmallFont = 0.9;  ///< of the usual size
constexpr int kDateCharacters = 16; ///< room for dd/mm/yyyy hh:mm

} // namespace

frmMain::frmMain(World world) : world_(std::move(world)), handlers_(*this, world_.dialogs)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Quillon"));
    setWindowIcon(programIcon());
    setContextMenuPolicy(Qt::NoContextMenu);
    createMainMenu(*menuBar());
    setCentralWidget(new QWidget);
    createFilterBar();
    createReportList();
    statusBar(); // shows the tips of menu entries and buttons
    Form_Load();
    connectHandlers();
    resize(kInitialSize);
}

void frmMain::Form_Load()
{
    state_.clock = &world_.clock;
    state_.strPath = data::diaryPath(world_.programFolder);
    const reports::DateFilter filter = reports::filterAtStart(world_.clock);
    txtFrom->setText(filter.from);
    txtTo->setText(filter.to);
    cboType->setEnabled(false);
    setFilterFromFields();
}

void frmMain::Form_Resize()
{
    const QSize inner = centralWidget()->size();
    fraToolBar->setGeometry(0, 0, inner.width(), fraToolBar->height());
    if (!isMinimized())
        lstView->setGeometry(0, fraToolBar->height(), inner.width(), inner.height() - fraToolBar->height());
}

void frmMain::txtFrom_LostFocus()
{
    keepUntilDate(*txtFrom);
}

void frmMain::txtTo_LostFocus()
{
    keepUntilDate(*txtTo);
}

void frmMain::cmdApply_Click()
{
    if (!focus_->moveTo(*cmdApply))
        return;
    setFilterFromFields();
    state_.lstView.clear();
}

void frmMain::cmdClear_Click()
{
    if (!focus_->moveTo(*cmdClear))
        return;
    state_.strWhere.clear();
    txtFrom->clear();
    txtTo->clear();
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

void frmMain::mnuBasicBloodSugar_Click()
{
    const controls::HourglassPointer hourglass;
    reports::buildBasicReport(state_);
}

/// An incomplete filter leaves the one in force.
void frmMain::setFilterFromFields()
{
    const reports::DateFilter filter{txtFrom->text(), txtTo->text()};
    if (filter.isComplete())
        state_.strWhere = filter.strWhere();
}

void frmMain::keepUntilDate(QLineEdit& field)
{
    if (runtime::isDate(field.text()))
        return;
    focus_->giveBack(field);
    // The box opens once the click or key that moved the focus is over.
    QMetaObject::invokeMethod(this, handlers_.function(&frmMain::askForDate), Qt::QueuedConnection);
}

void frmMain::askForDate()
{
    if (!isVisible())
        return;
    world_.dialogs.beep();
    world_.dialogs.showMessage(this, QStringLiteral("From must be a valid date, use clear button to clear"));
}

bool frmMain::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == centralWidget() && event->type() == QEvent::Resize)
        Form_Resize();
    return QMainWindow::eventFilter(watched, event);
}

void frmMain::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        Form_Resize();
}

void frmMain::createFilterBar()
{
    fraToolBar = new QFrame(centralWidget());
    fraToolBar->setObjectName(QStringLiteral("fraToolBar"));
    fraToolBar->setToolTip(QStringLiteral("SQL Filter Bar - Allows data to be sorted using SQL like Query Language"));
    fraToolBar->setFrameShape(QFrame::StyledPanel);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * kSmallFont);
    fraToolBar->setFont(small);

    auto* row = new QHBoxLayout(fraToolBar);
    row->setContentsMargins(6, 3, 6, 3);
    const auto add = [row](auto* control, const char* name) {
        control->setObjectName(QLatin1String(name));
        row->addWidget(control);
        return control;
    };
    const auto addLabel = [&](const char* name, const QString& caption) { return add(new QLabel(caption), name); };
    const auto addField = [&](const char* name, const QString& meaning) {
        auto* field = add(new QLineEdit, name);
        field->setFixedWidth(field->fontMetrics().horizontalAdvance(QString(kDateCharacters, u'0')));
        field->setAccessibleName(meaning);
        field->setStatusTip(QStringLiteral("Day first: dd/mm/yyyy. Readings exactly at this moment are left out."));
        return field;
    };
    const auto addButton = [&](const char* name, const QString& caption, const QString& tip) {
        auto* button = add(new QPushButton(caption), name);
        // A click asks the field that has the focus whether it lets the focus go (see FieldFocus::moveTo).
        button->setFocusPolicy(Qt::TabFocus);
        button->setStatusTip(tip);
        return button;
    };
    const auto addPicker = [&](const char* name, const QString& meaning) {
        auto* button = addButton(name, QStringLiteral("..."),
                                 QStringLiteral("The calendar is not in this version of Quillon: type the date."));
        button->setAccessibleName(meaning);
        button->setToolTip(button->statusTip());
        button->setFixedWidth(button->sizeHint().height());
        button->setEnabled(false);
        return button;
    };

    addLabel("lblFilter", QStringLiteral("Filter:"));
    row->addSpacing(12);
    QLabel* lblFrom = addLabel("lblFrom", QStringLiteral("From ."));
    lblFrom->setBuddy(txtFrom = addField("txtFrom", QStringLiteral("From date")));
    cmdFrom = addPicker("cmdFrom", QStringLiteral("Pick the From date"));
    row->addSpacing(12);
    QLabel* lblTo = addLabel("lblTo", QStringLiteral("To ..."));
    lblTo->setBuddy(txtTo = addField("txtTo", QStringLiteral("To date")));
    cmdTo = addPicker("cmdTo", QStringLiteral("Pick the To date"));
    row->addSpacing(12);
    cboType = add(new QComboBox, "cboType");
    cboType->addItem(QStringLiteral("Type"));
    row->addStretch();
    cmdClear = addButton("cmdClear", QStringLiteral("Clear"),
                         QStringLiteral("Removes the filter: reports then cover everything."));
    cmdApply = addButton("cmdApply", QStringLiteral("Apply"),
                         QStringLiteral("Puts the filter in force; then choose a report."));
    fraToolBar->adjustSize();
    centralWidget()->setMinimumSize(fraToolBar->minimumSizeHint() + QSize(0, 4 * fraToolBar->height()));
}

void frmMain::createReportList()
{
    lstView = new controls::ReportListView(centralWidget());
    lstView->setObjectName(QStringLiteral("lstView"));
    lstView->setAccessibleName(QStringLiteral("Report"));
    lstView->show(lines_);
}

void frmMain::connectHandlers()
{
    centralWidget()->installEventFilter(this);
    focus_ = new controls::FieldFocus(*this);
    focus_->watch(*txtFrom, handlers_.function(&frmMain::txtFrom_LostFocus));
    focus_->watch(*txtTo, handlers_.function(&frmMain::txtTo_LostFocus));
    handlers_.connect(cmdApply, &QPushButton::clicked, &frmMain::cmdApply_Click);
    handlers_.connect(cmdClear, &QPushButton::clicked, &frmMain::cmdClear_Click);
    connectEntry("mnuExit", QStringLiteral("Ends the program."), &frmMain::mnuExit_Click);
    connectEntry("mnuBloodSugar", QStringLiteral("Adds a blood sugar reading to the diary."),
                 &frmMain::mnuBloodSugar_Click);
    connectEntry("mnuBasicBloodSugar", QStringLiteral("Lists the blood sugar readings inside the filter."),
                 &frmMain::mnuBasicBloodSugar_Click);
}

void frmMain::connectEntry(const char* name, const QString& tip, void (frmMain::*handler)())
{
    auto* entry = menuBar()->findChild<QAction*>(QLatin1String(name));
    Q_ASSERT(entry != nullptr);
    entry->setEnabled(true);
    entry->setStatusTip(tip);
    entry->setToolTip({});
    handlers_.connect(entry, &QAction::triggered, handler);
}

} // namespace app
