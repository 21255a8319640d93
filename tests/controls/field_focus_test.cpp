#include "controls/field_focus.h"

#include "controls/modApplication.h"
#include "controls/window_testing.h"

#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace controls {
namespace {

using testing_windows::showActive;

class FieldFocusTest : public testing::Test
{
protected:
    void SetUp() override
    {
        auto* layout = new QVBoxLayout(&form);
        for (QWidget* control : std::initializer_list<QWidget*>{&first, &second, &button}) {
            layout->addWidget(control);
        }
        focus.watch(first, [this] {
            ++firstLeft;
            if (first.text() == u"wrong") {
                focus.giveBack(first);
            }
        });
        focus.watch(second, [this] { ++secondLeft; });
        QObject::connect(&focus, &FieldFocus::entered, &SelectAll);
        showActive(form);
        first.setFocus();
        firstLeft = 0;
    }
    void TearDown() override
    {
        for (QWidget* control : std::initializer_list<QWidget*>{&first, &second, &button}) {
            control->setParent(nullptr);
        }
    }

    QWidget form;
    QLineEdit first;
    QLineEdit second;
    QPushButton button;
    FieldFocus& focus = *new FieldFocus(form);
    int firstLeft = 0;
    int secondLeft = 0;
};

TEST_F(FieldFocusTest, TabLeavesAFieldAndEntersTheNext)
{
    second.setText(QStringLiteral("text"));
    QTest::keyClick(&first, Qt::Key_Tab);
    EXPECT_EQ(firstLeft, 1);
    EXPECT_TRUE(second.hasFocus());
    EXPECT_EQ(second.selectedText(), QStringLiteral("text"));
}

TEST_F(FieldFocusTest, AClickIntoAFieldSelectsItsText)
{
    second.setText(QStringLiteral("text"));
    QTest::mouseClick(&second, Qt::LeftButton);
    EXPECT_TRUE(second.hasFocus());
    EXPECT_EQ(second.selectedText(), QStringLiteral("text"));
}

TEST_F(FieldFocusTest, ASecondClickPlacesTheCursor)
{
    second.setText(QStringLiteral("text"));
    QTest::mouseClick(&second, Qt::LeftButton);
    QTest::mouseClick(&second, Qt::LeftButton);
    EXPECT_FALSE(second.hasSelectedText());
}

TEST_F(FieldFocusTest, ASelectionDrawnWithTheMouseStays)
{
    second.setText(QStringLiteral("several words of text"));
    QTest::mousePress(&second, Qt::LeftButton, {}, {8, second.height() / 2});
    QTest::mouseMove(&second, {60, second.height() / 2});
    QTest::mouseRelease(&second, Qt::LeftButton, {}, {60, second.height() / 2});
    EXPECT_TRUE(second.hasSelectedText());
    EXPECT_NE(second.selectedText(), second.text());
}

TEST_F(FieldFocusTest, AFieldGivenTheFocusBackKeepsIt)
{
    first.setText(QStringLiteral("wrong"));
    QTest::keyClick(&first, Qt::Key_Tab);
    EXPECT_TRUE(first.hasFocus());
    EXPECT_EQ(first.selectedText(), QStringLiteral("wrong"));
    EXPECT_EQ(firstLeft, 1);
    EXPECT_EQ(secondLeft, 0) << "the second field was never entered";
    QTest::keyClicks(&first, QStringLiteral("right\t"));
    EXPECT_TRUE(second.hasFocus());
    EXPECT_EQ(first.text(), QStringLiteral("right"));
}

TEST_F(FieldFocusTest, WhatIsTypedRightAfterTabGoesToTheFieldThatKeptTheFocus)
{
    first.setText(QStringLiteral("wrong"));
    QTest::keyClick(&first, Qt::Key_Tab);
    QTest::keyClick(form.focusWidget(), Qt::Key_X);
    EXPECT_EQ(first.text(), QStringLiteral("x"));
    EXPECT_TRUE(second.text().isEmpty());
}

TEST_F(FieldFocusTest, AClickIntoAnotherFieldIsNoWayOut)
{
    first.setText(QStringLiteral("wrong"));
    QTest::mouseClick(&second, Qt::LeftButton);
    EXPECT_TRUE(first.hasFocus());
    QTest::mouseClick(&second, Qt::LeftButton);
    EXPECT_TRUE(first.hasFocus());
    EXPECT_EQ(firstLeft, 2);
}

TEST_F(FieldFocusTest, AMenuTakesNobodyOutOfAField)
{
    first.setText(QStringLiteral("wrong"));
    QMenu menu(&form);
    menu.addAction(QStringLiteral("entry"));
    menu.popup(form.mapToGlobal(QPoint(5, 5)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    QTest::keyClick(&menu, Qt::Key_Escape);
    EXPECT_EQ(firstLeft, 0);
    EXPECT_TRUE(first.hasFocus());
}

TEST_F(FieldFocusTest, AnotherWindowTakesNobodyOutOfAField)
{
    first.setText(QStringLiteral("wrong"));
    first.deselect();
    {
        QWidget other;
        showActive(other);
    }
    showActive(form);
    EXPECT_EQ(firstLeft, 0);
    EXPECT_TRUE(first.hasFocus());
    EXPECT_FALSE(first.hasSelectedText()) << "coming back is not entering";
}

TEST_F(FieldFocusTest, MovingTheFocusTellsWhetherTheFieldLetItGo)
{
    EXPECT_TRUE(focus.moveTo(button));
    EXPECT_TRUE(button.hasFocus());
    first.setText(QStringLiteral("wrong"));
    first.setFocus();
    EXPECT_FALSE(focus.moveTo(button));
    EXPECT_TRUE(first.hasFocus());
}

TEST_F(FieldFocusTest, MovingTheFocusAsksTheFieldInAnInactiveWindowToo)
{
    QWidget other;
    showActive(other);
    first.setText(QStringLiteral("wrong"));
    EXPECT_FALSE(focus.moveTo(button));
    EXPECT_EQ(form.focusWidget(), &first);
    first.setText(QStringLiteral("right"));
    EXPECT_TRUE(focus.moveTo(button));
}

TEST_F(FieldFocusTest, ClosingTheFormLeavesNoField)
{
    first.setText(QStringLiteral("wrong"));
    form.close();
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(firstLeft, 0);
}

} // namespace
} // namespace controls
