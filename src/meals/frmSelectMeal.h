// frmSelectMeal: the user picks one of the stored meals.
#pragma once

#include "meals/meal_storage.h"
#include "reports/report_list.h"

#include <QDialog>

#include <memory>
#include <optional>

class QPushButton;

namespace controls {
class Dialogs;
class ReportListModel;
class ReportListView;
} // namespace controls

namespace meals {

/// Lists the newest first. A double click on a line picks it as OK does.
class frmSelectMeal : public QDialog
{
    Q_OBJECT

public:
    /// Throws RunTimeError where the diary cannot be read; 3021 where it holds no meal.
    frmSelectMeal(QWidget* owner, controls::Dialogs& dialogs, const QString& diaryPath);
    ~frmSelectMeal() override;

    /// The meal that the form was left with by OK; none where no line was selected, or the user cancelled.
    [[nodiscard]] const std::optional<StoredMeal>& chosen() const { return chosen_; }

private:
    void Form_Load(const QString& diaryPath);
    void cmdOK_Click();
    void cmdCancel_Click();

    void createControls();
    void connectHandlers(controls::Dialogs& dialogs);

    QList<StoredMeal> meals_; ///< one for each line
    reports::ReportList lines_;
    std::unique_ptr<controls::ReportListModel> model_;
    std::optional<StoredMeal> chosen_;

    controls::ReportListView* lstMeals = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
};

} // namespace meals
