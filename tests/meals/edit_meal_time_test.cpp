#include "meals/frmEditMealTime.h"

#include "controls/mock_dialogs.h"
#include "controls/modApplication.h"
#include "controls/window_testing.h"
#include "data/database.h"
#include "meals/exported_table.h"
#include "runtime/run_time_error.h"
#include "support/diary_content.h"
#include "support/test_diary.h"

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace meals {
namespace {

using testing::_;
using testing::ElementsAre;
using testing_windows::child;
using testing_windows::showActive;

/// Opened on a meal of each type, in the order of their codes.
class EditMealTime : public testing::Test
{
protected:
    EditMealTime()
    {
        addMeal("05/03/2024 08:00", 1);
        addMeal("05/03/2024 12:30", 2);
        addMeal("04/03/2024 19:00", 3);
        addMeal("05/03/2024 16:00", 4);
    }
    void SetUp() override { open(); }

    void open()
    {
        form.emplace(&owner, dialogs, diary.path());
        showActive(*form);
    }
    void addMeal(const char* when, int type) { reports::addMeal(diary.path(), {when, type, 6, {{1, 80}}}); }

    QLineEdit& time() { return child<QLineEdit>(*form, "txtMealTime"); }
    std::string label(const char* name) { return child<QLabel>(*form, name).text().toStdString(); }
    std::string shown()
    {
        return time().text().toStdString() + " | " + label("lblMealDesc") + " (" + label("lblPosition") + ")";
    }
    void type(const char* text)
    {
        QTest::mouseClick(&time(), Qt::LeftButton);
        time().selectAll();
        press(Qt::Key_Backspace);
        QTest::keyClicks(&time(), QLatin1String(text));
    }
    void press(Qt::Key key) { QTest::keyClick(form->focusWidget(), key); }
    void click(const char* name) { QTest::mouseClick(&child<QToolButton>(*form, name), Qt::LeftButton); }
    [[nodiscard]] std::vector<std::string> meals() const { return exportedTable(diary.path(), "Meals"); }

    TestDiary diary;
    controls::StrictDialogs dialogs;
    QWidget owner;
    std::optional<frmEditMealTime> form;
};

TEST_F(EditMealTime, HasItsCaptions)
{
    EXPECT_EQ(form->windowTitle().toStdString(), "Edit Meal Time");
    EXPECT_EQ(label("Label1"), "Meal Time ...");
    EXPECT_TRUE(child<QWidget>(*form, "Data1").isVisible());
    EXPECT_FALSE(child<QLabel>(*form, "Label2").isVisible()) << "users read the type's name";
}

TEST_F(EditMealTime, WalksTheMealsInStoredOrderAndNamesTheirTypes)
{
    EXPECT_EQ(shown(), "05/03/2024 08:00:00 | Breakfast (Meal Time  1 of 4)");
    click("cmdNext");
    EXPECT_EQ(shown(), "05/03/2024 12:30:00 | Lunch (Meal Time  2 of 4)");
    press(Qt::Key_PageDown);
    EXPECT_EQ(shown(), "04/03/2024 19:00:00 | Dinner (Meal Time  3 of 4)");
    click("cmdLast");
    EXPECT_EQ(shown(), "05/03/2024 16:00:00 | Snack (Meal Time  4 of 4)");
    EXPECT_EQ(label("Label2"), "4");
    click("cmdFirst");
    EXPECT_EQ(shown(), "05/03/2024 08:00:00 | Breakfast (Meal Time  1 of 4)");
}

TEST_F(EditMealTime, ATypeThatIsNoneShowsAsAnError)
{
    for (const int code : {0, 5, -1, 12}) {
        addMeal("06/03/2024 12:00", code);
    }
    open();
    for (int step = 0; step < 4; ++step) {
        click("cmdNext");
    }
    for (const char* code : {"0", "5", "-1", "12"}) {
        EXPECT_EQ(label("Label2"), code);
        EXPECT_EQ(label("lblMealDesc"), "Error");
        press(Qt::Key_PageDown);
    }
}

TEST_F(EditMealTime, AnOpenTypeShowsAsAnError)
{
    {
        data::Database database(diary.path());
        data::Recordset meals = database.openRecordset("Meals");
        meals.edit();
        meals.set("MealDescription", runtime::Null{});
        meals.update();
    }
    open();
    EXPECT_EQ(label("Label2"), "");
    EXPECT_EQ(label("lblMealDesc"), "Error");
}

TEST_F(EditMealTime, MovingToTheNextMealStoresTheNewTime)
{
    type("6/3/2024 7:45");
    click("cmdNext");
    EXPECT_THAT(meals(), ElementsAre("1 | 06/03/2024 07:45:00 | 1 | 6", "2 | 05/03/2024 12:30:00 | 2 | 6",
                                     "3 | 04/03/2024 19:00:00 | 3 | 6", "4 | 05/03/2024 16:00:00 | 4 | 6"));
    EXPECT_EQ(label("lblMealDesc"), "Lunch");
}

TEST_F(EditMealTime, ClosingTheWindowStoresTheNewTime)
{
    type("06/03/2024 07:45:30");
    form->close();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(meals()[0], "1 | 06/03/2024 07:45:30 | 1 | 6");
}

TEST_F(EditMealTime, ATextThatIsNoTimeIsRefusedAndTheMealKeepsIts)
{
    for (const char* text : {"noon", "31/02/2024 12:00", "05/13/2024"}) {
        type(text);
        EXPECT_CALL(dialogs, showError(&*form,
                                       QString("Run-time error '13':\n\nType mismatch\n\nMeal Time must be a date and "
                                               "time, day first, such as 31/12/2002 08:15. Nothing was stored; the old "
                                               "value is back."),
                                       _));
        click("cmdNext");
        EXPECT_EQ(shown(), "05/03/2024 08:00:00 | Breakfast (Meal Time  1 of 4)") << text;
        EXPECT_TRUE(time().hasFocus());
        testing::Mock::VerifyAndClearExpectations(&dialogs);
    }
    EXPECT_EQ(meals()[0], "1 | 05/03/2024 08:00:00 | 1 | 6");
    form->close();
    EXPECT_FALSE(form->isVisible()) << "nobody is trapped";
}

TEST_F(EditMealTime, EscapeTakesAnEditBackAndThenCloses)
{
    type("06/03/2024 07:45");
    press(Qt::Key_Escape);
    EXPECT_EQ(shown(), "05/03/2024 08:00:00 | Breakfast (Meal Time  1 of 4)");
    press(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(meals()[0], "1 | 05/03/2024 08:00:00 | 1 | 6");
}

TEST_F(EditMealTime, BrowsingChangesNothing)
{
    const std::vector<std::string> before = meals();
    click("cmdLast");
    click("cmdFirst");
    form->close();
    EXPECT_EQ(meals(), before);
}

TEST_F(EditMealTime, ADiaryWithoutMealsOpensEmpty)
{
    data::Database(diary.path()).execute("Delete * from Meals");
    open();
    EXPECT_EQ(shown(), " |  (Meal Time  no records)");
    EXPECT_FALSE(time().isEnabled());
}

TEST_F(EditMealTime, NeedsTheDiary)
{
    try {
        const frmEditMealTime failing(&owner, dialogs, "/nowhere/Nutrition.mdb");
        ADD_FAILURE() << "it opened";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3024);
    }
}

TEST_F(EditMealTime, RunsModalOverItsOwner)
{
    form.reset();
    owner.resize(800, 600);
    showActive(owner);
    frmEditMealTime modal(&owner, dialogs, diary.path());
    testing_windows::whenModal([&](QWidget& window) {
        EXPECT_EQ(&window, &modal);
        auto& box = child<QLineEdit>(window, "txtMealTime");
        EXPECT_TRUE(QTest::qWaitFor([&] { return box.hasFocus(); }));
        EXPECT_EQ(box.selectedText(), "05/03/2024 08:00:00");
        QTest::keyClicks(&box, "06/03/2024 07:45");
        QTest::keyClick(&box, Qt::Key_PageDown);
        QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
        EXPECT_FALSE(window.isVisible());
    });
    controls::ShowCentredModal(modal, owner);
    EXPECT_EQ(meals()[0], "1 | 06/03/2024 07:45:00 | 1 | 6");
}

} // namespace
} // namespace meals
