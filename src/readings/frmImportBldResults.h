// frmImportBldResults: the user names a file that a blood glucose meter wrote, and its later readings are added.
#pragma once

#include <QDialog>

class QBoxLayout;
class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;

namespace controls {
class Dialogs;
}

namespace readings {

/// The cut-off is the latest stored reading unless the user changes it. After an import that a line has stopped it is
/// the latest reading that was added, so that the next goes on there.
class frmImportBldResults : public QDialog
{
    Q_OBJECT

public:
    /// Readings go to the diary file at `diaryPath`.
    frmImportBldResults(QWidget* owner, controls::Dialogs& dialogs, QString diaryPath);

private:
    void Form_Load();
    void cmdOK_Click();
    void cmdCancel_Click();
    int importReadings();

    void createControls();
    [[nodiscard]] QBoxLayout* createPathRow();
    [[nodiscard]] QBoxLayout* createButtons();
    void connectHandlers();

    controls::Dialogs& dialogs_;
    const QString diaryPath_;

    QLineEdit* txtPath = nullptr;
    QPushButton* cmdPath = nullptr;
    QGroupBox* fraResults = nullptr;
    QLineEdit* txtDate = nullptr;
    QCheckBox* chkResults = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
};

} // namespace readings
