#include "dialogs/frmCalender.h"

#include "controls/mock_dialogs.h"
#include "controls/window_testing.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/locale_in_force.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace dialogs {
namespace {

using testing::ElementsAre;
using testing_windows::child;
using testing_windows::showActive;

class Calendar : public testing::Test
{
protected:
    void SetUp() override { open("05/03/2002"); }

    void open(const char* date)
    {
        form.emplace(nullptr, clock, dialogs);
        form->DoCalender(QString::fromLatin1(date));
        showActive(*form);
    }

    QTableWidget& grid() { return child<QTableWidget>(*form, "grdCalender"); }
    QComboBox& cboMonth() { return child<QComboBox>(*form, "cboMonth"); }
    std::string caption() { return child<QLabel>(*form, "DateCaption").text().toStdString(); }
    std::string picked() { return form->mgsPickDate().toStdString(); }

    std::string text(int row, int column) { return grid().item(row, column)->text().toStdString(); }
    std::vector<std::string> texts(int row)
    {
        std::vector<std::string> cells;
        for (int column = 0; column < grid().columnCount(); ++column) {
            cells.push_back(text(row, column));
        }
        return cells;
    }
    /// The text of the current cell, which must be seen as such.
    std::string current()
    {
        const QTableWidgetItem* cell = grid().currentItem();
        EXPECT_TRUE(cell->isSelected());
        EXPECT_EQ(grid().selectedItems().size(), 1);
        return cell->text().toStdString();
    }
    std::vector<std::string> markedAsToday()
    {
        std::vector<std::string> days;
        for (int row = 1; row < grid().rowCount(); ++row) {
            for (int column = 0; column < grid().columnCount(); ++column) {
                const QTableWidgetItem& cell = *grid().item(row, column);
                EXPECT_EQ(cell.font().bold(), cell.toolTip() == QStringLiteral("Today"));
                if (cell.font().bold()) {
                    days.push_back(cell.text().toStdString());
                }
            }
        }
        return days;
    }

    void press(Qt::Key key) { QTest::keyClick(form->focusWidget(), key); }
    std::string currentAfter(Qt::Key key)
    {
        press(key);
        return current();
    }
    void click(const char* name) { QTest::mouseClick(&child<QPushButton>(*form, name), Qt::LeftButton); }
    void click(int row, int column)
    {
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, {},
                          grid().visualItemRect(grid().item(row, column)).center());
    }
    void doubleClick(int row, int column)
    {
        const QPoint place = grid().visualItemRect(grid().item(row, column)).center();
        click(row, column);
        QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, place); // its second press
        QTest::mouseRelease(grid().viewport(), Qt::LeftButton, {}, place);
    }
    /// The first one that begins with this letter.
    void chooseMonth(char letter)
    {
        cboMonth().setFocus();
        QTest::keyClick(&cboMonth(), letter);
        grid().setFocus();
    }

    runtime::FixedClock clock{runtime::toDate(QStringLiteral("21/04/2002 08:15"))};
    controls::StrictDialogs dialogs;
    std::optional<frmCalender> form;
};

TEST_F(Calendar, HasTheDayNamesAboveTheDays)
{
    EXPECT_EQ(grid().columnCount(), 7);
    EXPECT_EQ(grid().rowCount(), 7);
    EXPECT_THAT(texts(0), ElementsAre("Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"));
    EXPECT_EQ(child<QLabel>(*form, "lblSelect").text().toStdString(), "Double click on a date to select");
}

TEST_F(Calendar, ShowsTheMonthOfTheDate)
{
    EXPECT_EQ(caption(), "March 2002");
    EXPECT_EQ(cboMonth().currentText().toStdString(), "March");
    EXPECT_THAT(texts(1), ElementsAre("", "", "", "", "", "1", "2"));
    EXPECT_THAT(texts(2), ElementsAre("3", "4", "5", "6", "7", "8", "9"));
    EXPECT_THAT(texts(5), ElementsAre("24", "25", "26", "27", "28", "29", "30"));
    EXPECT_THAT(texts(6), ElementsAre("31", "", "", "", "", "", ""));
}

TEST_F(Calendar, LeavesNothingOfTheMonthBefore)
{
    form->DoCalender(QStringLiteral("15/09/2002"));
    EXPECT_THAT(texts(0), ElementsAre("Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"));
    EXPECT_THAT(texts(1), ElementsAre("1", "2", "3", "4", "5", "6", "7"));
    EXPECT_THAT(texts(5), ElementsAre("29", "30", "", "", "", "", ""));
    EXPECT_THAT(texts(6), ElementsAre("", "", "", "", "", "", ""));
}

TEST_F(Calendar, AnEmptyOrWrongDateShowsTheCurrentMonth)
{
    for (const char* wrong : {"", "31/02/2001", "soon"}) {
        open(wrong);
        EXPECT_EQ(caption(), "April 2002") << wrong;
        EXPECT_EQ(cboMonth().currentText().toStdString(), "April") << wrong;
        EXPECT_EQ(current(), "21") << wrong;
    }
}

TEST_F(Calendar, OpensInTheMiddleOfTheScreenWithTheDayCurrentAndTheFocusInTheGrid)
{
    EXPECT_TRUE(grid().hasFocus());
    EXPECT_EQ(current(), "5");
    const QPoint middle = form->screen()->availableGeometry().center();
    EXPECT_NEAR(form->frameGeometry().center().x(), middle.x(), 2);
    EXPECT_NEAR(form->frameGeometry().center().y(), middle.y(), 2);
}

TEST_F(Calendar, AllCellsAreInSightAndHaveRoomForTheirTexts)
{
    for (int row = 0; row < grid().rowCount(); ++row) {
        for (int column = 0; column < grid().columnCount(); ++column) {
            const QTableWidgetItem* cell = grid().item(row, column);
            const QRect place = grid().visualItemRect(cell);
            EXPECT_TRUE(grid().viewport()->rect().contains(place)) << row << " " << column;
            EXPECT_GE(place.width(), grid().fontMetrics().horizontalAdvance(cell->text())) << row << " " << column;
            EXPECT_GE(place.height(), grid().fontMetrics().height());
        }
    }
}

TEST_F(Calendar, MarksTodayInItsMonthAlone)
{
    EXPECT_THAT(markedAsToday(), ElementsAre());
    chooseMonth('A');
    EXPECT_THAT(markedAsToday(), ElementsAre("21"));
    click("NextYear");
    EXPECT_THAT(markedAsToday(), ElementsAre());
}

TEST_F(Calendar, OffersTheTwelveMonthsWithTheirNumbers)
{
    std::vector<std::string> months;
    for (int item = 0; item < cboMonth().count(); ++item) {
        months.push_back(cboMonth().itemText(item).toStdString() + " " +
                         cboMonth().itemData(item).toString().toStdString());
    }
    EXPECT_THAT(months, ElementsAre("January 1", "February 2", "March 3", "April 4", "May 5", "June 6", "July 7",
                                    "August 8", "September 9", "October 10", "November 11", "December 12"));
    EXPECT_FALSE(cboMonth().isEditable());
}

TEST_F(Calendar, NamesMonthsInTheLocaleInForceAndDaysAsEver)
{
    const LocaleInForce german(QLocale::German, QLocale::Germany);
    open("05/03/2002");
    EXPECT_EQ(caption(), "März 2002");
    EXPECT_EQ(cboMonth().currentText().toStdString(), "März");
    EXPECT_EQ(cboMonth().itemText(11).toStdString(), "Dezember");
    EXPECT_THAT(texts(0), ElementsAre("Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"));
    doubleClick(2, 3);
    EXPECT_EQ(picked(), "6/3/2002");
}

TEST_F(Calendar, ChoosingAMonthShowsItAndKeepsTheDay)
{
    chooseMonth('O');
    EXPECT_EQ(caption(), "October 2002");
    EXPECT_EQ(current(), "5");
    EXPECT_EQ(text(1, 2), "1") << "1 October 2002 was a Tuesday";
}

TEST_F(Calendar, TheYearButtonsShowTheSameMonthOfTheNextYears)
{
    click("PreviousYear");
    EXPECT_EQ(caption(), "March 2001");
    EXPECT_EQ(text(1, 4), "1") << "1 March 2001 was a Thursday";
    click("NextYear");
    click("NextYear");
    EXPECT_EQ(caption(), "March 2003");
    EXPECT_EQ(current(), "5");
    EXPECT_EQ(cboMonth().currentText().toStdString(), "March");
    EXPECT_TRUE(grid().hasFocus()) << "the arrow keys still move between days";
}

TEST_F(Calendar, TheYearButtonsSayWhatTheyDo)
{
    const auto& previous = child<QPushButton>(*form, "PreviousYear");
    const auto& next = child<QPushButton>(*form, "NextYear");
    EXPECT_EQ(previous.toolTip().toStdString(), "Same month a year earlier");
    EXPECT_EQ(previous.accessibleName(), previous.toolTip());
    EXPECT_EQ(next.toolTip().toStdString(), "Same month a year later");
    EXPECT_EQ(next.accessibleName(), next.toolTip());
}

TEST_F(Calendar, FromTheLastOfJanuaryToFebruaryShowsTheCurrentMonth)
{
    open("31/01/2001");
    chooseMonth('F');
    EXPECT_EQ(caption(), "April 2002");
    EXPECT_EQ(cboMonth().currentText().toStdString(), "April");
    EXPECT_EQ(current(), "21");
}

TEST_F(Calendar, FromThe29thOfFebruaryToAnotherYearShowsTheCurrentMonth)
{
    for (const char* button : {"PreviousYear", "NextYear"}) {
        open("29/02/2000");
        EXPECT_EQ(current(), "29");
        click(button);
        EXPECT_EQ(caption(), "April 2002") << button;
        EXPECT_EQ(current(), "21") << button;
    }
}

TEST_F(Calendar, TheYearButtonsShowTheCurrentMonthBeyondTheFirstAndTheLastYear)
{
    open("15/06/0101");
    click("PreviousYear");
    EXPECT_EQ(caption(), "June 0100");
    click("PreviousYear");
    EXPECT_EQ(caption(), "April 2002");
    open("15/06/9998");
    click("NextYear");
    EXPECT_EQ(caption(), "June 9999");
    click("NextYear");
    EXPECT_EQ(caption(), "April 2002");
}

TEST_F(Calendar, ADoubleClickPicksTheDayAndHidesTheForm)
{
    EXPECT_EQ(picked(), "");
    doubleClick(2, 0);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(picked(), "3/3/2002");
}

TEST_F(Calendar, ADoubleClickPicksFromTheMonthAndYearShown)
{
    chooseMonth('D');
    click("PreviousYear");
    doubleClick(6, 1);
    EXPECT_EQ(picked(), "31/12/2001");
}

TEST_F(Calendar, ADoubleClickOnABlankCellDoesNothing)
{
    doubleClick(1, 0);                   // before the first day
    doubleClick(6, 6);                   // after the last
    emit grid().cellDoubleClicked(6, 6); // were the grid to tell of it
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(picked(), "");
    EXPECT_EQ(current(), "5");
}

TEST_F(Calendar, ADoubleClickOnADayNameDoesNothing)
{
    doubleClick(0, 6);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(picked(), "");
    EXPECT_EQ(current(), "5");
}

TEST_F(Calendar, AClickMakesADayCurrentAndPicksNothing)
{
    click(4, 3);
    EXPECT_EQ(current(), "20");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(picked(), "");
}

TEST_F(Calendar, ArrowKeysMoveBetweenDays)
{
    EXPECT_EQ(currentAfter(Qt::Key_Right), "6");
    EXPECT_EQ(currentAfter(Qt::Key_Down), "13");
    EXPECT_EQ(currentAfter(Qt::Key_Left), "12");
    EXPECT_EQ(currentAfter(Qt::Key_Up), "5");
}

TEST_F(Calendar, ArrowKeysGoOnInTheNextWeek)
{
    click(2, 6);
    EXPECT_EQ(currentAfter(Qt::Key_Right), "10") << "from Saturday the 9th to Sunday";
    EXPECT_EQ(currentAfter(Qt::Key_Left), "9");
}

TEST_F(Calendar, ArrowKeysStayInTheMonth)
{
    EXPECT_EQ(currentAfter(Qt::Key_Up), "5") << "there is no 26th of February in sight";
    EXPECT_EQ(currentAfter(Qt::Key_Home), "1");
    EXPECT_EQ(currentAfter(Qt::Key_Left), "1");
    EXPECT_EQ(currentAfter(Qt::Key_Up), "1");
    EXPECT_EQ(currentAfter(Qt::Key_End), "31");
    EXPECT_EQ(currentAfter(Qt::Key_Right), "31");
    EXPECT_EQ(currentAfter(Qt::Key_Down), "31");
    EXPECT_EQ(currentAfter(Qt::Key_PageDown), "31");
    EXPECT_EQ(currentAfter(Qt::Key_PageUp), "31");
    EXPECT_EQ(caption(), "March 2002");
}

TEST_F(Calendar, TypingMovesToNoCell)
{
    for (const char* text : {"1", "T"}) { // 12 and Tue stand in the current column
        QTest::keyClicks(&grid(), QLatin1String(text));
        EXPECT_EQ(current(), "5") << text;
    }
}

TEST_F(Calendar, EnterPicksTheCurrentDay)
{
    for (const Qt::Key enter : {Qt::Key_Return, Qt::Key_Enter}) {
        open("05/03/2002");
        press(Qt::Key_Down);
        press(enter);
        EXPECT_FALSE(form->isVisible());
        EXPECT_EQ(picked(), "12/3/2002");
    }
}

TEST_F(Calendar, EnterElsewherePicksNothing)
{
    cboMonth().setFocus();
    press(Qt::Key_Return);
    child<QPushButton>(*form, "PreviousYear").setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(picked(), "");
    EXPECT_EQ(caption(), "March 2002");
}

TEST_F(Calendar, EscapeLeavesWithoutADate)
{
    press(Qt::Key_Down);
    press(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(picked(), "");
}

TEST_F(Calendar, TabVisitsTheControlsAndSpacePressesTheYearButtons)
{
    std::vector<std::string> visited;
    for (int step = 0; step < 5; ++step) {
        visited.push_back(form->focusWidget()->objectName().toStdString());
        press(Qt::Key_Tab);
    }
    EXPECT_THAT(visited, ElementsAre("grdCalender", "cboMonth", "PreviousYear", "NextYear", "grdCalender"));
    press(Qt::Key_Tab); // from cboMonth
    press(Qt::Key_Space);
    EXPECT_EQ(caption(), "March 2001");
}

} // namespace
} // namespace dialogs
