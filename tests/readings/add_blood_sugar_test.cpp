#include "readings/frmAddBloodSugar.h"

#include "controls/mock_dialogs.h"
#include "controls/window_testing.h"
#include "data/database.h"
#include "readings/stored_readings.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "support/test_diary.h"

#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <optional>

namespace readings {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing_windows::child;
using testing_windows::handlePostedEvents;
using testing_windows::showActive;

/// Acts as a user who may read a file and not write it: an administrator, as whom tests may run, may write anything.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const QString& path)
    {
        QFile::setPermissions(QFileInfo(path).path(), QFile::Permissions(0x7055));
        QFile::setPermissions(path, QFile::Permissions(0x4044));
        becomeUser(65534);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { becomeUser(0); }

private:
    void becomeUser(uid_t user) const
    {
        if (administrator_) {
            EXPECT_EQ(seteuid(user), 0);
        }
    }

    bool administrator_ = geteuid() == 0;
};

class AddBloodSugar : public testing::Test
{
protected:
    void SetUp() override { open("03/03/2002 08:15"); }

    void open(const char* now)
    {
        clock.set(runtime::toDate(QString::fromLatin1(now)));
        form.emplace(&owner, clock, dialogs, path);
        showActive(*form);
    }

    QLineEdit& field(const char* name) { return child<QLineEdit>(*form, name); }
    QPushButton& button(const char* name) { return child<QPushButton>(*form, name); }
    QComboBox& cboType() { return child<QComboBox>(*form, "cboType"); }
    std::string text(const char* name) { return field(name).text().toStdString(); }

    /// As a user does: into the field, its text replaced.
    void type(const char* name, const char* text)
    {
        QTest::mouseClick(&field(name), Qt::LeftButton);
        field(name).selectAll(); // a click into the field that has the focus already selects nothing
        QTest::keyClicks(&field(name), QLatin1String(text));
    }
    void press(int key) { QTest::keyClick(form->focusWidget(), static_cast<Qt::Key>(key)); }
    void click(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }
    void doubleClick(const char* name)
    {
        click(name);
        QTest::mouseDClick(&button(name), Qt::LeftButton); // its second press
        QTest::mouseRelease(&button(name), Qt::LeftButton);
    }
    void expectSavingAllowed(bool allowed)
    {
        EXPECT_EQ(button("cmdOK").isEnabled(), allowed);
        EXPECT_EQ(button("cmdSave").isEnabled(), allowed);
    }
    void expectError(const char* text) { EXPECT_CALL(dialogs, showError(&*form, QString(text), _)); }

    TestDiary diary;
    QString path = diary.path();
    runtime::FixedClock clock{{}};
    controls::StrictDialogs dialogs;
    QWidget owner;
    std::optional<frmAddBloodSugar> form;
};

TEST_F(AddBloodSugar, HasItsCaptionsSpellingIncluded)
{
    EXPECT_EQ(form->windowTitle().toStdString(), "Add Blood Suger reading ");
    std::vector<std::string> labels;
    for (const QLabel* label : form->findChildren<QLabel*>()) {
        labels.push_back(label->objectName().toStdString() + ": " + label->text().toStdString());
    }
    EXPECT_THAT(labels,
                ElementsAre("lblBloodSugar: Blood Suger Level .....", "lblDate: Date ..........................",
                            "lblTime: Time ..........................", "lblType: Type .......",
                            "lblComment: Comments - 50 characters or less"));
    EXPECT_EQ(button("cmdOK").text().toStdString(), "OK");
    EXPECT_EQ(button("cmdCancel").text().toStdString(), "Cancel");
    EXPECT_EQ(button("cmdSave").text().toStdString(), "Save to DB");
}

TEST_F(AddBloodSugar, OpensWithTheDayTheTimeAndNoLevel)
{
    EXPECT_EQ(text("txtBloodSugar"), "0.0");
    EXPECT_EQ(text("txtDate"), "03/Mar/2002");
    EXPECT_EQ(text("txtTime"), "08:15");
    EXPECT_EQ(text("txtComment"), "");
}

TEST_F(AddBloodSugar, ShowsTheLevelWithTheDecimalSignOfTheLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    open("03/03/2002 08:15");
    EXPECT_EQ(text("txtBloodSugar"), "0,0");
    type("txtBloodSugar", "5,6");
    click("cmdOK");
    QLocale::setDefault(before);
    EXPECT_THAT(storedReadings(path), ElementsAre("5.6 | 03/03/2002 08:15:00 | 1 | "));
}

TEST_F(AddBloodSugar, PreselectsTheTypeByTheHour)
{
    const auto preselected = [this](const char* now) {
        open(now);
        return cboType().currentText().toStdString();
    };
    EXPECT_EQ(preselected("03/03/2002 08:59"), "Getting Up");
    EXPECT_EQ(preselected("03/03/2002 09:00"), "Meal");
    EXPECT_EQ(preselected("03/03/2002 21:59"), "Meal");
    EXPECT_EQ(preselected("03/03/2002 22:00"), "Pre Bed");
}

TEST_F(AddBloodSugar, OffersTheEightTypesWithTheirCodes)
{
    std::vector<std::string> items;
    for (int item = 0; item < cboType().count(); ++item) {
        items.push_back(cboType().itemText(item).toStdString() + " " +
                        cboType().itemData(item).toString().toStdString());
    }
    EXPECT_THAT(items, ElementsAre("Getting Up 1", "Meal 2", "Meal + 2 3", "Meal + 3 4", "Pre Bed 5", "Calibration 6",
                                   "Exercise 7", "Other 8"));
    EXPECT_FALSE(cboType().isEditable());
}

TEST_F(AddBloodSugar, UntouchedItCanOnlyBeCancelled)
{
    expectSavingAllowed(false);
    EXPECT_TRUE(button("cmdCancel").isEnabled());
    press(Qt::Key_Return);
    click("cmdSave");
    EXPECT_TRUE(form->isVisible());
    EXPECT_THAT(storedReadings(path), IsEmpty());
}

TEST_F(AddBloodSugar, ACommentAloneCannotBeSaved)
{
    type("txtComment", "only a comment");
    expectSavingAllowed(false);
}

TEST_F(AddBloodSugar, AnyChangeOfLevelDateTimeOrTypeAllowsSaving)
{
    for (const char* name : {"txtBloodSugar", "txtDate", "txtTime"}) {
        open("03/03/2002 08:15");
        type(name, "1");
        expectSavingAllowed(true);
    }
    open("03/03/2002 08:15");
    cboType().setFocus();
    QTest::keyClick(&cboType(), Qt::Key_Down);
    EXPECT_EQ(cboType().currentText().toStdString(), "Meal");
    expectSavingAllowed(true);
}

TEST_F(AddBloodSugar, TakesNoMoreThanFiftyCharactersOfComment)
{
    type("txtComment", "1234567890123456789012345678901234567890123456789012345");
    EXPECT_EQ(text("txtComment"), "12345678901234567890123456789012345678901234567890");
}

TEST_F(AddBloodSugar, TabVisitsTheControlsInTheirOrder)
{
    type("txtBloodSugar", "5.6");
    std::vector<std::string> visited;
    for (int step = 0; step < 9; ++step) {
        visited.push_back(form->focusWidget()->objectName().toStdString());
        press(Qt::Key_Tab);
    }
    EXPECT_THAT(visited, ElementsAre("txtBloodSugar", "txtDate", "txtTime", "cboType", "txtComment", "cmdOK",
                                     "cmdCancel", "cmdSave", "txtBloodSugar"));
}

TEST_F(AddBloodSugar, AFieldThatIsEnteredIsSelectedWhole)
{
    EXPECT_EQ(field("txtBloodSugar").selectedText().toStdString(), "0.0") << "the first field, from the start";
    press(Qt::Key_Tab);
    EXPECT_EQ(field("txtDate").selectedText().toStdString(), "03/Mar/2002");
    QTest::mouseClick(&field("txtTime"), Qt::LeftButton);
    EXPECT_EQ(field("txtTime").selectedText().toStdString(), "08:15") << "the selection survives the click";
    type("txtComment", "words");
    QTest::mouseClick(&field("txtDate"), Qt::LeftButton);
    QTest::mouseClick(&field("txtComment"), Qt::LeftButton);
    EXPECT_EQ(field("txtComment").selectedText().toStdString(), "words");
}

TEST_F(AddBloodSugar, AWrongLevelTakesTheFocusBackSilently)
{
    for (const char* wrong : {"five", "", "5.6.7"}) {
        type("txtBloodSugar", "1");
        field("txtBloodSugar").selectAll();
        press(Qt::Key_Backspace);
        QTest::keyClicks(&field("txtBloodSugar"), QLatin1String(wrong));
        press(Qt::Key_Tab);
        EXPECT_TRUE(field("txtBloodSugar").hasFocus()) << wrong;
        QTest::mouseClick(&field("txtDate"), Qt::LeftButton);
        EXPECT_TRUE(field("txtBloodSugar").hasFocus()) << wrong;
    }
    QTest::keyClicks(&field("txtBloodSugar"), QStringLiteral("5.6\t"));
    EXPECT_TRUE(field("txtDate").hasFocus());
}

TEST_F(AddBloodSugar, AWrongDateTakesTheFocusBackSilently)
{
    for (const char* wrong : {"31/02/2002", "03/13/2002", "soon"}) {
        type("txtDate", wrong);
        press(Qt::Key_Tab);
        EXPECT_TRUE(field("txtDate").hasFocus()) << wrong;
    }
    QTest::keyClicks(&field("txtDate"), QStringLiteral("28/02/2002\t"));
    EXPECT_TRUE(field("txtTime").hasFocus());
}

TEST_F(AddBloodSugar, AWrongTimeTakesTheFocusBackSilently)
{
    for (const char* wrong : {"25:00", "noon"}) {
        type("txtTime", wrong);
        press(Qt::Key_Tab);
        EXPECT_TRUE(field("txtTime").hasFocus()) << wrong;
    }
    QTest::keyClicks(&field("txtTime"), QStringLiteral("23:59\t"));
    EXPECT_TRUE(cboType().hasFocus());
}

TEST_F(AddBloodSugar, OkStoresTheReadingAndCloses)
{
    type("txtBloodSugar", "5.6");
    type("txtDate", "02/mar/2002");
    type("txtTime", "13:30");
    cboType().setFocus();
    QTest::keyClicks(&cboType(), QStringLiteral("Ex"));
    type("txtComment", "after a walk");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(storedReadings(path), ElementsAre("5.6 | 02/03/2002 13:30:00 | 7 | after a walk"));
}

TEST_F(AddBloodSugar, EnterIsOk)
{
    QTest::keyClicks(&field("txtBloodSugar"), QStringLiteral("5.6"));
    press(Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(storedReadings(path), ElementsAre("5.6 | 03/03/2002 08:15:00 | 1 | "));
}

TEST_F(AddBloodSugar, EscAndCancelStoreNothing)
{
    type("txtBloodSugar", "5.6");
    press(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    open("03/03/2002 08:15");
    type("txtBloodSugar", "5.6");
    click("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(storedReadings(path), IsEmpty());
}

TEST_F(AddBloodSugar, CancelAndCloseWorkWithAWrongField)
{
    type("txtDate", "soon");
    click("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    open("03/03/2002 08:15");
    type("txtDate", "soon");
    form->close();
    EXPECT_FALSE(form->isVisible());
}

TEST_F(AddBloodSugar, SaveToDbStaysOpenForTheNextReading)
{
    type("txtBloodSugar", "5.6");
    type("txtComment", "first");
    click("cmdSave");
    EXPECT_TRUE(form->isVisible());
    expectSavingAllowed(false);
    EXPECT_EQ(text("txtComment"), "");
    EXPECT_EQ(text("txtBloodSugar"), "5.6");
    EXPECT_EQ(text("txtDate"), "03/Mar/2002");
    EXPECT_EQ(text("txtTime"), "08:15");
    EXPECT_EQ(cboType().currentText().toStdString(), "Getting Up");

    type("txtTime", "10:15");
    expectSavingAllowed(true);
    click("cmdSave");
    EXPECT_THAT(storedReadings(path),
                ElementsAre("5.6 | 03/03/2002 08:15:00 | 1 | first", "5.6 | 03/03/2002 10:15:00 | 1 | "));
}

TEST_F(AddBloodSugar, ADoubleClickStoresOneReading)
{
    type("txtBloodSugar", "5.6");
    doubleClick("cmdSave");
    EXPECT_THAT(storedReadings(path), SizeIs(1));
    type("txtBloodSugar", "6.5");
    doubleClick("cmdOK");
    EXPECT_THAT(storedReadings(path), SizeIs(2));
    EXPECT_FALSE(form->isVisible());
}

TEST_F(AddBloodSugar, AWrongValueInTheFocusedFieldEndsOkWithAnError)
{
    type("txtComment", "kept");
    type("txtBloodSugar", "five");
    expectError("Run-time error '13':\n\nType mismatch\n\nThe blood sugar level is not a number. Nothing was stored.");
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(text("txtComment"), "kept");
    EXPECT_THAT(storedReadings(path), IsEmpty());

    type("txtBloodSugar", "5.6");
    click("cmdOK");
    EXPECT_THAT(storedReadings(path), ElementsAre("5.6 | 03/03/2002 08:15:00 | 1 | kept"));
}

TEST_F(AddBloodSugar, ADiaryThatIsNotThereStoresNothingAndTheFormStaysUsable)
{
    ASSERT_TRUE(QFile::rename(path, path + ".away"));
    type("txtComment", "kept");
    type("txtBloodSugar", "5.6");
    EXPECT_CALL(dialogs, showError(&*form, testing::Truly([](const QString& text) {
                    return text.startsWith("Run-time error '3024':\n\nCould not find file");
                }),
                                   _));
    click("cmdSave");
    EXPECT_TRUE(form->isVisible());
    expectSavingAllowed(true);
    EXPECT_EQ(text("txtComment"), "kept");

    ASSERT_TRUE(QFile::rename(path + ".away", path));
    click("cmdSave");
    EXPECT_THAT(storedReadings(path), ElementsAre("5.6 | 03/03/2002 08:15:00 | 1 | kept"));
}

TEST_F(AddBloodSugar, ADiaryThatMayNotBeWrittenIsReportedAndNothingIsStored)
{
    const OrdinaryUser user(path);
    type("txtBloodSugar", "5.6");
    EXPECT_CALL(dialogs, showError(&*form, testing::Truly([](const QString& text) {
                    return text.startsWith("Run-time error '3027':\n\nCannot update.");
                }),
                                   _));
    click("cmdSave");
    EXPECT_TRUE(form->isVisible());
    expectSavingAllowed(true);
    EXPECT_THAT(storedReadings(path), IsEmpty());
}

TEST_F(AddBloodSugar, ADiaryThatAnotherProgramIsChangingIsReportedAndNothingIsStored)
{
    {
        data::Database other(path);
        const data::Database::Batch changes(other);
        data::Recordset readings = other.openRecordset("Select * from BloodSugarLevels where BloodSugerNo = -1");
        readings.addNew();
        readings.set("BloodSugerLevel", 9.9);
        readings.update();
        type("txtBloodSugar", "5.6");
        EXPECT_CALL(dialogs, showError(&*form, testing::Truly([](const QString& text) {
                        return text.startsWith("Run-time error '3045':");
                    }),
                                       _));
        click("cmdOK");
        EXPECT_TRUE(form->isVisible());
    }
    click("cmdOK");
    EXPECT_THAT(storedReadings(path), ElementsAre("5.6 | 03/03/2002 08:15:00 | 1 | "));
}

} // namespace
} // namespace readings
