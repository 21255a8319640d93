#include "meals/frmAddMeal.h"

#include "controls/dialogs.h"
#include "controls/field_focus.h"
#include "controls/hourglass_pointer.h"
#include "controls/modApplication.h"
#include "controls/printers.h"
#include "controls/report_list_view.h"
#include "dialogs/change_date.h"
#include "meals/carb_goal.h"
#include "meals/food.h"
#include "meals/frmAddIngredient.h"
#include "meals/frmSelectMeal.h"
#include "meals/insulin_caption.h"
#include "meals/meal_printout.h"
#include "reports/modTabs.h"
#include "reports/report_state.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/error_hints.h"
#include "runtime/format.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>

namespace meals {

namespace {

const QSize kInitialSize(920, 560);
constexpr int kShortestSearch = 2;
constexpr double kUsualRatio = 11.55; ///< grams of carbohydrate to a unit of insulin

const QList<double>& tabStops()
{
    static const QList<double> stops{30, 200, 230, 260};
    return stops;
}

double doseOf(const QString& typed)
{
    return runtime::withHintOnError(
        QStringLiteral("The insulin dose is not a number: type it first, then choose this again."),
        [&] { return runtime::toDouble(typed); });
}

void moveFocusAndSelectAll(QLineEdit& field)
{
    field.setFocus();
    field.selectAll();
}

} // namespace

frmAddMeal::frmAddMeal(QWidget* owner, MealSurroundings world)
    : QDialog(owner), world_(world), handlers_(*this, world.dialogs), ui_(createMealControls(*this))
{
    setObjectName(QStringLiteral("frmAddMeal"));
    setWindowTitle(QStringLiteral("Add Meal"));
    ui_.lstSearch->showLines(foundModel_);
    ui_.lstMeal->showLines(lines_);
    Form_Load();
    connectHandlers();
    resize(kInitialSize.boundedTo(screen()->availableSize()));
}

void frmAddMeal::Form_Load()
{
    reports::SetListTabStops(sheet_.lines(), tabStops());
    const runtime::Date now = world_.clock.now();
    ui_.txtDate->setText(runtime::format(now, QStringLiteral("dd/mm/yyyy")));
    ui_.txtTime->setText(runtime::format(now, QStringLiteral("hh:mm")));
    ui_.txtQuantity->setText(QStringLiteral("0"));
}

void frmAddMeal::txtSearch_Change()
{
    ui_.cmdSearch->setEnabled(ui_.txtSearch->text().size() >= kShortestSearch);
}

void frmAddMeal::txtSearch_KeyPress()
{
    cmdSearch_Click();
}

void frmAddMeal::cmdSearch_Click()
{
    const QString text = ui_.txtSearch->text();
    found_ = searchFoods(world_.state.strPath, text);
    foundLines_.clear();
    for (const FoundFood& food : found_) {
        foundLines_.addItem(food.description);
    }
    if (found_.isEmpty()) {
        foundLines_.addItem(QStringLiteral("No Results for - ") + text);
    }
    ui_.lstSearch->setCurrentIndex({}); // not the first by itself, so that the first arrow key selects it
}

void frmAddMeal::lstSearch_Click()
{
    ui_.lstSearch->setCurrentIndex(ui_.lstSearch->currentIndex()); // chosen by Enter, it may not be selected yet
    moveFocusAndSelectAll(*ui_.txtQuantity);
}

void frmAddMeal::txtQuantity_Change()
{
    const QString text = ui_.txtQuantity->text();
    if (!runtime::isNumeric(text)) {
        ui_.txtQuantity->setText(QStringLiteral("0"));
        ui_.txtQuantity->selectAll(); // so that what is typed next takes its place
        return;
    }
    const std::optional<int> line = selectedLine();
    if (line && MealSheet::beginsWithNumber(sheet_.lines().at(*line).text)) {
        UpdateMenuListQty(runtime::toDouble(text) / 100, *line);
    }
}

void frmAddMeal::txtQuantity_KeyPress()
{
    cmdAdd_Click();
    moveFocusAndSelectAll(*ui_.txtSearch);
}

void frmAddMeal::txtQuantity_LostFocus()
{
    // Where the user clicked into the list, it must not move below the pointer.
    ui_.lstMeal->setAutoScroll(!ui_.lstMeal->hasFocus());
    ui_.lstMeal->selectOnly(static_cast<int>(sheet_.lines().size()) - 1);
    ui_.lstMeal->setAutoScroll(true);
}

void frmAddMeal::cmdAdd_Click()
{
    AddIngredient(ui_.txtQuantity->text(), chosenFood());
}

void frmAddMeal::cmdAddIngredient_Click()
{
    frmAddIngredient form(this, world_.dialogs, world_.state.strPath);
    controls::ShowCentredModal(form, *this);
}

void frmAddMeal::lstMeal_DblClick()
{
    if (const std::optional<int> line = selectedFoodLine()) {
        ui_.txtQuantity->setText(sheet_.lines().at(*line).text.section(u'\t', 0, 0));
        moveFocusAndSelectAll(*ui_.txtQuantity);
    }
}

void frmAddMeal::lstMeal_MouseDown(QPoint place)
{
    if (selectedFoodLine()) {
        ui_.mnuPopUp->popup(ui_.lstMeal->viewport()->mapToGlobal(place));
    }
}

void frmAddMeal::showMenuAtSelectedLine()
{
    if (const std::optional<int> line = selectedLine()) {
        lstMeal_MouseDown(ui_.lstMeal->visualRect(lines_.index(*line)).center());
    }
}

void frmAddMeal::mnuCarbGoalSeek_Click()
{
    const std::optional<int> line = selectedFoodLine();
    if (!line) {
        return;
    }
    const QString answer =
        world_.dialogs.askText(this, QStringLiteral("Please enter target ratio to adjust this quantity for?"),
                               runtime::format(kUsualRatio, QStringLiteral("0.00")));
    if (!runtime::isNumeric(answer)) {
        world_.dialogs.showError(this, QStringLiteral("Ratio must be numeric"));
        return;
    }
    const double ratio = runtime::toDouble(answer);
    const double dose = doseOf(ui_.txtInsulinDosage->text());
    const Food food = foodNumbered(world_.state.strPath, sheet_.foodNumberAt(*line));
    if (const std::optional<double> factor = factorForRatio(sheet_, *line, food, dose, ratio)) {
        UpdateMenuListQty(*factor, *line);
    } else {
        world_.dialogs.showMessage(this, QStringLiteral("Ingredients with no carbohydrate can not be used"),
                                   QStringLiteral("Quillon - Carb/Insulin Optimise"));
    }
}

void frmAddMeal::cmdOptimise_Click()
{
    mnuCarbGoalSeek_Click();
}

void frmAddMeal::cmdPrintMeal_Click()
{
    const auto printer = world_.printers.open(this, QStringLiteral("Meal"));
    if (!printer) {
        return;
    }
    const controls::HourglassPointer hourglass;
    printMeal(*printer, sheet_, world_.clock.now(), world_.state.printedLines);
}

void frmAddMeal::cmdDate_Click()
{
    dialogs::ChangeDate(*ui_.txtDate, *this, world_.clock, world_.dialogs);
}

void frmAddMeal::txtInsulinDosage_Change()
{
    QLabel& label = *ui_.lblInsulinDosage;
    const auto width = [metrics = QFontMetricsF(label.font())](const QString& text) {
        return metrics.horizontalAdvance(text);
    };
    if (const auto caption = insulinCaption(label.text(), ui_.txtInsulinDosage->text(), mealType(), sheet_, width)) {
        label.setText(*caption);
    }
}

void frmAddMeal::cmdGetOldMeal_Click()
{
    const std::optional<StoredMeal> meal = chooseOldMeal();
    lngOldMealToDelete = 0;
    if (meal) {
        fetchMeal(*meal);
    }
}

void frmAddMeal::cmdModifyOldMeal_Click()
{
    const std::optional<StoredMeal> meal = chooseOldMeal();
    for (QWidget* control :
         std::initializer_list<QWidget*>{ui_.lblDate, ui_.txtDate, ui_.cmdDate, ui_.lblTime, ui_.txtTime}) {
        control->setEnabled(false);
    }
    if (meal) {
        lngOldMealToDelete = 0; // where fetching fails, no meal chosen before may be replaced by what is composed next
        fetchMeal(*meal);
        lngOldMealToDelete = meal->number;
    }
}

void frmAddMeal::cmdOK_Click()
{
    if (!isMealValid()) {
        return;
    }
    saveMeal();
    ui_.cmdOK->setEnabled(false); // a second click of a double click stores nothing
    accept();
}

void frmAddMeal::cmdCancel_Click()
{
    reject();
}

void frmAddMeal::cmdSave_Click()
{
    if (!isMealValid()) {
        return;
    }
    saveMeal();
    world_.dialogs.showMessage(this, QStringLiteral("Meal Saved"));
}

std::optional<StoredMeal> frmAddMeal::chooseOldMeal()
{
    frmSelectMeal form(this, world_.dialogs, world_.state.strPath);
    controls::ShowCentredModal(form, *this);
    return form.chosen();
}

void frmAddMeal::fetchMeal(const StoredMeal& meal)
{
    fetchFoods(sheet_, world_.state.strPath, meal.number);
    const MealEntry fetched = entryOf(meal);
    ui_.cboMealType->setCurrentIndex(fetched.type ? ui_.cboMealType->findData(*fetched.type) : -1);
    ui_.txtInsulinDosage->setText(fetched.insulinDose);
    ui_.txtDate->setText(fetched.date);
    ui_.txtTime->setText(fetched.time);
}

/// Adds so many grams of the food to the meal.
void frmAddMeal::AddIngredient(const QString& strQty, qint32 lngNDBNo)
{
    const bool onFood = selectedFoodLine().has_value();
    meals::AddIngredient(sheet_, world_.state.strPath, strQty, lngNDBNo);
    // In place of a closing line, which this rewrites, the view selects the food above it: the next quantity typed
    // would be that food's.
    if (!onFood) {
        ui_.lstMeal->clearSelection();
    }
}

/// Gives a food line another quantity and selects it.
void frmAddMeal::UpdateMenuListQty(double dblFactor, int intSel)
{
    meals::UpdateMenuListQty(sheet_, world_.state.strPath, dblFactor, intSel);
    ui_.lstMeal->selectOnly(intSel);
}

/// Says why the meal may not be saved, and gives the focus to the control to blame.
bool frmAddMeal::isMealValid()
{
    const std::optional<Refusal> refusal = refusalOf(entry(), sheet_);
    if (!refusal) {
        return true;
    }
    world_.dialogs.showMessage(this, textOf(*refusal), QStringLiteral("Validation Error"));
    if (refusal == Refusal::NoType) {
        ui_.cboMealType->setFocus();
    } else if (refusal == Refusal::DoseNotANumber) {
        ui_.txtInsulinDosage->setFocus();
    }
    return false;
}

void frmAddMeal::saveMeal()
{
    meals::saveMeal(world_.state.strPath, entry(), sheet_);
}

MealEntry frmAddMeal::entry() const
{
    return {.date = ui_.txtDate->text(),
            .time = ui_.txtTime->text(),
            .type = mealType(),
            .insulinDose = ui_.txtInsulinDosage->text(),
            .replaces = lngOldMealToDelete};
}

std::optional<int> frmAddMeal::mealType() const
{
    if (ui_.cboMealType->currentIndex() < 0) {
        return std::nullopt;
    }
    return ui_.cboMealType->currentData().toInt();
}

qint32 frmAddMeal::chosenFood() const
{
    const QList<int> chosen = ui_.lstSearch->selectedLines();
    const auto noneIsChosen = [](runtime::ErrorNumber number) {
        return runtime::RunTimeError(number).withHint(
            QStringLiteral("No food is chosen: search for one and choose it in the list. Nothing was added."));
    };
    if (chosen.isEmpty()) {
        throw noneIsChosen(runtime::ErrorNumber::SubscriptOutOfRange);
    }
    if (found_.isEmpty()) { // the line says that there are no results
        throw noneIsChosen(runtime::ErrorNumber::NoCurrentRecord);
    }
    return found_.at(chosen.first()).number;
}

std::optional<int> frmAddMeal::selectedLine() const
{
    const QList<int> lines = ui_.lstMeal->selectedLines();
    return lines.isEmpty() ? std::nullopt : std::optional(lines.first());
}

std::optional<int> frmAddMeal::selectedFoodLine() const
{
    const std::optional<int> line = selectedLine();
    return line && sheet_.isFoodLine(*line) ? line : std::nullopt;
}

void frmAddMeal::connectHandlers()
{
    using controls::ReportListView;
    handlers_.connect(ui_.txtSearch, &QLineEdit::textChanged, &frmAddMeal::txtSearch_Change);
    handlers_.connect(ui_.txtSearch, &QLineEdit::returnPressed, &frmAddMeal::txtSearch_KeyPress);
    handlers_.connect(ui_.cmdSearch, &QPushButton::clicked, &frmAddMeal::cmdSearch_Click);
    handlers_.connect(ui_.lstSearch, &ReportListView::clicked, &frmAddMeal::lstSearch_Click);
    handlers_.connect(ui_.lstSearch, &ReportListView::activated, &frmAddMeal::lstSearch_Click);
    handlers_.connect(ui_.txtQuantity, &QLineEdit::textChanged, &frmAddMeal::txtQuantity_Change);
    handlers_.connect(ui_.txtQuantity, &QLineEdit::returnPressed, &frmAddMeal::txtQuantity_KeyPress);
    focus_ = new controls::FieldFocus(*this);
    focus_->watch(*ui_.txtQuantity, handlers_.function(&frmAddMeal::txtQuantity_LostFocus));
    handlers_.connect(ui_.cmdAdd, &QPushButton::clicked, &frmAddMeal::cmdAdd_Click);
    handlers_.connect(ui_.cmdAddIngredient, &QPushButton::clicked, &frmAddMeal::cmdAddIngredient_Click);

    handlers_.connect(ui_.lstMeal, &ReportListView::doubleClicked, &frmAddMeal::lstMeal_DblClick);
    handlers_.connect(ui_.lstMeal, &ReportListView::customContextMenuRequested, &frmAddMeal::lstMeal_MouseDown);
    auto* menuKey = new QShortcut(Qt::SHIFT | Qt::Key_F10, ui_.lstMeal);
    menuKey->setContext(Qt::WidgetShortcut);
    handlers_.connect(menuKey, &QShortcut::activated, &frmAddMeal::showMenuAtSelectedLine);
    handlers_.connect(ui_.mnuCarbGoalSeek, &QAction::triggered, &frmAddMeal::mnuCarbGoalSeek_Click);
    handlers_.connect(ui_.cmdOptimise, &QPushButton::clicked, &frmAddMeal::cmdOptimise_Click);
    handlers_.connect(ui_.cmdPrintMeal, &QPushButton::clicked, &frmAddMeal::cmdPrintMeal_Click);

    handlers_.connect(ui_.cmdDate, &QPushButton::clicked, &frmAddMeal::cmdDate_Click);
    handlers_.connect(ui_.txtInsulinDosage, &QLineEdit::textChanged, &frmAddMeal::txtInsulinDosage_Change);
    handlers_.connect(ui_.cmdGetOldMeal, &QPushButton::clicked, &frmAddMeal::cmdGetOldMeal_Click);
    handlers_.connect(ui_.cmdModifyOldMeal, &QPushButton::clicked, &frmAddMeal::cmdModifyOldMeal_Click);
    handlers_.connect(ui_.cmdOK, &QPushButton::clicked, &frmAddMeal::cmdOK_Click);
    handlers_.connect(ui_.cmdCancel, &QPushButton::clicked, &frmAddMeal::cmdCancel_Click);
    handlers_.connect(ui_.cmdSave, &QPushButton::clicked, &frmAddMeal::cmdSave_Click);
}

/// Enter presses the button that has the focus, and in a field none.
void frmAddMeal::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
    } else if (auto* button = qobject_cast<QPushButton*>(focusWidget())) {
        button->click();
    }
}

} // namespace meals
