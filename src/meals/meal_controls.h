// The controls of the meal builder, and where they stand.
#pragma once

class QAction;
class QComboBox;
class QDialog;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

namespace controls {
class ReportListView;
}

namespace meals {

/// Each carries its name as its object's name.
struct MealControls {
    QLineEdit* txtSearch = nullptr;
    QPushButton* cmdSearch = nullptr;
    controls::ReportListView* lstSearch = nullptr;
    QLineEdit* txtQuantity = nullptr;
    QPushButton* cmdAdd = nullptr;
    QPushButton* cmdAddIngredient = nullptr;

    controls::ReportListView* lstMeal = nullptr;
    QMenu* mnuPopUp = nullptr; ///< of lstMeal
    QAction* mnuCarbGoalSeek = nullptr;
    QPushButton* cmdOptimise = nullptr;
    QPushButton* cmdPrintMeal = nullptr;

    QLabel* lblDate = nullptr;
    QLineEdit* txtDate = nullptr;
    QPushButton* cmdDate = nullptr;
    QLabel* lblTime = nullptr;
    QLineEdit* txtTime = nullptr;
    QComboBox* cboMealType = nullptr; ///< the type's code is the item's data
    QLabel* lblInsulinDosage = nullptr;
    QLineEdit* txtInsulinDosage = nullptr;

    QPushButton* cmdGetOldMeal = nullptr;
    QPushButton* cmdModifyOldMeal = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
    QPushButton* cmdSave = nullptr;
};

/// All of them are owned by the form. The Tab key visits them in the order above. Nothing is connected yet.
[[nodiscard]] MealControls createMealControls(QDialog& form);

} // namespace meals
