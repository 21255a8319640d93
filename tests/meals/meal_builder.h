// The meal builder on a diary of its own, for tests.
#pragma once

#include "controls/mock_dialogs.h"
#include "controls/report_list_view.h"
#include "controls/window_testing.h"
#include "meals/frmAddMeal.h"
#include "meals/known_foods.h"
#include "reports/report_state.h"
#include "runtime/clock.h"
#include "support/recording_printers.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace meals {

/// Opened at 12:30 on 5 March 2024, a Tuesday.
class MealBuilder : public testing::Test
{
protected:
    MealBuilder();
    void SetUp() override { open(); }

    /// A fresh window.
    void open();

    QLineEdit& field(const char* name) { return testing_windows::child<QLineEdit>(*form, name); }
    QPushButton& button(const char* name) { return testing_windows::child<QPushButton>(*form, name); }
    QLabel& label(const char* name) { return testing_windows::child<QLabel>(*form, name); }
    QComboBox& cboMealType() { return testing_windows::child<QComboBox>(*form, "cboMealType"); }
    controls::ReportListView& list(const char* name)
    {
        return testing_windows::child<controls::ReportListView>(*form, name);
    }
    std::string text(const char* name) { return field(name).text().toStdString(); }
    /// The lines of a list as they show.
    std::vector<std::string> lines(const char* list);
    /// Those of the foods in the meal.
    std::vector<std::string> foodLines();

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(form->focusWidget(), key, modifiers);
    }
    void click(const char* button) { QTest::mouseClick(&this->button(button), Qt::LeftButton); }
    /// Into the field that has the focus.
    void typeOn(const char* text) { QTest::keyClicks(form->focusWidget(), QLatin1String(text)); }
    /// Into the field, its text replaced.
    void type(const char* name, const char* text);
    QPoint placeOf(const char* list, int line);
    void clickLine(const char* list, int line);
    void doubleClickLine(const char* list, int line);
    void chooseType(const char* name) { cboMealType().setCurrentText(QLatin1String(name)); }

    /// By the search field and Enter.
    void search(const char* text);
    /// Adds the first food that the search finds, by keys and a click.
    void add(const char* search, const char* grams);
    void expectError(const std::string& beginning);
    void expectMessage(const char* text, const char* title);

    KnownFoods foods;
    runtime::FixedClock clock{{}};
    controls::StrictDialogs dialogs;
    RecordingPrinters printers;
    reports::ReportState state{clock};
    QWidget owner;
    std::optional<frmAddMeal> form;
};

} // namespace meals
