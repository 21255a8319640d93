#include "readings/frmEditBldSugar.h"

#include "controls/data_control.h"
#include "controls/named.h"
#include "data/database.h"
#include "readings/labelled_row.h"
#include "readings/reading_entry.h"
#include "runtime/conversions.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

namespace readings {

using controls::named;

namespace {

constexpr int kGap = 16; ///< between the boxes and the list of types

/// "1 - Getting Up" and so on, a line each.
QString typeList(const QString& diaryPath)
{
    data::Database database(diaryPath);
    data::Recordset types = database.openRecordset(QStringLiteral("BloodSugarReadingTypes"));
    QString list;
    for (types.moveFirst(); !types.eof(); types.moveNext()) {
        list += runtime::toText(types.value(QStringLiteral("Type"))) + QStringLiteral(" - ") +
                runtime::toText(types.value(QStringLiteral("Text"))) + QStringLiteral("\r\n");
    }
    return list;
}

} // namespace

frmEditBldSugar::frmEditBldSugar(QWidget* owner, controls::Dialogs& dialogs, const QString& diaryPath) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmEditBldSugar"));
    setWindowTitle(QStringLiteral("Modify Blood Sugar Readings"));
    createControls();
    Form_Load(dialogs, diaryPath);
}

void frmEditBldSugar::Form_Load(controls::Dialogs& dialogs, const QString& diaryPath)
{
    Data1 = named("Data1", new controls::DataControl(
                               *this, dialogs, QStringLiteral("Blood Sugar"),
                               {.databasePath = diaryPath, .recordSource = QStringLiteral("BloodSugarLevels")}));
    layout()->addWidget(Data1);
    Data1->bind(*txtMmol, QStringLiteral("BloodSugerLevel"));
    Data1->bind(*txtType, QStringLiteral("ReadingType"));
    Data1->bind(*txtTime, QStringLiteral("ReadingTime"));
    Data1->bind(*txtComments, QStringLiteral("Comment"));
    lblDesc->setText(typeList(diaryPath));
    txtMmol->setFocus();
    txtMmol->selectAll();
}

void frmEditBldSugar::createControls()
{
    txtMmol = named("txtMmol", new QLineEdit);
    txtType = named("txtType", new QLineEdit);
    txtTime = named("txtTime", new QLineEdit);
    txtTime->setMinimumWidth(controls::widthOfDateAndTime(fontMetrics()));

    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    layout->addLayout(grid);
    addLabelledRow(*grid, "Label1", QStringLiteral("Mmol .................."), *txtMmol);
    addLabelledRow(*grid, "Label2", QStringLiteral("Type .................."), *txtType);
    addLabelledRow(*grid, "Label3", QStringLiteral("Time .................."), *txtTime);

    lblDesc = named("lblDesc", new QLabel);
    lblDesc->setTextFormat(Qt::PlainText);
    lblDesc->setAccessibleName(QStringLiteral("Types"));
    lblDesc->setAlignment(Qt::AlignTop);
    grid->setColumnMinimumWidth(2, kGap);
    grid->addWidget(lblDesc, 0, 3, grid->rowCount() + 1, 1);
    grid->setRowStretch(grid->rowCount() - 1, 1);

    txtComments = named("txtComments", new QLineEdit);
    txtComments->setAccessibleName(QStringLiteral("Comments"));
    txtComments->setPlaceholderText(QStringLiteral("Comments"));
    txtComments->setMaxLength(kCommentLength);
    txtComments->setMinimumWidth(fontMetrics().averageCharWidth() * kCommentLength);
    layout->addWidget(txtComments);
}

} // namespace readings
