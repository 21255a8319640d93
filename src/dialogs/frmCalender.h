// frmCalender: the user picks a day from a month.
#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;

namespace controls {
class Dialogs;
}

namespace runtime {
class Clock;
}

namespace dialogs {

class CalendarGrid;
class CalendarMonth;

/// A double click on a day picks it and hides the form, and so does Enter on the current day.
class frmCalender : public QDialog
{
    Q_OBJECT

public:
    /// Shows the present month.
    frmCalender(QWidget* owner, const runtime::Clock& clock, controls::Dialogs& dialogs);

    /// Shows the month of a date as typed; of the present date when the text is no date.
    void DoCalender(const QString& date);
    /// The picked date as "5/3/2002"; empty as long as none was picked.
    [[nodiscard]] const QString& mgsPickDate() const { return pickedDate_; }

private:
    void Form_Load();
    void cboMonth_Click();
    void PreviousYear_Click();
    void NextYear_Click();
    void grdCalender_DblClick(int row, int column);

    void createControls();
    void connectHandlers();
    void turnTo(const CalendarMonth& month);

    const runtime::Clock& clock_;
    controls::Dialogs& dialogs_;
    QString pickedDate_;

    QComboBox* cboMonth = nullptr;
    QPushButton* PreviousYear = nullptr;
    QPushButton* NextYear = nullptr;
    QLabel* DateCaption = nullptr;
    CalendarGrid* grdCalender = nullptr;
};

} // namespace dialogs
