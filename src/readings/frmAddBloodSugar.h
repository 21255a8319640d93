// frmAddBloodSugar: the user types one blood sugar reading, or several in one visit, and stores them.
#pragma once

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace controls {
class Dialogs;
class FieldFocus;
} // namespace controls

namespace runtime {
class Clock;
}

namespace readings {

/// Unchanged after load and after each save, when nothing can be stored; changed by any edit of level, date, time or
/// type.
class frmAddBloodSugar : public QDialog
{
    Q_OBJECT

public:
    /// Readings go to the diary file at `diaryPath`.
    frmAddBloodSugar(QWidget* owner, const runtime::Clock& clock, controls::Dialogs& dialogs, QString diaryPath);

private:
    void Form_Load();
    void txtBloodSugar_LostFocus();
    void txtDate_LostFocus();
    void txtTime_LostFocus();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdSave_Click();
    void SaveReading();
    void allowSaving() { setChanged(true); }

    void createControls();
    void connectHandlers();
    void setChanged(bool changed);

    const runtime::Clock& clock_;
    controls::Dialogs& dialogs_;
    const QString diaryPath_;

    QLineEdit* txtBloodSugar = nullptr;
    QLineEdit* txtDate = nullptr;
    QLineEdit* txtTime = nullptr;
    QComboBox* cboType = nullptr;
    QLineEdit* txtComment = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
    QPushButton* cmdSave = nullptr;
    controls::FieldFocus* focus_ = nullptr;
};

} // namespace readings
