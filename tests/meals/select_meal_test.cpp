#include "meals/frmSelectMeal.h"

#include "controls/mock_dialogs.h"
#include "controls/modApplication.h"
#include "controls/report_list_view.h"
#include "controls/window_testing.h"
#include "data/database.h"
#include "runtime/run_time_error.h"
#include "support/diary_content.h"
#include "support/test_diary.h"

#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace meals {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing_windows::child;
using testing_windows::showActive;

/// Opened on three meals; stored in the order 1 lunch, 2 breakfast of the day before, 3 snack of the day after.
class SelectMeal : public testing::Test
{
protected:
    SelectMeal()
    {
        addMeal("05/03/2024 12:30", 2, 6);
        addMeal("04/03/2024 08:00", 1, 7);
        addMeal("06/03/2024 16:00", 4, 0);
    }
    void SetUp() override { open(); }

    void open()
    {
        form.emplace(&owner, dialogs, diary.path());
        showActive(*form);
    }
    void addMeal(const char* when, int type, int dose)
    {
        reports::addMeal(diary.path(), {when, type, dose, {{1, 80}}});
    }

    controls::ReportListView& list() { return child<controls::ReportListView>(*form, "lstMeals"); }
    std::vector<std::string> lines()
    {
        std::vector<std::string> lines;
        for (int row = 0; row < list().model()->rowCount(); ++row) {
            lines.push_back(list().model()->index(row, 0).data().toString().toStdString());
        }
        return lines;
    }
    QPoint middleOf(int row) { return list().visualRect(list().model()->index(row, 0)).center(); }
    void clickLine(int row) { QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, middleOf(row)); }
    void click(const char* name) { QTest::mouseClick(&child<QPushButton>(*form, name), Qt::LeftButton); }
    void press(Qt::Key key) { QTest::keyClick(form->focusWidget(), key); }
    /// The number of the chosen meal; 0: none was chosen.
    int chosen() { return form->chosen() ? form->chosen()->number : 0; }

    TestDiary diary;
    controls::StrictDialogs dialogs;
    QWidget owner;
    std::optional<frmSelectMeal> form;
};

TEST_F(SelectMeal, HasItsCaptions)
{
    EXPECT_EQ(form->windowTitle().toStdString(), "Select Meal");
    EXPECT_EQ(child<QPushButton>(*form, "cmdOK").text().toStdString(), "OK");
    EXPECT_EQ(child<QPushButton>(*form, "cmdCancel").text().toStdString(), "Cancel");
}

TEST_F(SelectMeal, ListsTheMealsTheNewestFirst)
{
    EXPECT_THAT(lines(), ElementsAre("Wednesday 06 March 2024\tSnack", "Tuesday 05 March 2024\tLunch",
                                     "Monday 04 March 2024\tBreakfast"));
    EXPECT_THAT(list().selectedLines(), IsEmpty());
}

TEST_F(SelectMeal, TheDescriptionsStandInOneColumn)
{
    const QFontMetricsF metrics(list().font());
    const double column = list().tabStops().next(0);
    EXPECT_GT(column, metrics.horizontalAdvance("Wednesday 30 September 2024"));
    EXPECT_GT(column, metrics.horizontalAdvance("segunda-feira 30 fevereiro 2024"));
}

TEST_F(SelectMeal, OkLeavesItWithTheSelectedMeal)
{
    clickLine(1);
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    ASSERT_TRUE(form->chosen());
    EXPECT_EQ(form->chosen()->number, 1);
    EXPECT_EQ(form->chosen()->description.toStdString(), "Lunch");
    EXPECT_EQ(form->chosen()->insulinDose, 6);
    EXPECT_EQ(entryOf(*form->chosen()).time.toStdString(), "12:30");
}

TEST_F(SelectMeal, OkWithoutASelectionChoosesNone)
{
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(chosen(), 0);
}

TEST_F(SelectMeal, CancelAndEscapeChooseNone)
{
    for (const bool byKey : {false, true}) {
        open();
        clickLine(0);
        if (byKey) {
            press(Qt::Key_Escape);
        } else {
            click("cmdCancel");
        }
        EXPECT_FALSE(form->isVisible());
        EXPECT_EQ(chosen(), 0);
    }
}

TEST_F(SelectMeal, OneLineAtATimeIsSelected)
{
    clickLine(0);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::ShiftModifier, middleOf(2));
    EXPECT_THAT(list().selectedLines(), ElementsAre(2));
    click("cmdOK");
    EXPECT_EQ(chosen(), 2);
}

TEST_F(SelectMeal, ADoubleClickChoosesItsLine)
{
    clickLine(1);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, middleOf(1));
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(chosen(), 1);
}

TEST_F(SelectMeal, ADoubleClickBelowTheLinesDoesNothing)
{
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, list().viewport()->rect().bottomLeft());
    EXPECT_TRUE(form->isVisible());
}

TEST_F(SelectMeal, GoesByKeysAlone)
{
    EXPECT_TRUE(list().hasFocus());
    press(Qt::Key_Down);
    press(Qt::Key_End);
    EXPECT_THAT(list().selectedLines(), ElementsAre(2));
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(chosen(), 1);
}

TEST_F(SelectMeal, TheFirstArrowSelectsTheNewestMeal)
{
    press(Qt::Key_Down);
    EXPECT_THAT(list().selectedLines(), ElementsAre(0));
}

TEST_F(SelectMeal, TabVisitsListAndButtons)
{
    std::vector<std::string> visited;
    for (int step = 0; step < 4; ++step) {
        visited.push_back(form->focusWidget()->objectName().toStdString());
        press(Qt::Key_Tab);
    }
    EXPECT_THAT(visited, ElementsAre("lstMeals", "cmdOK", "cmdCancel", "lstMeals"));
}

TEST_F(SelectMeal, ShowsMealsOfTheMeantimeWhenItIsOpenedAgain)
{
    addMeal("07/03/2024 12:00", 3, 6);
    EXPECT_EQ(list().model()->rowCount(), 3);
    open();
    EXPECT_EQ(lines()[0], "Thursday 07 March 2024\tDinner");
}

TEST_F(SelectMeal, ADiaryWithoutMealsFailsAtLoad)
{
    data::Database(diary.path()).execute("Delete * from Meals");
    try {
        const frmSelectMeal failing(&owner, dialogs, diary.path());
        ADD_FAILURE() << "it opened";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3021);
        EXPECT_EQ(error.hint().toStdString(), "There is no stored meal yet.");
    }
}

TEST_F(SelectMeal, RunsModalOverItsOwner)
{
    form.reset();
    owner.resize(800, 600);
    showActive(owner);
    frmSelectMeal modal(&owner, dialogs, diary.path());
    testing_windows::whenModal([&](QWidget& window) {
        EXPECT_EQ(&window, &modal);
        auto& list = child<controls::ReportListView>(window, "lstMeals");
        QTest::keyClick(&list, Qt::Key_Down);
        QTest::keyClick(&list, Qt::Key_Down);
        QTest::mouseClick(&child<QPushButton>(window, "cmdOK"), Qt::LeftButton);
    });
    controls::ShowCentredModal(modal, owner);
    ASSERT_TRUE(modal.chosen());
    EXPECT_EQ(modal.chosen()->number, 1);
}

} // namespace
} // namespace meals
