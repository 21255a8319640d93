#include "dialogs/frmCalender.h"

#include "controls/event_handlers.h"
#include "controls/modApplication.h"
#include "controls/named.h"
#include "dialogs/calendar_grid.h"
#include "dialogs/calendar_month.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

namespace dialogs {

using controls::named;

frmCalender::frmCalender(QWidget* owner, const runtime::Clock& clock, controls::Dialogs& dialogs)
    : QDialog(owner), clock_(clock), dialogs_(dialogs)
{
    setObjectName(QStringLiteral("frmCalender"));
    createControls();
    Form_Load();
    connectHandlers();
}

void frmCalender::DoCalender(const QString& date)
{
    turnTo(CalendarMonth(date, clock_));
}

void frmCalender::Form_Load()
{
    turnTo(CalendarMonth(clock_.now()));
    grdCalender->setFocus();
    move(controls::centredOver(screen()->availableGeometry(), sizeHint()));
}

void frmCalender::cboMonth_Click()
{
    turnTo(grdCalender->month().inMonth(cboMonth->currentData().toInt(), clock_));
}

void frmCalender::PreviousYear_Click()
{
    const CalendarMonth& shown = grdCalender->month();
    turnTo(shown.inYear(shown.year() - 1, clock_));
}

void frmCalender::NextYear_Click()
{
    const CalendarMonth& shown = grdCalender->month();
    turnTo(shown.inYear(shown.year() + 1, clock_));
}

void frmCalender::grdCalender_DblClick(int row, int column)
{
    const CalendarMonth& shown = grdCalender->month();
    const int day = shown.dayAt({row, column});
    if (day == 0) {
        return;
    }
    pickedDate_ = shown.dateText(day);
    accept();
}

void frmCalender::createControls()
{
    const auto addButton = [](QBoxLayout& row, const char* name, const QString& caption, const QString& meaning) {
        auto* button = named(name, new QPushButton(caption));
        button->setToolTip(meaning);
        button->setAccessibleName(meaning);
        button->setFixedWidth(2 * button->sizeHint().height());
        // The focus stays in the grid after a click, and Enter there picks a day and clicks no button.
        button->setFocusPolicy(Qt::TabFocus);
        button->setAutoDefault(false);
        row.addWidget(button);
        return button;
    };

    cboMonth = named("cboMonth", new QComboBox);
    cboMonth->setAccessibleName(QStringLiteral("Month"));
    for (int month = 1; month <= 12; ++month) {
        cboMonth->addItem(runtime::currentLocale().standaloneMonthName(month), month);
    }
    cboMonth->setMaxVisibleItems(cboMonth->count());

    DateCaption = named("DateCaption", new QLabel);
    DateCaption->setAlignment(Qt::AlignCenter);

    grdCalender = named("grdCalender", new CalendarGrid(clock_.now()));
    grdCalender->setAccessibleName(QStringLiteral("Days of the month"));

    auto* lblSelect = named("lblSelect", new QLabel(QStringLiteral("Double click on a date to select")));
    lblSelect->setAlignment(Qt::AlignCenter);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(cboMonth);
    auto* years = new QHBoxLayout;
    PreviousYear = addButton(*years, "PreviousYear", QStringLiteral("<<"), QStringLiteral("Same month a year earlier"));
    years->addWidget(DateCaption, 1);
    NextYear = addButton(*years, "NextYear", QStringLiteral(">>"), QStringLiteral("Same month a year later"));
    layout->addLayout(years);
    layout->addWidget(grdCalender, 0, Qt::AlignHCenter);
    layout->addWidget(lblSelect);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void frmCalender::connectHandlers()
{
    const controls::EventHandlers handlers(*this, dialogs_);
    handlers.connect(cboMonth, &QComboBox::activated, &frmCalender::cboMonth_Click);
    handlers.connect(PreviousYear, &QPushButton::clicked, &frmCalender::PreviousYear_Click);
    handlers.connect(NextYear, &QPushButton::clicked, &frmCalender::NextYear_Click);
    handlers.connect(grdCalender, &QTableWidget::cellDoubleClicked, &frmCalender::grdCalender_DblClick);
    handlers.connect(grdCalender, &CalendarGrid::enterPressed, &frmCalender::grdCalender_DblClick);
}

void frmCalender::turnTo(const CalendarMonth& month)
{
    DateCaption->setText(month.caption());
    grdCalender->turnTo(month, clock_.now());
    cboMonth->setCurrentIndex(cboMonth->findData(month.month()));
}

} // namespace dialogs
