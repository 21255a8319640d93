// frmEditMealTime: the stored meals one at a time, their time corrected in place.
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace controls {
class DataControl;
class Dialogs;
} // namespace controls

namespace meals {

/// Nothing is checked here: the database converts what was typed, and refuses what is no date and time.
class frmEditMealTime : public QDialog
{
    Q_OBJECT

public:
    /// Throws RunTimeError where the diary cannot be read.
    frmEditMealTime(QWidget* owner, controls::Dialogs& dialogs, const QString& diaryPath);

private:
    void createControls();
    void Form_Load(controls::Dialogs& dialogs, const QString& diaryPath);
    void Label2_Change();

    QLineEdit* txtMealTime = nullptr;
    QLabel* Label2 = nullptr; ///< the code of the meal's type; hidden, its name is what users read
    QLabel* lblMealDesc = nullptr;
    controls::DataControl* Data1 = nullptr;
};

} // namespace meals
