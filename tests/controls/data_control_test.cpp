#include "controls/data_control.h"

#include "controls/mock_dialogs.h"
#include "controls/window_testing.h"
#include "data/database.h"
#include "runtime/conversions.h"
#include "support/test_diary.h"

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QToolButton>
#include <QVBoxLayout>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace controls {
namespace {

using testing::_;
using testing::StartsWith;
using testing_windows::child;
using testing_windows::showActive;

/// A window that browses the readings, three unless a test says otherwise: 5.1, 5.2 and 5.3 with comments.
class DataControlTest : public testing::Test
{
protected:
    struct Window : QDialog {
        Window(Dialogs& dialogs, const DataControl::Source& source) : control(*this, dialogs, "Blood Sugar", source)
        {
            auto* rows = new QVBoxLayout(this);
            for (QWidget* widget : std::initializer_list<QWidget*>{&mmol, &comment, &type, &control}) {
                rows->addWidget(widget);
            }
            mmol.setAccessibleName("Mmol");
            comment.setMaxLength(5);
            control.bind(mmol, "BloodSugerLevel");
            control.bind(comment, "Comment");
            control.bind(type, "ReadingType");
        }
        ~Window() override
        {
            for (QWidget* widget : std::initializer_list<QWidget*>{&mmol, &comment, &type, &control}) {
                widget->setParent(nullptr);
            }
        }

        QLineEdit mmol;
        QLineEdit comment;
        QLabel type;
        DataControl control;
    };

    DataControlTest()
    {
        diary.addReading("05/03/2002 08:00", 5.1, 1, QString("one"));
        diary.addReading("05/03/2002 09:00", 5.2, 2, QString("two"));
        diary.addReading("05/03/2002 10:00", 5.3, 3, QString("three"));
    }

    void open(const char* recordSource = "BloodSugarLevels")
    {
        window.emplace(dialogs, DataControl::Source{diary.path(), recordSource});
        showActive(*window);
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window->focusWidget(), key, modifiers);
    }
    /// Into the box, its text replaced.
    void type(QLineEdit& box, const char* text)
    {
        QTest::mouseClick(&box, Qt::LeftButton);
        box.selectAll();
        press(Qt::Key_Backspace);
        QTest::keyClicks(&box, QLatin1String(text));
    }
    QToolButton& button(const char* name) { return child<QToolButton>(*window, name); }
    void click(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }
    std::string position() { return child<QLabel>(*window, "lblPosition").text().toStdString(); }
    std::string mmol() { return window->mmol.text().toStdString(); }
    std::string comment() { return window->comment.text().toStdString(); }
    void expectError(const testing::Matcher<std::string>& text)
    {
        EXPECT_CALL(dialogs,
                    showError(&*window, testing::ResultOf([](const QString& t) { return t.toStdString(); }, text), _));
    }

    /// "level comment" of a reading as another connection reads it.
    std::string stored(qsizetype position)
    {
        data::Database database(diary.path());
        data::Recordset readings = database.openRecordset("BloodSugarLevels");
        readings.moveTo(position);
        return (runtime::toText(readings.value("BloodSugerLevel")) + ' ' + runtime::toText(readings.value("Comment")))
            .toStdString();
    }
    void execute(const char* sql) { data::Database(diary.path()).execute(sql); }

    TestDiary diary;
    StrictDialogs dialogs;
    std::optional<Window> window;
};

TEST_F(DataControlTest, ShowsTheFirstRecordItsCaptionAndWhereItIs)
{
    open();
    EXPECT_EQ(position(), "Blood Sugar  1 of 3");
    EXPECT_EQ(mmol(), "5.1");
    EXPECT_EQ(comment(), "one");
    EXPECT_EQ(window->type.text(), "1") << "a label can be bound too";
}

TEST_F(DataControlTest, ItsButtonsMoveToTheFirstPreviousNextAndLastRecord)
{
    open();
    click("cmdNext");
    EXPECT_EQ(mmol(), "5.2");
    EXPECT_EQ(position(), "Blood Sugar  2 of 3");
    EXPECT_EQ(window->type.text(), "2");
    click("cmdPrevious");
    EXPECT_EQ(mmol(), "5.1");
    click("cmdLast");
    EXPECT_EQ(mmol(), "5.3");
    EXPECT_EQ(position(), "Blood Sugar  3 of 3");
    click("cmdFirst");
    EXPECT_EQ(mmol(), "5.1");
}

TEST_F(DataControlTest, ButtonsAreDisabledWhereThereIsNowhereToGo)
{
    open();
    const auto enabled = [this] {
        std::string list;
        for (const char* name : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast"}) {
            list += button(name).isEnabled() ? '+' : '-';
        }
        return list;
    };
    EXPECT_EQ(enabled(), "--++");
    click("cmdNext");
    EXPECT_EQ(enabled(), "++++");
    click("cmdNext");
    EXPECT_EQ(enabled(), "++--");
}

TEST_F(DataControlTest, KeysMoveFromEveryBoxAndFromTheButtons)
{
    open();
    for (QWidget* place : std::initializer_list<QWidget*>{&window->mmol, &window->comment, &button("cmdNext")}) {
        place->setFocus();
        press(Qt::Key_PageDown);
        EXPECT_EQ(mmol(), "5.2");
        press(Qt::Key_PageUp);
        EXPECT_EQ(mmol(), "5.1");
        press(Qt::Key_PageUp);
        EXPECT_EQ(mmol(), "5.1") << "nowhere to go";
        press(Qt::Key_End, Qt::ControlModifier | Qt::KeypadModifier);
        EXPECT_EQ(mmol(), "5.3");
        press(Qt::Key_Home, Qt::ControlModifier);
        EXPECT_EQ(mmol(), "5.1");
    }
}

TEST_F(DataControlTest, HomeAndEndAloneMoveInTheText)
{
    open();
    window->comment.setFocus();
    press(Qt::Key_End);
    press(Qt::Key_X);
    press(Qt::Key_Home);
    press(Qt::Key_Y);
    EXPECT_EQ(comment(), "yonex");
    EXPECT_EQ(position(), "Blood Sugar  1 of 3");
}

TEST_F(DataControlTest, AMoveLeavesTheFocusInItsBoxWithTheTextSelected)
{
    open();
    window->mmol.setFocus();
    click("cmdNext");
    EXPECT_TRUE(window->mmol.hasFocus());
    EXPECT_EQ(window->mmol.selectedText(), "5.2");
}

TEST_F(DataControlTest, AnEmptyTableShowsEmptyBoxesThatCannotBeTypedInto)
{
    execute("Delete * from BloodSugarLevels");
    open();
    EXPECT_EQ(position(), "Blood Sugar  no records");
    EXPECT_EQ(mmol(), "");
    EXPECT_FALSE(window->mmol.isEnabled());
    EXPECT_FALSE(button("cmdNext").isEnabled());
    EXPECT_FALSE(button("cmdLast").isEnabled());
    window->close();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(DataControlTest, LeavingTheRecordStoresTheChange)
{
    open();
    type(window->mmol, "6.5");
    EXPECT_EQ(stored(0), "5.1 one");
    click("cmdNext");
    EXPECT_EQ(stored(0), "6.5 one");
    type(window->comment, "2");
    press(Qt::Key_PageUp);
    EXPECT_EQ(stored(1), "5.2 2");
    EXPECT_EQ(mmol(), "6.5");
}

TEST_F(DataControlTest, ClosingTheWindowStoresTheChange)
{
    open();
    type(window->mmol, "6.5");
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(stored(0), "6.5 one");
}

TEST_F(DataControlTest, AWindowThatIsDestroyedWithoutClosingStoresNothing)
{
    open();
    type(window->mmol, "6.5");
    window.reset();
    EXPECT_EQ(stored(0), "5.1 one");
}

TEST_F(DataControlTest, ARefusedTextStopsTheMoveAndItsBoxShowsTheOldValueWithTheFocus)
{
    open();
    type(window->mmol, "five");
    type(window->comment, "new");
    expectError("Run-time error '13':\n\nType mismatch\n\nMmol must be a number such as 5.6. Nothing was stored; "
                "the old value is back.");
    click("cmdNext");
    EXPECT_EQ(position(), "Blood Sugar  1 of 3");
    EXPECT_EQ(mmol(), "5.1");
    EXPECT_TRUE(window->mmol.hasFocus());
    EXPECT_EQ(window->mmol.selectedText(), "5.1");
    EXPECT_EQ(comment(), "new") << "other edits stay";
    EXPECT_EQ(stored(0), "5.1 one");

    QTest::keyClicks(&window->mmol, "6.5");
    click("cmdNext");
    EXPECT_EQ(position(), "Blood Sugar  2 of 3");
    EXPECT_EQ(stored(0), "6.5 new");
}

TEST_F(DataControlTest, ARefusedTextStopsTheCloseAndASecondCloseCloses)
{
    open();
    type(window->mmol, "");
    type(window->comment, "new");
    expectError(StartsWith("Run-time error '13':"));
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(mmol(), "5.1");
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(stored(0), "5.1 new");
}

TEST_F(DataControlTest, ClosingTwiceGivesUpWhatCannotBeStored)
{
    open();
    type(window->mmol, "6.5");
    ASSERT_TRUE(QFile::rename(diary.path(), diary.path() + ".away"));
    expectError(StartsWith("Run-time error '3043':"));
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(mmol(), "6.5");
    expectError(StartsWith("Run-time error '3043':"));
    window->close();
    EXPECT_FALSE(window->isVisible());
    ASSERT_TRUE(QFile::rename(diary.path() + ".away", diary.path()));
    EXPECT_EQ(stored(0), "5.1 one");
}

TEST_F(DataControlTest, WhatCouldNotBeStoredIsStoredByTheNextCloseWhereItCan)
{
    open();
    type(window->mmol, "6.5");
    ASSERT_TRUE(QFile::rename(diary.path(), diary.path() + ".away"));
    expectError(StartsWith("Run-time error '3043':"));
    window->close();
    ASSERT_TRUE(QFile::rename(diary.path() + ".away", diary.path()));
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(stored(0), "6.5 one");
}

TEST_F(DataControlTest, AChangeBetweenTwoClosesMakesTheSecondAFirstOne)
{
    open();
    type(window->mmol, "6.5");
    ASSERT_TRUE(QFile::rename(diary.path(), diary.path() + ".away"));
    EXPECT_CALL(dialogs, showError(&*window, _, _)).Times(2);
    window->close();
    type(window->mmol, "7.5");
    window->close();
    EXPECT_TRUE(window->isVisible());
    ASSERT_TRUE(QFile::rename(diary.path() + ".away", diary.path()));
}

TEST_F(DataControlTest, EscapeTakesTheChangesBackAndOnlyThenClosesTheWindow)
{
    open();
    type(window->mmol, "6.5");
    type(window->comment, "new");
    press(Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(mmol(), "5.1");
    EXPECT_EQ(comment(), "one");
    press(Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(stored(0), "5.1 one");
}

TEST_F(DataControlTest, EscapeOnAButtonTakesTheChangesBackToo)
{
    open();
    type(window->mmol, "6.5");
    button("cmdNext").setFocus();
    press(Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(mmol(), "5.1");
}

TEST_F(DataControlTest, EnterLeavesTheChangeWhereItIs)
{
    open();
    type(window->mmol, "6.5");
    press(Qt::Key_Return);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(mmol(), "6.5");
    EXPECT_EQ(position(), "Blood Sugar  1 of 3");
}

TEST_F(DataControlTest, ATextSetByTheProgramIsAChangeToo)
{
    open();
    window->mmol.setText("6.5"); // as a calendar does with a date
    click("cmdNext");
    EXPECT_EQ(stored(0), "6.5 one");
}

TEST_F(DataControlTest, ALongerTextThanMayBeTypedIsShownWholeAndNeverCutOff)
{
    diary.addReading("05/03/2002 11:00", 5.4, 4, QString("longer than five"));
    open();
    click("cmdLast");
    EXPECT_EQ(comment(), "longer than five");
    type(window->mmol, "6.5");
    click("cmdFirst");
    EXPECT_EQ(stored(3), "6.5 longer than five");
    type(window->comment, "longer than five");
    EXPECT_EQ(comment(), "longe") << "the limit of typing is back";
}

TEST_F(DataControlTest, ATextWithLineBreaksIsNotChangedByBeingShown)
{
    diary.addReading("05/03/2002 11:00", 5.4, 4, QString("a\r\nb\tc"));
    open();
    click("cmdLast");
    type(window->mmol, "6.5");
    click("cmdFirst");
    EXPECT_EQ(stored(3), "6.5 a\r\nb\tc");
}

TEST_F(DataControlTest, TheChangeOfADeletedRecordIsReportedAndTheBrowserGoesOn)
{
    open();
    type(window->mmol, "6.5");
    execute("Delete * from BloodSugarLevels where ReadingType = 1");
    expectError(StartsWith("Run-time error '3167':\n\nRecord is deleted."));
    click("cmdNext");
    EXPECT_EQ(mmol(), "5.2");
    click("cmdNext");
    EXPECT_EQ(mmol(), "5.3");
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(stored(0), "5.2 two");
}

TEST_F(DataControlTest, RecordsThatCannotBeChangedAreReadOnly)
{
    window.emplace(dialogs, DataControl::Source{diary.path(), "select BloodSugerLevel, Comment, ReadingType from "
                                                              "BloodSugarLevels group by BloodSugerLevel, Comment, "
                                                              "ReadingType"});
    showActive(*window);
    EXPECT_EQ(position(), "Blood Sugar  1 of 3 (read only)");
    type(window->mmol, "6.5");
    EXPECT_EQ(mmol(), "5.1");
    click("cmdNext");
    EXPECT_EQ(mmol(), "5.2");
}

TEST_F(DataControlTest, SaysWhenItShowsARecord)
{
    open();
    std::vector<std::string> types; // as a form reads them that makes a word of the code
    QObject::connect(&window->control, &DataControl::recordShown, &*window,
                     [&] { types.push_back(window->type.text().toStdString()); });
    click("cmdNext");
    click("cmdLast");
    EXPECT_THAT(types, testing::ElementsAre("2", "3"));
}

} // namespace
} // namespace controls
