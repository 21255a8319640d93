// frmAddIngredient: the user adds a food of his own, an ingredient or a recipe, to the food table.
#pragma once

#include <QDialog>

#include <vector>

class QBoxLayout;
class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;

namespace controls {
class Dialogs;
class FieldFocus;
} // namespace controls

namespace meals {

/// One row for each nutrient that the food table has: fifteen in the first column, all others beside them. There is no
/// default button: Enter in a text box stores nothing.
class frmAddIngredient : public QDialog
{
    Q_OBJECT

public:
    /// Foods go to the diary file at `diaryPath`, whose food table is looked at once.
    frmAddIngredient(QWidget* owner, controls::Dialogs& dialogs, QString diaryPath);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Form_Load();
    void cmdOK_Click();
    void cmdSave_Click();
    void cmdCancel_Click();
    void txtNutrientValue_LostFocus(std::size_t index);
    void SaveIngredient();

    void createControls();
    [[nodiscard]] QBoxLayout* createHead();
    [[nodiscard]] QBoxLayout* createButtons();
    void addRow(const QString& column);
    void placeRow(int index, QLabel* label, QLineEdit* box);
    void connectHandlers();
    void enter(QLineEdit* field);

    controls::Dialogs& dialogs_;
    const QString diaryPath_;

    QLineEdit* txtDesc = nullptr;
    QCheckBox* chkRecipe = nullptr;
    QCheckBox* chkIngredient = nullptr;
    std::vector<QLabel*> lblNutrient;
    std::vector<QLineEdit*> txtNutrientValue; ///< as many
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdCancel = nullptr;
    QScrollArea* scrolled_ = nullptr;
    QGridLayout* rows_ = nullptr;
    controls::FieldFocus* focus_ = nullptr;
};

} // namespace meals
