#include "readings/frmAddBloodSugar.h"

#include "controls/dialogs.h"
#include "controls/event_handlers.h"
#include "controls/field_focus.h"
#include "controls/modApplication.h"
#include "controls/named.h"
#include "readings/labelled_row.h"
#include "readings/reading_entry.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace readings {

using controls::named;

frmAddBloodSugar::frmAddBloodSugar(QWidget* owner, const runtime::Clock& clock, controls::Dialogs& dialogs,
                                   QString diaryPath)
    : QDialog(owner), clock_(clock), dialogs_(dialogs), diaryPath_(std::move(diaryPath))
{
    setObjectName(QStringLiteral("frmAddBloodSugar"));
    setWindowTitle(QStringLiteral("Add Blood Suger reading "));
    createControls();
    Form_Load();
    connectHandlers();
}

void frmAddBloodSugar::Form_Load()
{
    const runtime::Date now = clock_.now();
    txtBloodSugar->setText(runtime::format(0.0, QStringLiteral("0.0")));
    txtDate->setText(runtime::format(now, QStringLiteral("dd/mmm/yyyy")));
    txtTime->setText(runtime::format(now, QStringLiteral("hh:mm")));
    cboType->setCurrentIndex(cboType->findData(likelyReadingType(now)));
    setChanged(false);
}

void frmAddBloodSugar::txtBloodSugar_LostFocus()
{
    if (!runtime::isNumeric(txtBloodSugar->text())) {
        focus_->giveBack(*txtBloodSugar);
    }
}

void frmAddBloodSugar::txtDate_LostFocus()
{
    if (!runtime::isDate(txtDate->text())) {
        focus_->giveBack(*txtDate);
    }
}

void frmAddBloodSugar::txtTime_LostFocus()
{
    if (!runtime::isDate(txtTime->text())) {
        focus_->giveBack(*txtTime);
    }
}

void frmAddBloodSugar::cmdOK_Click()
{
    SaveReading();
    setChanged(false); // a second click of a double click finds nothing to store
    accept();
}

void frmAddBloodSugar::cmdCancel_Click()
{
    reject();
}

void frmAddBloodSugar::cmdSave_Click()
{
    SaveReading();
    setChanged(false);
}

void frmAddBloodSugar::SaveReading()
{
    saveReading(diaryPath_, {txtBloodSugar->text(), txtDate->text(), txtTime->text(), cboType->currentData().toInt(),
                             txtComment->text()});
    txtComment->clear(); // a comment belongs to one reading; after a failed save it is still there
}

void frmAddBloodSugar::createControls()
{
    txtBloodSugar = named("txtBloodSugar", new QLineEdit);
    txtDate = named("txtDate", new QLineEdit);
    txtTime = named("txtTime", new QLineEdit);
    cboType = named("cboType", new QComboBox);
    txtComment = named("txtComment", new QLineEdit);
    for (const ReadingType& type : readingTypes()) {
        cboType->addItem(type.name, type.code);
    }
    txtComment->setMaxLength(kCommentLength);
    txtComment->setMinimumWidth(fontMetrics().averageCharWidth() * kCommentLength);

    auto* grid = new QGridLayout;
    addLabelledRow(*grid, "lblBloodSugar", QStringLiteral("Blood Suger Level ....."), *txtBloodSugar);
    addLabelledRow(*grid, "lblDate", QStringLiteral("Date .........................."), *txtDate);
    addLabelledRow(*grid, "lblTime", QStringLiteral("Time .........................."), *txtTime);
    addLabelledRow(*grid, "lblType", QStringLiteral("Type ......."), *cboType);
    addLabelledRow(*grid, "lblComment", QStringLiteral("Comments - 50 characters or less"), *txtComment);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    const auto addButton = [&](const char* name, const QString& caption) {
        auto* button = named(name, new QPushButton(caption));
        // A click leaves the focus in the field: it reaches its handler even when the field would not let the focus go.
        button->setFocusPolicy(Qt::TabFocus);
        buttons->addWidget(button);
        return button;
    };
    cmdOK = addButton("cmdOK", QStringLiteral("OK"));
    cmdCancel = addButton("cmdCancel", QStringLiteral("Cancel"));
    cmdSave = addButton("cmdSave", QStringLiteral("Save to DB"));
    cmdOK->setDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addStretch();
    layout->addLayout(buttons);
}

void frmAddBloodSugar::connectHandlers()
{
    using controls::FieldFocus;
    const controls::EventHandlers handlers(*this, dialogs_);
    focus_ = new FieldFocus(*this);
    focus_->watch(*txtBloodSugar, handlers.function(&frmAddBloodSugar::txtBloodSugar_LostFocus));
    focus_->watch(*txtDate, handlers.function(&frmAddBloodSugar::txtDate_LostFocus));
    focus_->watch(*txtTime, handlers.function(&frmAddBloodSugar::txtTime_LostFocus));
    focus_->watch(*txtComment);
    connect(focus_, &FieldFocus::entered, this, &controls::SelectAll);
    for (const QLineEdit* field : {txtBloodSugar, txtDate, txtTime}) {
        handlers.connect(field, &QLineEdit::textChanged, &frmAddBloodSugar::allowSaving);
    }
    handlers.connect(cboType, &QComboBox::currentIndexChanged, &frmAddBloodSugar::allowSaving);
    handlers.connect(cmdOK, &QPushButton::clicked, &frmAddBloodSugar::cmdOK_Click);
    handlers.connect(cmdCancel, &QPushButton::clicked, &frmAddBloodSugar::cmdCancel_Click);
    handlers.connect(cmdSave, &QPushButton::clicked, &frmAddBloodSugar::cmdSave_Click);
}

void frmAddBloodSugar::setChanged(bool changed)
{
    cmdOK->setEnabled(changed);
    cmdSave->setEnabled(changed);
}

} // namespace readings
