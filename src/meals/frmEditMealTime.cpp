#include "meals/frmEditMealTime.h"

#include "controls/data_control.h"
#include "controls/event_handlers.h"
#include "controls/named.h"
#include "meals/meal_type.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

namespace meals {

using controls::named;

namespace {

/// "Error" for a code that is none.
QString nameOfType(const QString& code)
{
    const QList<MealType>& types = mealTypes();
    const auto type = std::find_if(types.begin(), types.end(),
                                   [&](const MealType& candidate) { return QString::number(candidate.code) == code; });
    return type != types.end() ? type->name : QStringLiteral("Error");
}

} // namespace

frmEditMealTime::frmEditMealTime(QWidget* owner, controls::Dialogs& dialogs, const QString& diaryPath) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmEditMealTime"));
    setWindowTitle(QStringLiteral("Edit Meal Time"));
    createControls();
    Form_Load(dialogs, diaryPath);
}

void frmEditMealTime::Form_Load(controls::Dialogs& dialogs, const QString& diaryPath)
{
    Data1 =
        named("Data1", new controls::DataControl(*this, dialogs, QStringLiteral("Meal Time"),
                                                 {.databasePath = diaryPath, .recordSource = QStringLiteral("Meals")}));
    layout()->addWidget(Data1);
    const controls::EventHandlers handlers(*this, dialogs);
    handlers.connect(Data1, &controls::DataControl::recordShown, &frmEditMealTime::Label2_Change);
    Data1->bind(*txtMealTime, QStringLiteral("MealTime"));
    Data1->bind(*Label2, QStringLiteral("MealDescription"));
    txtMealTime->setFocus();
    txtMealTime->selectAll();
}

void frmEditMealTime::Label2_Change()
{
    lblMealDesc->setText(Data1->isEmpty() ? QString() : nameOfType(Label2->text()));
}

void frmEditMealTime::createControls()
{
    auto* Label1 = named("Label1", new QLabel(QStringLiteral("Meal Time ...")));
    txtMealTime = named("txtMealTime", new QLineEdit);
    txtMealTime->setAccessibleName(QStringLiteral("Meal Time"));
    txtMealTime->setMinimumWidth(controls::widthOfDateAndTime(fontMetrics()));
    Label1->setBuddy(txtMealTime);
    lblMealDesc = named("lblMealDesc", new QLabel);
    lblMealDesc->setAccessibleName(QStringLiteral("Meal"));
    lblMealDesc->setMinimumWidth(fontMetrics().horizontalAdvance(mealTypes().first().name + QString(3, u'0')));
    Label2 = named("Label2", new QLabel);
    Label2->hide();

    auto* row = new QHBoxLayout;
    for (QWidget* control : std::initializer_list<QWidget*>{Label1, txtMealTime, lblMealDesc, Label2}) {
        row->addWidget(control);
    }
    row->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
}

} // namespace meals
