#include "meals/meal_controls.h"

#include "controls/named.h"
#include "controls/report_list_view.h"
#include "meals/meal_type.h"

#include <QComboBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

namespace meals {

namespace {

constexpr int kGap = 12; ///< between groups of controls
constexpr int kSearchShare = 2;
constexpr int kMealShare = 5; ///< of the form's width
constexpr int kQuantityCharacters = 9;
constexpr int kDateCharacters = 12;
constexpr int kTimeCharacters = 7;
constexpr int kDoseCharacters = 7;
constexpr int kLeaderDots = 40;
constexpr int kDescriptionColumn = 1; ///< of the meal's lines

/// Makes the form's controls, in the order in which the Tab key visits them.
class Maker
{
public:
    explicit Maker(QDialog& form) : form_(form) {}

    template <typename Control>
    Control* make(const char* name, const QString& meaning)
    {
        auto* control = controls::named(name, new Control(&form_));
        control->setAccessibleName(meaning);
        return control;
    }

    QLineEdit* makeField(const char* name, const QString& meaning, int characters)
    {
        auto* field = make<QLineEdit>(name, meaning);
        field->setFixedWidth(field->fontMetrics().horizontalAdvance(QString(characters, u'0')));
        return field;
    }

    QLabel* makeLabel(const char* name, const QString& caption, QWidget* field)
    {
        auto* label = controls::named(name, new QLabel(caption, &form_));
        label->setTextFormat(Qt::PlainText);
        label->setBuddy(field);
        return label;
    }

    QPushButton* makeButton(const char* name, const QString& caption, const QString& tip = {})
    {
        auto* button = controls::named(name, new QPushButton(caption, &form_));
        button->setToolTip(tip);
        button->setAutoDefault(false); // Enter in a field presses no button
        return button;
    }

private:
    QDialog& form_;
};

QBoxLayout* rowOf(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QHBoxLayout;
    for (QWidget* widget : widgets) {
        row->addWidget(widget);
    }
    return row;
}

QBoxLayout* createSearch(Maker& maker, MealControls& ui)
{
    ui.txtSearch = maker.make<QLineEdit>("txtSearch", QStringLiteral("Food to search for"));
    ui.txtSearch->setToolTip(QStringLiteral("A part of the food's description. * stands for any text, ? for any "
                                            "character, # for any digit."));
    ui.cmdSearch = maker.makeButton("cmdSearch", QStringLiteral("Search"));
    ui.cmdSearch->setEnabled(false);
    ui.lstSearch = maker.make<controls::ReportListView>("lstSearch", QStringLiteral("Foods found"));
    ui.lstSearch->setSelectionMode(QAbstractItemView::SingleSelection);
    ui.txtQuantity = maker.makeField("txtQuantity", QStringLiteral("Quantity in grams"), kQuantityCharacters);
    ui.cmdAdd = maker.makeButton("cmdAdd", QStringLiteral("Add"), QStringLiteral("Adds the food to the meal."));
    ui.cmdAddIngredient = maker.makeButton("cmdAddIngredient", QStringLiteral("Add Ingredient"),
                                           QStringLiteral("Adds a food that no search finds to the food table."));

    QBoxLayout* quantity = rowOf(
        {maker.makeLabel("lblQuantity", QStringLiteral("Quantity (g)"), ui.txtQuantity), ui.txtQuantity, ui.cmdAdd});
    quantity->addStretch();
    auto* column = new QVBoxLayout;
    column->addLayout(
        rowOf({maker.makeLabel("lblSearch", QStringLiteral("Food"), ui.txtSearch), ui.txtSearch, ui.cmdSearch}));
    column->addWidget(ui.lstSearch);
    column->addLayout(quantity);
    QBoxLayout* missing = rowOf({ui.cmdAddIngredient});
    missing->addStretch();
    column->addLayout(missing);
    return column;
}

QBoxLayout* createMeal(Maker& maker, MealControls& ui)
{
    ui.lstMeal = maker.make<controls::ReportListView>("lstMeal", QStringLiteral("Meal"));
    ui.lstMeal->setSelectionMode(QAbstractItemView::SingleSelection);
    ui.lstMeal->setCutColumn(kDescriptionColumn);
    ui.lstMeal->setContextMenuPolicy(Qt::CustomContextMenu);
    ui.mnuPopUp = maker.make<QMenu>("mnuPopUp", QStringLiteral("Food"));
    ui.mnuCarbGoalSeek = ui.mnuPopUp->addAction(QStringLiteral("Carb/Insulin Goal Seek"));
    ui.mnuCarbGoalSeek->setObjectName(QStringLiteral("mnuCarbGoalSeek"));
    ui.cmdOptimise = maker.makeButton("cmdOptimise", QStringLiteral("Optimise"),
                                      QStringLiteral("Fits the quantity of the selected food to the insulin dose."));
    ui.cmdPrintMeal = maker.makeButton("cmdPrintMeal", QStringLiteral("Print Meal"));

    auto* column = new QVBoxLayout;
    column->addWidget(ui.lstMeal);
    QBoxLayout* buttons = rowOf({ui.cmdOptimise, ui.cmdPrintMeal});
    buttons->addStretch();
    column->addLayout(buttons);
    return column;
}

QBoxLayout* createEntry(Maker& maker, MealControls& ui)
{
    ui.txtDate = maker.makeField("txtDate", QStringLiteral("Date"), kDateCharacters);
    ui.cmdDate = maker.makeButton("cmdDate", QStringLiteral("..."), QStringLiteral("Picks the date from a calendar."));
    ui.cmdDate->setAccessibleName(QStringLiteral("Pick the date"));
    ui.cmdDate->setFixedWidth(ui.cmdDate->sizeHint().height());
    ui.txtTime = maker.makeField("txtTime", QStringLiteral("Time"), kTimeCharacters);
    ui.cboMealType = maker.make<QComboBox>("cboMealType", QStringLiteral("Meal type"));
    for (const MealType& type : mealTypes()) {
        ui.cboMealType->addItem(type.name, type.code);
    }
    ui.cboMealType->setCurrentIndex(-1);
    ui.txtInsulinDosage = maker.makeField("txtInsulinDosage", QStringLiteral("Insulin dose"), kDoseCharacters);
    ui.lblDate = maker.makeLabel("lblDate", QStringLiteral("Date"), ui.txtDate);
    ui.lblTime = maker.makeLabel("lblTime", QStringLiteral("Time"), ui.txtTime);
    ui.lblInsulinDosage = maker.makeLabel("lblInsulinDosage", QStringLiteral("Insulin ") + QString(kLeaderDots, u'.'),
                                          ui.txtInsulinDosage);
    // Its caption grows with each dose typed; what the place does not hold is cut off.
    ui.lblInsulinDosage->setFixedWidth(ui.lblInsulinDosage->sizeHint().width());

    QBoxLayout* row = rowOf({ui.lblDate, ui.txtDate, ui.cmdDate});
    row->addSpacing(kGap);
    row->addWidget(ui.lblTime);
    row->addWidget(ui.txtTime);
    row->addSpacing(kGap);
    row->addWidget(maker.makeLabel("lblMealType", QStringLiteral("Meal type"), ui.cboMealType));
    row->addWidget(ui.cboMealType);
    row->addSpacing(kGap);
    row->addWidget(ui.lblInsulinDosage);
    row->addWidget(ui.txtInsulinDosage);
    row->addStretch();
    return row;
}

QBoxLayout* createButtons(Maker& maker, MealControls& ui)
{
    ui.cmdGetOldMeal = maker.makeButton("cmdGetOldMeal", QStringLiteral("Base on Old Meal"),
                                        QStringLiteral("Starts a new meal with the foods of an old one."));
    ui.cmdModifyOldMeal = maker.makeButton("cmdModifyOldMeal", QStringLiteral("Modify Old Meal"),
                                           QStringLiteral("Fetches an old meal, which saving then replaces."));
    ui.cmdOK = maker.makeButton("cmdOK", QStringLiteral("OK"), QStringLiteral("Stores the meal and closes."));
    ui.cmdCancel = maker.makeButton("cmdCancel", QStringLiteral("Cancel"), QStringLiteral("Closes without storing."));
    ui.cmdSave =
        maker.makeButton("cmdSave", QStringLiteral("Save to DB"), QStringLiteral("Stores the meal and stays open."));

    QBoxLayout* row = rowOf({ui.cmdGetOldMeal, ui.cmdModifyOldMeal});
    row->addStretch();
    for (QPushButton* button : {ui.cmdOK, ui.cmdCancel, ui.cmdSave}) {
        row->addWidget(button);
    }
    return row;
}

} // namespace

MealControls createMealControls(QDialog& form)
{
    MealControls ui;
    Maker maker(form);
    auto* lists = new QHBoxLayout;
    lists->addLayout(createSearch(maker, ui), kSearchShare);
    lists->addSpacing(kGap);
    lists->addLayout(createMeal(maker, ui), kMealShare);
    QBoxLayout* entry = createEntry(maker, ui);
    QBoxLayout* buttons = createButtons(maker, ui);

    auto* layout = new QVBoxLayout(&form);
    layout->addLayout(lists);
    layout->addSpacing(kGap);
    layout->addLayout(entry);
    layout->addSpacing(kGap);
    layout->addLayout(buttons);
    return ui;
}

} // namespace meals
