#include "controls/event_handlers.h"

#include "controls/hourglass_pointer.h"
#include "controls/mock_dialogs.h"
#include "runtime/run_time_error.h"

#include <QApplication>
#include <QPushButton>

#include <gtest/gtest.h>

#include <stdexcept>

namespace controls {
namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;
using testing::_;

TEST(Guarded, ShowsARunTimeErrorWithItsNumberAndWords)
{
    QWidget form;
    StrictDialogs dialogs;
    EXPECT_CALL(dialogs, showError(&form, QString("Run-time error '3021':\n\nNo current record."), QString("Quillon")));
    EXPECT_FALSE(guarded(dialogs, &form, [] { throw RunTimeError(ErrorNumber::NoCurrentRecord); }));
}

TEST(Guarded, ShowsTheHintBelowTheWords)
{
    StrictDialogs dialogs;
    EXPECT_CALL(dialogs, showError(_, QString("Run-time error '3021':\n\nNo current record.\n\nTry again."), _));
    guarded(dialogs, nullptr,
            [] { throw RunTimeError(ErrorNumber::NoCurrentRecord).withHint(QStringLiteral("Try again.")); });
}

TEST(Guarded, ShowsAnyOtherExceptionToo)
{
    StrictDialogs dialogs;
    EXPECT_CALL(dialogs, showError(_, QString("Unexpected error:\n\nout of luck"), _));
    EXPECT_FALSE(guarded(dialogs, nullptr, [] { throw std::runtime_error("out of luck"); }));
    EXPECT_CALL(dialogs, showError(_, QString("Unexpected error of an unknown kind."), _));
    EXPECT_FALSE(guarded(dialogs, nullptr, [] { throw 7; }));
}

TEST(Guarded, SaysWhetherTheActionCameToItsEnd)
{
    StrictDialogs dialogs;
    bool ran = false;
    EXPECT_TRUE(guarded(dialogs, nullptr, [&] { ran = true; }));
    EXPECT_TRUE(ran);
}

TEST(Guarded, RestoresThePointerBeforeTheBoxOpens)
{
    StrictDialogs dialogs;
    EXPECT_CALL(dialogs, showError(_, _, _)).WillOnce([] { EXPECT_EQ(QApplication::overrideCursor(), nullptr); });
    guarded(dialogs, nullptr, [] {
        const HourglassPointer hourglass;
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        throw RunTimeError(ErrorNumber::NoCurrentRecord);
    });
}

class Form : public QWidget
{
public:
    void button_Click()
    {
        ++clicks;
        throw RunTimeError(ErrorNumber::NoCurrentRecord);
    }
    void button_Toggle(bool down) { toggledTo = down; }
    int clicks = 0;
    bool toggledTo = false;
};

TEST(EventHandlers, NoExceptionOfAHandlerReachesTheSender)
{
    Form form;
    QPushButton button;
    StrictDialogs dialogs;
    const EventHandlers handlers(form, dialogs);
    handlers.connect(&button, &QPushButton::clicked, &Form::button_Click);
    EXPECT_CALL(dialogs, showError(&form, QString("Run-time error '3021':\n\nNo current record."), _)).Times(2);
    EXPECT_NO_THROW(button.click());
    EXPECT_NO_THROW(button.click());
    EXPECT_EQ(form.clicks, 2) << "the program goes on";
}

TEST(EventHandlers, PassTheArgumentsThatAHandlerTakes)
{
    Form form;
    QPushButton button;
    button.setCheckable(true);
    StrictDialogs dialogs;
    EventHandlers(form, dialogs).connect(&button, &QPushButton::toggled, &Form::button_Toggle);
    button.click();
    EXPECT_TRUE(form.toggledTo);
}

TEST(EventHandlers, TurnAHandlerIntoAFunctionThatThrowsNothing)
{
    Form form;
    StrictDialogs dialogs;
    EXPECT_CALL(dialogs, showError(&form, _, _));
    EXPECT_NO_THROW(EventHandlers(form, dialogs).function(&Form::button_Click)());
}

} // namespace
} // namespace controls
