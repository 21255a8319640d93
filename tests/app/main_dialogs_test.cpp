// The dialogs that the main window opens, and what comes back from them.
#include "app/main_window.h"

#include "readings/stored_readings.h"

#include <QFile>
#include <QTableWidget>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using testing_windows::child;
using testing_windows::whenModal;

using MainDialogs = MainWindow;

/// Enter in the calendar picks the day that it was opened on; the right arrow moves on by one.
void pickTheNextDay(QWidget& calendar)
{
    EXPECT_EQ(calendar.windowTitle().toStdString(), "Double click to select date");
    auto& days = child<QTableWidget>(calendar, "grdCalender");
    QTest::keyClick(&days, Qt::Key_Right);
    QTest::keyClick(&days, Qt::Key_Return);
}

TEST_F(MainDialogs, TheCalendarPutsThePickedDayIntoTheFromField)
{
    whenModal(pickTheNextDay);
    click("cmdFrom");
    EXPECT_EQ(field("txtFrom").text().toStdString(), "02/03/2002");
    EXPECT_EQ(field("txtTo").text().toStdString(), "04/03/2002");
}

TEST_F(MainDialogs, TheCalendarPutsThePickedDayIntoTheToField)
{
    whenModal(pickTheNextDay);
    click("cmdTo");
    EXPECT_EQ(field("txtTo").text().toStdString(), "05/03/2002");
}

TEST_F(MainDialogs, APickedDayCountsOnceApplyIsClicked)
{
    const QString before = state().strWhere;
    whenModal(pickTheNextDay);
    click("cmdFrom");
    EXPECT_EQ(state().strWhere, before);
    click("cmdApply");
    EXPECT_EQ(state().strWhere.toStdString(), "where When > Cdate('02/03/2002') and When < Cdate('04/03/2002')");
}

TEST_F(MainDialogs, EscapeInTheCalendarLeavesTheFieldAsItWas)
{
    whenModal(
        [](QWidget& calendar) { QTest::keyClick(&child<QTableWidget>(calendar, "grdCalender"), Qt::Key_Escape); });
    click("cmdFrom");
    EXPECT_EQ(field("txtFrom").text().toStdString(), "01/03/2002");
}

TEST_F(MainDialogs, TheCalendarMendsAFieldThatHoldsNoDate)
{
    type("txtFrom", "wrong");
    whenModal(pickTheNextDay);
    click("cmdFrom");
    EXPECT_EQ(field("txtFrom").text().toStdString(), "04/03/2002") << "from today";
}

TEST_F(MainDialogs, ImportedReadingsGoToTheDiaryAndIntoReports)
{
    diary.addReading("01/03/2002 08:00", 5.0, 1);
    const QTemporaryDir folder;
    const QString path = folder.filePath("meter.csv");
    QFile meter(path);
    ASSERT_TRUE(meter.open(QIODevice::WriteOnly));
    meter.write("\"Date,\"Time, Result\n 02/03/2002, 07:30, 6.25\n");
    meter.close();

    EXPECT_CALL(dialogs, showMessage(testing::_, QString("1 readings added"), QString("Quillon")));
    whenModal([&](QWidget& form) {
        EXPECT_EQ(form.objectName().toStdString(), "frmImportBldResults");
        EXPECT_EQ(child<QLineEdit>(form, "txtDate").text().toStdString(), "01/03/2002 08:00");
        child<QLineEdit>(form, "txtPath").setText(path);
        QTest::mouseClick(&child<QPushButton>(form, "cmdOK"), Qt::LeftButton);
    });
    choose("mnuAdd", "mnuImportBlood");
    choose("mnuReports", "mnuBasicBloodSugar");
    EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "05.0\t01/03/2002 08:00:00\tGetting Up\t",
                                     "06.3\t02/03/2002 07:30:00\tUnclassified\t"));
}

TEST_F(MainDialogs, AnEditedReadingIsStored)
{
    diary.addReading("01/03/2002 08:00", 5.0, 1);
    whenModal([](QWidget& form) {
        EXPECT_EQ(form.objectName().toStdString(), "frmEditBldSugar");
        auto& mmol = child<QLineEdit>(form, "txtMmol");
        QTest::mouseClick(&mmol, Qt::LeftButton);
        testing_windows::typeOver(mmol, QStringLiteral("7.5"));
        form.close();
    });
    choose("mnuEdit", "mnuEditBloodSugar");
    EXPECT_THAT(storedReadings(diary.path()), ElementsAre(StartsWith("7.5 | 01/03/2002 08:00:00 | 1")));
}

} // namespace
} // namespace app
