#include "controls/modApplication.h"

#include "controls/qt_dialogs.h"
#include "controls/window_testing.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace controls {
namespace {

using testing_windows::showActive;
using testing_windows::whenModal;

TEST(CentredOver, PutsTheCentresOnEachOther)
{
    EXPECT_EQ(centredOver({100, 50, 400, 300}, {200, 100}), QPoint(200, 150));
}

TEST(CentredOver, TruncatesTheTop)
{
    EXPECT_EQ(centredOver({0, 10, 400, 301}, {200, 100}).y(), 110) << "110.5";
    EXPECT_EQ(centredOver({0, 0, 400, 100}, {200, 101}).y(), 0) << "-0.5 is truncated to 0";
    EXPECT_EQ(centredOver({0, 0, 400, 100}, {200, 103}).y(), -1) << "-1.5 is truncated to -1";
}

TEST(CentredOver, ADialogLargerThanItsOwnerStartsBeforeIt)
{
    EXPECT_EQ(centredOver({100, 100, 200, 100}, {400, 200}), QPoint(0, 50));
}

TEST(ShowCentredModal, RunsTheDialogOverItsOwnersCentre)
{
    QWidget owner;
    owner.setGeometry(120, 90, 400, 300);
    showActive(owner);
    QDialog dialog(&owner);
    dialog.resize(200, 101);
    whenModal([&](QWidget& modal) {
        EXPECT_EQ(&modal, &dialog);
        EXPECT_TRUE(modal.isModal());
        EXPECT_EQ(modal.parentWidget(), &owner);
        EXPECT_EQ(modal.size(), QSize(200, 101));
        EXPECT_EQ(modal.pos(), centredOver(owner.frameGeometry(), modal.frameSize()));
    });
    ShowCentredModal(dialog, owner);
    EXPECT_FALSE(dialog.isVisible());
}

TEST(SelectAllTest, SelectsATextBoxAndLeavesOtherControlsAlone)
{
    QLineEdit textBox(QStringLiteral("text"));
    SelectAll(&textBox);
    EXPECT_EQ(textBox.selectionStart(), 0);
    EXPECT_EQ(textBox.selectionLength(), 4);
    QComboBox comboBox;
    comboBox.addItem(QStringLiteral("item"));
    SelectAll(&comboBox);
    EXPECT_EQ(comboBox.currentText(), QStringLiteral("item"));
}

TEST(QtDialogs, AMessageHasTheProgramsTitleItsTextAndAnOkButton)
{
    QWidget owner;
    whenModal([&](QWidget& modal) {
        auto& box = dynamic_cast<QMessageBox&>(modal);
        EXPECT_EQ(box.windowTitle().toStdString(), "Quillon");
        EXPECT_EQ(box.text().toStdString(), "<b>Meal</b> Saved");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
    });
    QtDialogs().showMessage(&owner, QStringLiteral("<b>Meal</b> Saved"));
}

TEST(QtDialogs, AnErrorHasTheSignForIt)
{
    QWidget owner;
    whenModal([&](QWidget& modal) {
        const auto& box = dynamic_cast<QMessageBox&>(modal);
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        EXPECT_EQ(box.windowTitle().toStdString(), "Another title");
    });
    QtDialogs().showError(&owner, QStringLiteral("words"), QStringLiteral("Another title"));
}

TEST(QtDialogs, AnInputBoxGivesWhatTheUserTypes)
{
    QWidget owner;
    whenModal([&](QWidget& modal) {
        auto& box = dynamic_cast<QInputDialog&>(modal);
        EXPECT_EQ(box.windowTitle().toStdString(), "Quillon");
        EXPECT_EQ(box.labelText().toStdString(), "Find what?");
        EXPECT_EQ(box.textValue().toStdString(), "proposal");
        auto* field = box.findChild<QLineEdit*>();
        QTest::keyClicks(field, QStringLiteral("MEAL"));
        QTest::keyClick(field, Qt::Key_Return);
    });
    EXPECT_EQ(QtDialogs().askText(&owner, QStringLiteral("Find what?"), QStringLiteral("proposal")).toStdString(),
              "MEAL");
}

TEST(QtDialogs, ACancelledInputBoxGivesNothing)
{
    QWidget owner;
    whenModal([&](QWidget& modal) { QTest::keyClick(&modal, Qt::Key_Escape); });
    EXPECT_TRUE(QtDialogs().askText(&owner, QStringLiteral("Find what?"), QStringLiteral("proposal")).isEmpty());
}

} // namespace
} // namespace controls
