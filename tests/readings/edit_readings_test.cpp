#include "readings/frmEditBldSugar.h"

#include "controls/mock_dialogs.h"
#include "controls/modApplication.h"
#include "controls/window_testing.h"
#include "data/database.h"
#include "readings/stored_readings.h"
#include "runtime/run_time_error.h"
#include "support/test_diary.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace readings {
namespace {

using testing::_;
using testing::ElementsAre;
using testing_windows::child;
using testing_windows::showActive;

/// Opened on three readings, the second an imported one.
class EditReadings : public testing::Test
{
protected:
    EditReadings()
    {
        diary.addReading("05/03/2002 08:00", 5.1, 1, QString("one"));
        diary.addReading("05/03/2002 09:00", 5.2, 0);
        diary.addReading("05/03/2002 10:00", 5.3, 3, QString("three"));
    }
    void SetUp() override { open(); }

    void open()
    {
        form.emplace(&owner, dialogs, path);
        showActive(*form);
    }

    QLineEdit& field(const char* name) { return child<QLineEdit>(*form, name); }
    std::string label(const char* name) { return child<QLabel>(*form, name).text().toStdString(); }
    /// The four boxes, with the place of the record.
    std::string shown()
    {
        QStringList texts;
        for (const char* name : {"txtMmol", "txtType", "txtTime", "txtComments"}) {
            texts.append(field(name).text());
        }
        return texts.join(" | ").toStdString() + " (" + label("lblPosition") + ")";
    }
    /// Into the field, its text replaced.
    void type(const char* name, const char* text)
    {
        QTest::mouseClick(&field(name), Qt::LeftButton);
        field(name).selectAll();
        press(Qt::Key_Backspace);
        QTest::keyClicks(&field(name), QLatin1String(text));
    }
    void press(Qt::Key key) { QTest::keyClick(form->focusWidget(), key); }
    void click(const char* name) { QTest::mouseClick(&child<QToolButton>(*form, name), Qt::LeftButton); }
    void expectError(const char* text) { EXPECT_CALL(dialogs, showError(&*form, QString(text), _)); }
    void execute(const char* sql) { data::Database(path).execute(sql); }

    TestDiary diary;
    QString path = diary.path();
    controls::StrictDialogs dialogs;
    QWidget owner;
    std::optional<frmEditBldSugar> form;
};

TEST_F(EditReadings, HasItsCaptions)
{
    EXPECT_EQ(form->windowTitle().toStdString(), "Modify Blood Sugar Readings");
    EXPECT_EQ(label("Label1"), "Mmol ..................");
    EXPECT_EQ(label("Label2"), "Type ..................");
    EXPECT_EQ(label("Label3"), "Time ..................");
    EXPECT_TRUE(child<QWidget>(*form, "Data1").isVisible());
}

TEST_F(EditReadings, ShowsTheFirstReadingAndWalksThemInStoredOrder)
{
    diary.addReading("01/01/2001 00:00", 9.9, 8, QString("entered last"));
    open();
    EXPECT_EQ(shown(), "5.1 | 1 | 05/03/2002 08:00:00 | one (Blood Sugar  1 of 4)");
    click("cmdLast");
    EXPECT_EQ(shown(), "9.9 | 8 | 01/01/2001 | entered last (Blood Sugar  4 of 4)");
    click("cmdPrevious");
    EXPECT_EQ(shown(), "5.3 | 3 | 05/03/2002 10:00:00 | three (Blood Sugar  3 of 4)");
}

TEST_F(EditReadings, ListsTheCodesOfTheTypesOneALine)
{
    EXPECT_EQ(label("lblDesc"), "1 - Getting Up\r\n2 - Meal\r\n3 - Meal + 2\r\n4 - Meal + 3\r\n5 - Pre Bed\r\n"
                                "6 - Calibration\r\n7 - Exercise\r\n8 - Other\r\n");
}

TEST_F(EditReadings, ImportedReadingsShowTypeZeroWhichIsNotInTheList)
{
    click("cmdNext");
    EXPECT_EQ(shown(), "5.2 | 0 | 05/03/2002 09:00:00 |  (Blood Sugar  2 of 3)");
    EXPECT_EQ(label("lblDesc").find("0 - "), std::string::npos);
}

TEST_F(EditReadings, MovingToTheNextRowStoresAChangedLevel)
{
    type("txtMmol", "6.5");
    click("cmdNext");
    EXPECT_THAT(storedReadings(path),
                ElementsAre("6.5 | 05/03/2002 08:00:00 | 1 | one", "5.2 | 05/03/2002 09:00:00 | 0 | ",
                            "5.3 | 05/03/2002 10:00:00 | 3 | three"));
}

TEST_F(EditReadings, ClosingTheWindowStoresAChangedLevel)
{
    type("txtMmol", "6.5");
    form->close();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(storedReadings(path)[0], "6.5 | 05/03/2002 08:00:00 | 1 | one");
}

TEST_F(EditReadings, EveryFieldCanBeCorrected)
{
    press(Qt::Key_PageDown);
    type("txtMmol", "12");
    type("txtType", "4");
    type("txtTime", "6/3/2002 7:30");
    type("txtComments", "after a walk");
    press(Qt::Key_PageDown);
    EXPECT_EQ(storedReadings(path)[1], "12 | 06/03/2002 07:30:00 | 4 | after a walk");
}

TEST_F(EditReadings, ACodeThatIsNotInTheListIsStored)
{
    type("txtType", "99");
    click("cmdNext");
    EXPECT_EQ(storedReadings(path)[0], "5.1 | 05/03/2002 08:00:00 | 99 | one");
    click("cmdPrevious");
    EXPECT_EQ(field("txtType").text().toStdString(), "99");
}

TEST_F(EditReadings, ATextThatDoesNotFitIsRefusedAndTheRowKeepsItsValue)
{
    struct Misfit {
        const char* field;
        const char* text;
        const char* demand;
    };
    for (const Misfit& misfit :
         {Misfit{"txtMmol", "five", "Mmol must be a number such as 5.6."},
          Misfit{"txtType", "Meal", "Type must be a whole number such as 3."},
          Misfit{"txtTime", "noon", "Time must be a date and time, day first, such as 31/12/2002 08:15."}}) {
        type(misfit.field, misfit.text);
        const std::string error = std::string("Run-time error '13':\n\nType mismatch\n\n") + misfit.demand +
                                  " Nothing was stored; the old value is back.";
        expectError(error.c_str());
        click("cmdNext");
        EXPECT_TRUE(field(misfit.field).hasFocus()) << misfit.field;
        EXPECT_EQ(shown(), "5.1 | 1 | 05/03/2002 08:00:00 | one (Blood Sugar  1 of 3)");
        EXPECT_EQ(storedReadings(path)[0], "5.1 | 05/03/2002 08:00:00 | 1 | one");
    }
    form->close();
    EXPECT_FALSE(form->isVisible()) << "nobody is trapped";
}

TEST_F(EditReadings, CommentsTakeFiftyCharacters)
{
    type("txtComments", std::string(51, 'x').c_str());
    press(Qt::Key_PageDown);
    EXPECT_EQ(storedReadings(path)[0], "5.1 | 05/03/2002 08:00:00 | 1 | " + std::string(50, 'x'));
}

TEST_F(EditReadings, TheTabKeyWalksTheFieldsFromTheTop)
{
    EXPECT_TRUE(field("txtMmol").hasFocus());
    for (const char* name : {"txtType", "txtTime", "txtComments"}) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(field(name).hasFocus()) << name;
    }
    press(Qt::Key_Tab);
    EXPECT_TRUE(child<QToolButton>(*form, "cmdNext").hasFocus()) << "the first that can be pressed";
    press(Qt::Key_Space);
    EXPECT_EQ(field("txtMmol").text().toStdString(), "5.2");
}

TEST_F(EditReadings, OthersAddAndChangeReadingsWhileItIsOpen)
{
    type("txtMmol", "6.5");
    diary.addReading("05/03/2002 11:00", 7.7, 4);
    execute("Delete * from BloodSugarLevels where ReadingType = 0");
    click("cmdNext");
    EXPECT_EQ(field("txtMmol").text().toStdString(), "5.3");
    form->close();
    EXPECT_THAT(storedReadings(path),
                ElementsAre("6.5 | 05/03/2002 08:00:00 | 1 | one", "5.3 | 05/03/2002 10:00:00 | 3 | three",
                            "7.7 | 05/03/2002 11:00:00 | 4 | "));
}

TEST_F(EditReadings, AnotherFileInThePlaceOfItsOwnIsNeverWrittenInto)
{
    const TestDiary other;
    const QString away = path + QStringLiteral(".away");
    type("txtMmol", "6.5");
    ASSERT_TRUE(QFile::rename(path, away));
    ASSERT_TRUE(QFile::copy(other.path(), path));
    const std::string box = "Run-time error '3043':\n\nDisk or network error.\n\nThe file " + path.toStdString() +
                            " was moved, removed or replaced while it was open; open it again.";
    expectError((box + " The change was not stored.").c_str());
    click("cmdNext");
    EXPECT_EQ(field("txtMmol").text().toStdString(), "6.5") << "what was typed stays";
    EXPECT_THAT(storedReadings(path), testing::IsEmpty());
    EXPECT_THAT(storedReadings(away),
                ElementsAre("5.1 | 05/03/2002 08:00:00 | 1 | one", "5.2 | 05/03/2002 09:00:00 | 0 | ",
                            "5.3 | 05/03/2002 10:00:00 | 3 | three"));
}

TEST_F(EditReadings, AddsAndDeletesNothingAndLeavesWhatIsNotChanged)
{
    const std::vector<std::string> before = storedReadings(path);
    click("cmdLast");
    click("cmdFirst");
    form->close();
    EXPECT_EQ(storedReadings(path), before);
}

TEST_F(EditReadings, AnEmptyListOfTypesFailsAtLoad)
{
    execute("Delete * from BloodSugarReadingTypes");
    try {
        const frmEditBldSugar failing(&owner, dialogs, path);
        ADD_FAILURE() << "it opened";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3021);
        EXPECT_EQ(error.words().toStdString(), "No current record.");
    }
}

TEST_F(EditReadings, ADiaryWithoutReadingsOpensEmpty)
{
    execute("Delete * from BloodSugarLevels");
    open();
    EXPECT_EQ(shown(), " |  |  |  (Blood Sugar  no records)");
    EXPECT_FALSE(field("txtMmol").isEnabled());
}

TEST_F(EditReadings, MovesToTheLastOfThousandsOfReadings)
{
    constexpr int kReadings = 5000;
    {
        data::Database database(path);
        data::Database::Batch all(database);
        data::Recordset readings = database.openRecordset("BloodSugarLevels");
        for (int i = 0; i < kReadings; ++i) {
            readings.addNew();
            readings.set("BloodSugerLevel", i / 100.0);
            readings.set("ReadingTime", runtime::Date{37000.0 + i});
            readings.set("ReadingType", qint32{2});
            readings.update();
        }
        all.commit();
    }
    open();
    click("cmdLast");
    // 37000 is 19 April 2001; 4999 days later is 26 December 2014.
    EXPECT_EQ(shown(), "49.99 | 2 | 26/12/2014 |  (Blood Sugar  5003 of 5003)");
    type("txtMmol", "5.6");
    press(Qt::Key_PageUp);
    EXPECT_EQ(field("txtMmol").text().toStdString(), "49.98");
    EXPECT_EQ(storedReadings(path).back(), "5.6 | 26/12/2014 | 2 | ");
}

TEST_F(EditReadings, RunsCentredAndModalOverItsOwner)
{
    form.reset();
    owner.resize(800, 600);
    showActive(owner);
    frmEditBldSugar modal(&owner, dialogs, path);
    testing_windows::whenModal([&](QWidget& window) {
        EXPECT_EQ(&window, &modal);
        auto& first = child<QLineEdit>(window, "txtMmol");
        EXPECT_TRUE(QTest::qWaitFor([&] { return first.hasFocus(); }));
        EXPECT_EQ(first.selectedText(), "5.1");
        QTest::keyClicks(&first, "6.5");
        QTest::keyClick(&first, Qt::Key_PageDown);
        QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
        EXPECT_FALSE(window.isVisible());
    });
    controls::ShowCentredModal(modal, owner);
    EXPECT_EQ(storedReadings(path)[0], "6.5 | 05/03/2002 08:00:00 | 1 | one");
}

} // namespace
} // namespace readings
