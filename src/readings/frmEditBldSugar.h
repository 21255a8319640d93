// frmEditBldSugar: the stored readings one at a time, corrected in place.
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace controls {
class DataControl;
class Dialogs;
} // namespace controls

namespace readings {

/// Nothing is checked here: the database converts what was typed, and refuses what does not fit. Codes that are not in
/// the list are stored too.
class frmEditBldSugar : public QDialog
{
    Q_OBJECT

public:
    /// Throws RunTimeError where the diary cannot be read; 3021 where its list of types is empty.
    frmEditBldSugar(QWidget* owner, controls::Dialogs& dialogs, const QString& diaryPath);

private:
    void createControls();
    void Form_Load(controls::Dialogs& dialogs, const QString& diaryPath);

    QLineEdit* txtMmol = nullptr;
    QLineEdit* txtType = nullptr;
    QLineEdit* txtTime = nullptr;
    QLineEdit* txtComments = nullptr;
    QLabel* lblDesc = nullptr;
    controls::DataControl* Data1 = nullptr;
};

} // namespace readings
