#include "readings/frmImportBldResults.h"

#include "controls/mock_dialogs.h"
#include "controls/window_testing.h"
#include "readings/stored_readings.h"
#include "support/test_diary.h"

#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace readings {
namespace {

using testing::_;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing_windows::child;
using testing_windows::showActive;

class ImportBldResults : public testing::Test
{
protected:
    void open()
    {
        form.emplace(&owner, dialogs, diary.path());
        showActive(*form);
    }

    /// A meter's file of that content, its path typed into the form.
    void nameFile(const QByteArray& content)
    {
        const QString path = folder.filePath(QStringLiteral("meter.csv"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
        file.close();
        type("txtPath", path);
    }

    QLineEdit& field(const char* name) { return child<QLineEdit>(*form, name); }
    QPushButton& button(const char* name) { return child<QPushButton>(*form, name); }
    std::string text(const char* name) { return field(name).text().toStdString(); }

    void type(const char* name, const QString& text)
    {
        QTest::mouseClick(&field(name), Qt::LeftButton);
        field(name).selectAll();
        QTest::keyClick(&field(name), Qt::Key_Delete);
        QTest::keyClicks(&field(name), text);
    }
    void press(Qt::Key key) { QTest::keyClick(form->focusWidget(), key); }
    void click(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }

    void expectMessage(const char* text) { EXPECT_CALL(dialogs, showMessage(&*form, QString(text), controls::kTitle)); }
    void expectError(const char* number, const char* part)
    {
        EXPECT_CALL(dialogs, showError(&*form, _, controls::kTitle)).WillOnce([=](QWidget*, const QString& text, auto) {
            EXPECT_THAT(text.toStdString(),
                        AllOf(HasSubstr(std::string("Run-time error '") + number + "':"), HasSubstr(part)));
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "the hourglass is gone before the box";
        });
    }

    std::vector<std::string> stored() const { return storedReadings(diary.path()); }

    QTemporaryDir folder;
    TestDiary diary;
    controls::StrictDialogs dialogs;
    QWidget owner;
    std::optional<frmImportBldResults> form;
};

TEST_F(ImportBldResults, HasItsCaptions)
{
    open();
    EXPECT_EQ(form->windowTitle().toStdString(), "Import blood results from file ");
    EXPECT_EQ(button("cmdPath").text().toStdString(), "...");
    EXPECT_EQ(child<QGroupBox>(*form, "fraResults").title().toStdString(), "Results from ...");
    EXPECT_EQ(field("txtDate").parent(), &child<QGroupBox>(*form, "fraResults"));
    EXPECT_EQ(child<QCheckBox>(*form, "chkResults").text().toStdString(), "All results");
    EXPECT_FALSE(child<QCheckBox>(*form, "chkResults").isChecked());
    EXPECT_EQ(button("cmdOK").text().toStdString(), "OK");
    EXPECT_TRUE(button("cmdOK").isDefault());
    EXPECT_EQ(button("cmdCancel").text().toStdString(), "Cancel");
    EXPECT_TRUE(text("txtPath").ends_with(".csv"));
}

TEST_F(ImportBldResults, OpensWithTheLatestReadingAsTheCutOff)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    diary.addReading("04/03/2002 08:15", 5.6, 1);
    open();
    EXPECT_EQ(text("txtDate"), "05/03/2002 08:15");
}

TEST_F(ImportBldResults, OpensWithoutACutOffOnAnEmptyDiary)
{
    open();
    EXPECT_EQ(text("txtDate"), "");
}

TEST_F(ImportBldResults, TabVisitsTheControlsInTheirOrder)
{
    open();
    std::vector<std::string> visited;
    for (int step = 0; step < 7; ++step) {
        visited.push_back(form->focusWidget()->objectName().toStdString());
        press(Qt::Key_Tab);
    }
    EXPECT_THAT(visited, ElementsAre("txtPath", "cmdPath", "txtDate", "chkResults", "cmdOK", "cmdCancel", "txtPath"));
}

TEST_F(ImportBldResults, AddsTheLaterReadingsSaysHowManyAndCloses)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    open();
    nameFile("Date, Time, mmol/l\n 05/03/2002, 08:15, 5.6\n 05/03/2002, 12:00, 6.6\n 06/03/2002, 07:00, 7.6\n");
    expectMessage("2 readings added");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Accepted);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 1 | ", "6.6 | 05/03/2002 12:00:00 | 0 | ",
                                      "7.6 | 06/03/2002 07:00:00 | 0 | "));
}

TEST_F(ImportBldResults, TheSameFileTwiceAddsNothingTheSecondTime)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    const QByteArray content = " 06/03/2002, 08:15, 6.6\n 07/03/2002, 08:15, 7.6\n";
    for (const char* message : {"2 readings added", "0 readings added"}) {
        open();
        nameFile(content);
        expectMessage(message);
        click("cmdOK");
    }
    EXPECT_THAT(stored(), SizeIs(3));
}

TEST_F(ImportBldResults, ReturnImports)
{
    open();
    nameFile(" 06/03/2002, 08:15, 6.6\n");
    type("txtDate", "01/01/2002");
    expectMessage("1 readings added");
    press(Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(stored(), SizeIs(1));
}

TEST_F(ImportBldResults, TickingAllResultsChangesNothing)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    open();
    nameFile(" 04/03/2002, 08:15, 4.6\n 06/03/2002, 08:15, 6.6\n");
    child<QCheckBox>(*form, "chkResults").setFocus();
    press(Qt::Key_Space);
    EXPECT_TRUE(child<QCheckBox>(*form, "chkResults").isChecked());
    EXPECT_EQ(text("txtDate"), "05/03/2002 08:15");
    expectMessage("1 readings added");
    click("cmdOK");
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 1 | ", "6.6 | 06/03/2002 08:15:00 | 0 | "));
}

TEST_F(ImportBldResults, AnEarlierCutOffAddsOlderReadings)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    open();
    nameFile(" 04/03/2002, 08:15, 4.6\n");
    type("txtDate", "01/03/2002 00:00");
    expectMessage("1 readings added");
    click("cmdOK");
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 1 | ", "4.6 | 04/03/2002 08:15:00 | 0 | "));
}

TEST_F(ImportBldResults, ThePathButtonDoesNothing)
{
    open();
    const std::string path = text("txtPath");
    click("cmdPath");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(text("txtPath"), path);
}

TEST_F(ImportBldResults, AMissingFileIsToldAndTheDialogStaysOpen)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    open();
    for (const QString& path : {folder.filePath("missing.csv"), folder.path(), QString()}) {
        type("txtPath", path);
        expectMessage("File specified does not exist!");
        click("cmdOK");
        EXPECT_TRUE(form->isVisible());
        testing::Mock::VerifyAndClearExpectations(&dialogs);
    }
    EXPECT_THAT(stored(), SizeIs(1));
}

TEST_F(ImportBldResults, AnEmptyCutOffIsAnErrorAtTheFirstReading)
{
    open();
    nameFile("Date, Time, mmol/l\n 05/03/2002, 08:15, 5.6\n");
    expectError("13", "The cut-off \"\" is not a date and time. Nothing was added.");
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(text("txtDate"), "");

    type("txtDate", "01/01/2002 00:00");
    expectMessage("1 readings added");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(stored(), SizeIs(1));
}

TEST_F(ImportBldResults, AWrongCutOffStaysToBeCorrected)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    open();
    nameFile(" 06/03/2002, 08:15, 6.6\n");
    type("txtDate", "last week");
    expectError("13", "The cut-off \"last week\" is not a date and time.");
    click("cmdOK");
    EXPECT_EQ(text("txtDate"), "last week");
    EXPECT_THAT(stored(), SizeIs(1));
}

TEST_F(ImportBldResults, AfterALineThatStopsItTheNextImportGoesOnThere)
{
    open();
    type("txtDate", "01/01/2002 00:00");
    nameFile(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 08:15, LO\n 07/03/2002, 08:15, 7.6\n");
    expectError("13", "The import stopped at line 2, \" 06/03/2002, 08:15, LO\".");
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | "));

    nameFile(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 08:15, 1.1\n 07/03/2002, 08:15, 7.6\n");
    expectMessage("2 readings added");
    click("cmdOK");
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "1.1 | 06/03/2002 08:15:00 | 0 | ",
                                      "7.6 | 07/03/2002 08:15:00 | 0 | "));
}

TEST_F(ImportBldResults, TheHourglassIsGoneBeforeTheMessage)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    open();
    nameFile(" 06/03/2002, 08:15, 6.6\n");
    EXPECT_CALL(dialogs, showMessage(_, _, _)).WillOnce([] { EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr); });
    click("cmdOK");
}

TEST_F(ImportBldResults, CancelAndEscapeImportNothing)
{
    for (const bool byKey : {false, true}) {
        open();
        nameFile(" 06/03/2002, 08:15, 6.6\n");
        type("txtDate", "01/01/2002 00:00");
        if (byKey) {
            press(Qt::Key_Escape);
        } else {
            click("cmdCancel");
        }
        EXPECT_FALSE(form->isVisible());
    }
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(ImportBldResults, WithoutADiaryItDoesNotOpen)
{
    EXPECT_THROW(frmImportBldResults(&owner, dialogs, folder.filePath("missing.mdb")), std::exception);
}

} // namespace
} // namespace readings
