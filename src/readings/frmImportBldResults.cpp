#include "readings/frmImportBldResults.h"

#include "controls/dialogs.h"
#include "controls/event_handlers.h"
#include "controls/hourglass_pointer.h"
#include "controls/named.h"
#include "readings/meter_import.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace readings {

using controls::named;

namespace {

constexpr int kPathCharacters = 50;

/// Where a meter's file may be: the user replaces it.
QString samplePath()
{
    return QDir::toNativeSeparators(QDir::home().filePath(QStringLiteral("meter.csv")));
}

} // namespace

frmImportBldResults::frmImportBldResults(QWidget* owner, controls::Dialogs& dialogs, QString diaryPath)
    : QDialog(owner), dialogs_(dialogs), diaryPath_(std::move(diaryPath))
{
    setObjectName(QStringLiteral("frmImportBldResults"));
    setWindowTitle(QStringLiteral("Import blood results from file "));
    createControls();
    Form_Load();
    connectHandlers();
}

void frmImportBldResults::Form_Load()
{
    txtDate->setText(latestReading(diaryPath_));
}

void frmImportBldResults::cmdOK_Click()
{
    if (!QFileInfo(txtPath->text()).isFile()) {
        dialogs_.showMessage(this, QStringLiteral("File specified does not exist!"));
        return;
    }
    dialogs_.showMessage(this, QStringLiteral("%1 readings added").arg(importReadings()));
    accept();
}

void frmImportBldResults::cmdCancel_Click()
{
    reject();
}

int frmImportBldResults::importReadings()
{
    const controls::HourglassPointer hourglass;
    try {
        return ImportReadings({diaryPath_, txtPath->text(), txtDate->text()});
    } catch (const ImportStopped& stopped) {
        txtDate->setText(stopped.goOnAfter());
        throw;
    }
}

void frmImportBldResults::createControls()
{
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(createPathRow());

    fraResults = named("fraResults", new QGroupBox(QStringLiteral("Results from ...")));
    txtDate = named("txtDate", new QLineEdit);
    txtDate->setAccessibleName(QStringLiteral("Results from"));
    txtDate->setToolTip(QStringLiteral("Readings after this date and time are added (dd/mm/yyyy hh:mm)"));
    auto* frame = new QVBoxLayout(fraResults);
    frame->addWidget(txtDate);
    layout->addWidget(fraResults);

    chkResults = named("chkResults", new QCheckBox(QStringLiteral("All results")));
    chkResults->setToolTip(
        QStringLiteral("Changes nothing: to add older readings, put an earlier date into the field above"));
    layout->addWidget(chkResults);

    layout->addStretch();
    layout->addLayout(createButtons());
}

QBoxLayout* frmImportBldResults::createPathRow()
{
    txtPath = named("txtPath", new QLineEdit(samplePath()));
    txtPath->setAccessibleName(QStringLiteral("File to import"));
    txtPath->setToolTip(QStringLiteral("The file that the meter's program wrote, with its folder"));
    txtPath->setMinimumWidth(fontMetrics().averageCharWidth() * kPathCharacters);
    cmdPath = named("cmdPath", new QPushButton(QStringLiteral("...")));
    cmdPath->setToolTip(QStringLiteral("Opens nothing: type the path into the field on the left"));
    cmdPath->setAutoDefault(false);
    cmdPath->setFixedWidth(cmdPath->sizeHint().height() * 3 / 2);

    auto* row = new QHBoxLayout;
    row->addWidget(txtPath);
    row->addWidget(cmdPath);
    return row;
}

QBoxLayout* frmImportBldResults::createButtons()
{
    cmdOK = named("cmdOK", new QPushButton(QStringLiteral("OK")));
    cmdOK->setDefault(true);
    cmdCancel = named("cmdCancel", new QPushButton(QStringLiteral("Cancel")));

    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cmdOK);
    row->addWidget(cmdCancel);
    return row;
}

void frmImportBldResults::connectHandlers()
{
    const controls::EventHandlers handlers(*this, dialogs_);
    handlers.connect(cmdOK, &QPushButton::clicked, &frmImportBldResults::cmdOK_Click);
    handlers.connect(cmdCancel, &QPushButton::clicked, &frmImportBldResults::cmdCancel_Click);
}

} // namespace readings
