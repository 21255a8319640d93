#include "dialogs/change_date.h"

#include "controls/mock_dialogs.h"
#include "controls/modApplication.h"
#include "controls/window_testing.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"

#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

#include <gtest/gtest.h>

namespace dialogs {
namespace {

using testing_windows::child;
using testing_windows::showActive;
using testing_windows::whenModal;

class ChangeDateTest : public testing::Test
{
protected:
    void SetUp() override
    {
        owner.setGeometry(100, 80, 500, 400);
        box = new QLineEdit(&owner);
        showActive(owner);
    }

    /// The text box's text after the user has done `act` in the calendar.
    std::string changed(const char* text, const std::function<void(QWidget& calendar)>& act)
    {
        box->setText(QString::fromLatin1(text));
        bool opened = false;
        whenModal([&](QWidget& calendar) {
            opened = true;
            act(calendar);
        });
        ChangeDate(*box, owner, clock, dialogs);
        EXPECT_TRUE(opened);
        return box->text().toStdString();
    }

    static void press(QWidget& calendar, Qt::Key key) { QTest::keyClick(calendar.focusWidget(), key); }
    static void doubleClick(QWidget& calendar, int row, int column)
    {
        auto& grid = child<QTableWidget>(calendar, "grdCalender");
        const QPoint place = grid.visualItemRect(grid.item(row, column)).center();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, place); // its second press
    }

    runtime::FixedClock clock{runtime::toDate(QStringLiteral("21/04/2002 08:15"))};
    controls::StrictDialogs dialogs;
    QWidget owner;
    QLineEdit* box = nullptr;
};

TEST_F(ChangeDateTest, OpensTheCalendarModallyOverItsOwner)
{
    changed("05/03/2002", [this](QWidget& calendar) {
        EXPECT_EQ(calendar.objectName().toStdString(), "frmCalender");
        EXPECT_EQ(calendar.windowTitle().toStdString(), "Double click to select date");
        EXPECT_TRUE(calendar.isModal());
        EXPECT_EQ(calendar.parentWidget(), &owner);
        EXPECT_EQ(calendar.pos(), controls::centredOver(owner.frameGeometry(), calendar.frameSize()));
        EXPECT_EQ(child<QLabel>(calendar, "DateCaption").text().toStdString(), "March 2002");
    });
}

TEST_F(ChangeDateTest, WritesThePickedDayWithLeadingZeros)
{
    EXPECT_EQ(changed("15/03/2002", [](QWidget& calendar) { doubleClick(calendar, 2, 1); }), "04/03/2002");
}

TEST_F(ChangeDateTest, TheTimeBehindADateGoes)
{
    EXPECT_EQ(changed("05/03/2002 13:30", [](QWidget& calendar) { press(calendar, Qt::Key_Return); }), "05/03/2002");
}

TEST_F(ChangeDateTest, AnEmptyOrWrongDateOpensOnThePresentDate)
{
    for (const char* wrong : {"", "31/02/2001"}) {
        EXPECT_EQ(changed(wrong, [](QWidget& calendar) { press(calendar, Qt::Key_Return); }), "21/04/2002") << wrong;
    }
}

TEST_F(ChangeDateTest, NothingPickedLeavesTheTextBoxAsItWas)
{
    for (const char* text : {"5/3/2002 13:30", "", "soon"}) {
        EXPECT_EQ(changed(text, [](QWidget& calendar) { press(calendar, Qt::Key_Escape); }), text);
        EXPECT_EQ(changed(text, [](QWidget& calendar) { calendar.close(); }), text);
    }
}

TEST_F(ChangeDateTest, PicksInTheFirstAndTheLastYearToo)
{
    const auto pickNextDay = [](QWidget& calendar) {
        press(calendar, Qt::Key_Right);
        press(calendar, Qt::Key_Return);
    };
    EXPECT_EQ(changed("05/03/0100", pickNextDay), "06/03/0100");
    EXPECT_EQ(changed("30/12/9999", pickNextDay), "31/12/9999");
}

} // namespace
} // namespace dialogs
