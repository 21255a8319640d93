// What the main window does with a diary: reports and new readings, and what the user sees when the diary fails.
#include "app/main_window.h"

#include "data/database.h"
#include "readings/stored_readings.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Truly;
using testing_windows::child;
using testing_windows::whenModal;

class MainActions : public MainWindow
{
protected:
    void report() { choose("mnuReports", "mnuBasicBloodSugar"); }

    void expectError(const char* beginning)
    {
        EXPECT_CALL(dialogs, showError(&*window, Truly([beginning](const QString& text) {
                        return text.startsWith(QLatin1String(beginning));
                    }),
                                       QString("Quillon")))
            .WillOnce([] { EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "no hourglass over the box"; });
    }

    /// An error leaves the window usable.
    void expectReportWorksAgain()
    {
        report();
        EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "05.6\t02/03/2002 08:15:00\tMeal\t"));
    }

    void write(qint64 position, const QByteArray& content)
    {
        QFile file(diary.path());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(position));
        ASSERT_EQ(file.write(content), content.size());
    }
};

TEST_F(MainActions, TheBasicReportListsTheReadingsInsideTheFilter)
{
    diary.addReading("28/02/2002 12:00", 7.0, 2);
    diary.addReading("01/03/2002", 3.9, 1);
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    diary.addReading("03/03/2002 23:59", 8.1, 5, QString("late"));
    diary.addReading("04/03/2002", 4.0, 1);
    report();
    EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "05.6\t02/03/2002 08:15:00\tMeal\t",
                                     "08.1\t03/03/2002 23:59:00\tPre Bed\tlate"))
        << "both bounds are left out";
    EXPECT_EQ(state().lstView.at(3).style, reports::Green);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(MainActions, TheReportAppearsInTheListControl)
{
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    report();
    const auto& shown = child<QAbstractItemView>(*window, "lstView");
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown.model()->rowCount() == 3; }));
}

TEST_F(MainActions, AfterClearTheReportListsTheWholeHistory)
{
    diary.addReading("28/02/1990 12:00", 7.0, 2);
    diary.addReading("28/02/2030 12:00", 8.0, 2);
    click("cmdClear");
    report();
    EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "07.0\t28/02/1990 12:00:00\tMeal\t",
                                     "08.0\t28/02/2030 12:00:00\tMeal\t"));
}

TEST_F(MainActions, TheDailyAnalysisShowsAMealAndItsNight)
{
    diary.addReading("01/03/2002 22:30", 9.0, 5);
    diary.addReading("02/03/2002 08:00", 5.0, 2);
    diary.addReading("02/03/2002 10:00", 8.5, 3);
    diary.addReading("02/03/2002 11:00", 7.0, 4);
    choose("mnuReports", "mnuDailyAnalysis");
    EXPECT_THAT(lines(), ElementsAre("Date / Time\tMeal\tMeal + 2\tMeal + 3\tDelta 2\tDelta 3", "",
                                     "Saturday 02 Mar 2002", "", "This morning - 5.0   Last night - 9.0   Drop = 4.0",
                                     "", "02 Mar 2002 08:00\t05.0\t08.5\t07.0\t3.5\t2.0",
                                     "02 Mar 2002 08:00\t00.0\t00.0\t00.0\t0.0\t0.0"))
        << "the reading of the night is a group of its own, without a time";
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(MainActions, AFailingAnalysisKeepsItsLinesAndGivesThePointerBack)
{
    diary.addReading("02/03/2002 08:00", 5.0, 2);
    diary.addReading("02/03/2002 10:00", 8.5, 3);
    diary.addReading("02/03/2002 11:00", 7.0, 4);
    expectError("Run-time error '3021':\n\nNo current record.\n\n");
    choose("mnuReports", "mnuDailyAnalysis");
    EXPECT_THAT(lines(),
                ElementsAre("Date / Time\tMeal\tMeal + 2\tMeal + 3\tDelta 2\tDelta 3", "", "Saturday 02 Mar 2002", ""));
}

TEST_F(MainActions, StatisticsStandBelowTheReportAndNameWhatTheFieldsHold)
{
    diary.addReading("02/03/2002 08:00", 5.0, 2);
    diary.addReading("02/03/2002 10:00", 9.0, 3);
    diary.addReading("02/03/2002 14:00", 6.0, 6);
    report();
    type("txtTo", "9/3/2002"); // not applied
    choose("mnuReports", "mnuStats");
    auto all = lines();
    ASSERT_EQ(all.size(), 10U);
    all.erase(all.begin(), all.begin() + 5);
    EXPECT_THAT(all, ElementsAre("Statistics for 01/03/2002 to 9/3/2002", "", "Average Blood Sugar Level = 6.7 Mmol",
                                 "", "Time Wt Average Blood Sugar Level = 5.9 Mmol"));
    EXPECT_TRUE(state().ReportTitle.startsWith("All Blood Sugar Readings"));
}

TEST_F(MainActions, AReportWithoutReadingsEndsWithAnErrorBelowTheHeading)
{
    expectError("Run-time error '3021':\n\nNo current record.");
    report();
    EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", ""));
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    expectReportWorksAgain();
}

TEST_F(MainActions, AToDateBeforeTheFromDateGivesNoReadings)
{
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    type("txtFrom", "5/3/2002");
    type("txtTo", "1/3/2002");
    click("cmdApply");
    expectError("Run-time error '3021':");
    report();
}

TEST_F(MainActions, AMissingDiaryIsReportedAndTheOldLinesStay)
{
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    report();
    const auto before = lines();
    ASSERT_TRUE(QFile::rename(diary.path(), diary.path() + ".away"));
    expectError("Run-time error '3024':\n\nCould not find file");
    report();
    EXPECT_EQ(lines(), before);
    ASSERT_TRUE(QFile::rename(diary.path() + ".away", diary.path()));
    expectReportWorksAgain();
}

TEST_F(MainActions, AFileOfAnotherKindIsReported)
{
    QFile file(diary.path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray("These are notes, not a diary.\n").repeated(400));
    file.close();
    expectError("Run-time error '3343':");
    report();
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(MainActions, ADamagedDiaryIsReported)
{
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    const qint64 size = QFile(diary.path()).size();
    write(4096, QByteArray(static_cast<qsizetype>(size - 4096), '\xff'));
    expectError("Run-time error '");
    report();
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(MainActions, ANewReadingIsStoredAndReported)
{
    whenModal([](QWidget& form) {
        EXPECT_EQ(form.objectName().toStdString(), "frmAddBloodSugar");
        testing_windows::typeOver(child<QLineEdit>(form, "txtBloodSugar"), QStringLiteral("6.5"));
        QTest::mouseClick(&child<QPushButton>(form, "cmdOK"), Qt::LeftButton);
    });
    choose("mnuAdd", "mnuBloodSugar");
    report();
    EXPECT_THAT(lines(), ElementsAre("Mmol\tWhen\tType\tComment", "", "06.5\t03/03/2002 10:00:00\tMeal\t"));
}

TEST_F(MainActions, ANewReadingGoesToTheFixedDiaryWhateverTheWindowUses)
{
    const TestDiary other;
    fixedDiaryPath = other.path();
    open("03/03/2002 10:00");
    ASSERT_NE(state().strPath, other.path());
    whenModal([](QWidget& form) {
        testing_windows::typeOver(child<QLineEdit>(form, "txtBloodSugar"), QStringLiteral("6.5"));
        QTest::mouseClick(&child<QPushButton>(form, "cmdOK"), Qt::LeftButton);
    });
    choose("mnuAdd", "mnuBloodSugar");
    EXPECT_THAT(storedReadings(other.path()), ElementsAre("6.5 | 03/03/2002 10:00:00 | 2 | "));
    EXPECT_THAT(storedReadings(diary.path()), IsEmpty());
}

TEST_F(MainActions, TheDialogForAReadingStandsOverTheWindowsCentre)
{
    whenModal([this](QWidget& form) {
        const QPoint distance = form.frameGeometry().center() - window->frameGeometry().center();
        EXPECT_LE(std::abs(distance.x()), 1);
        EXPECT_LE(std::abs(distance.y()), 1);
        EXPECT_EQ(form.windowModality(), Qt::ApplicationModal);
    });
    choose("mnuAdd", "mnuBloodSugar");
}

TEST_F(MainActions, AWrongDateInTheFilterDoesNotDisturbADialog)
{
    type("txtFrom", "wrong");
    whenModal([](QWidget& form) { QTest::keyClick(&form, Qt::Key_Escape); });
    choose("mnuAdd", "mnuBloodSugar");
    testing_windows::handlePostedEvents();
    EXPECT_EQ(window->focusWidget(), &field("txtFrom"));
}

} // namespace
} // namespace app
