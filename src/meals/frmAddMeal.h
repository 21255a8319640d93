// frmAddMeal: the user composes a meal of foods, with its time and insulin, and stores or prints it.
#pragma once

#include "controls/event_handlers.h"
#include "controls/report_list_model.h"
#include "meals/meal_controls.h"
#include "meals/meal_sheet.h"
#include "meals/meal_storage.h"
#include "meals/meal_surroundings.h"

#include <QDialog>

#include <optional>

namespace controls {
class FieldFocus;
}

namespace meals {

/// Opens with an empty meal, the present day and time, no type and no dose. Nothing is stored before the user says so;
/// closing discards the meal.
class frmAddMeal : public QDialog
{
    Q_OBJECT

public:
    frmAddMeal(QWidget* owner, MealSurroundings world);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Form_Load();
    void txtSearch_Change();
    void txtSearch_KeyPress();
    void cmdSearch_Click();
    void lstSearch_Click();
    void txtQuantity_Change();
    void txtQuantity_KeyPress();
    void txtQuantity_LostFocus();
    void cmdAdd_Click();
    void cmdAddIngredient_Click();
    void lstMeal_DblClick();
    void lstMeal_MouseDown(QPoint place);
    void mnuCarbGoalSeek_Click();
    void cmdOptimise_Click();
    void cmdPrintMeal_Click();
    void cmdDate_Click();
    void txtInsulinDosage_Change();
    void cmdGetOldMeal_Click();
    void cmdModifyOldMeal_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdSave_Click();

    void AddIngredient(const QString& strQty, qint32 lngNDBNo);
    void UpdateMenuListQty(double dblFactor, int intSel);
    [[nodiscard]] bool isMealValid();
    void saveMeal();

    void connectHandlers();
    [[nodiscard]] std::optional<StoredMeal> chooseOldMeal();
    void fetchMeal(const StoredMeal& meal);
    [[nodiscard]] MealEntry entry() const;
    [[nodiscard]] std::optional<int> mealType() const;
    [[nodiscard]] qint32 chosenFood() const;
    [[nodiscard]] std::optional<int> selectedLine() const;
    [[nodiscard]] std::optional<int> selectedFoodLine() const;
    void showMenuAtSelectedLine();

    MealSurroundings world_;
    const controls::EventHandlers<frmAddMeal> handlers_;
    MealSheet sheet_;
    controls::ReportListModel lines_{sheet_.lines()};
    QList<FoundFood> found_; ///< one for each line of lstSearch, none for the line that tells so
    reports::ReportList foundLines_;
    controls::ReportListModel foundModel_{foundLines_};
    qint32 lngOldMealToDelete = 0;

    MealControls ui_;
    controls::FieldFocus* focus_ = nullptr;
};

} // namespace meals
