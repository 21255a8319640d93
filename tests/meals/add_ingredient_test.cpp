#include "meals/frmAddIngredient.h"

#include "controls/mock_dialogs.h"
#include "controls/modApplication.h"
#include "controls/window_testing.h"
#include "data/database.h"
#include "meals/food_diary.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace meals {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing_windows::child;
using testing_windows::handlePostedEvents;
using testing_windows::showActive;

std::vector<std::string> numberedNutrients(int count)
{
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("Nutrient_" + std::to_string(i));
    }
    return names;
}

class AddIngredient : public testing::Test
{
protected:
    /// The window on a food table with these nutrients and the foods 1001 and 1002.
    void open(const std::vector<std::string>& nutrients = {"Energ_Kcal", "Carbohydrt", "Iron"})
    {
        openOn(usualColumns(nutrients));
    }
    void openOn(const std::vector<jet::ColumnSpec>& columns)
    {
        form.reset();
        diary.emplace(columns, std::vector{1001, 1002});
        reopen();
    }
    void reopen()
    {
        form.emplace(&owner, dialogs, diary->path());
        showActive(*form);
    }

    static QByteArray element(const char* array, int index)
    {
        return QByteArray(array) + '(' + QByteArray::number(index) + ')';
    }
    QLineEdit& field(const char* name) { return child<QLineEdit>(*form, name); }
    QLineEdit& value(int index) { return field(element("txtNutrientValue", index).constData()); }
    QLabel& label(int index) { return child<QLabel>(*form, element("lblNutrient", index).constData()); }
    QCheckBox& checkBox(const char* name) { return child<QCheckBox>(*form, name); }
    QPushButton& button(const char* name) { return child<QPushButton>(*form, name); }
    QScrollArea& rows() { return *form->findChild<QScrollArea*>(); }
    std::string focused() { return form->focusWidget()->objectName().toStdString(); }

    /// The captions of the rows, in the order of their index.
    std::vector<std::string> captions()
    {
        std::vector<std::string> texts;
        while (const auto* row =
                   form->findChild<QLabel*>(QString(element("lblNutrient", static_cast<int>(texts.size()))))) {
            texts.push_back(row->text().toStdString());
        }
        return texts;
    }

    /// As a user does: into the field, its text replaced.
    void type(QLineEdit& box, const char* text)
    {
        QTest::mouseClick(&box, Qt::LeftButton);
        box.selectAll(); // a click into the field that has the focus already selects nothing
        if (*text == '\0') {
            QTest::keyClick(&box, Qt::Key_Delete);
        }
        QTest::keyClicks(&box, QString::fromUtf8(text));
    }
    void press(int key) { QTest::keyClick(form->focusWidget(), static_cast<Qt::Key>(key)); }
    void click(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }
    void expectError(const char* text) { EXPECT_CALL(dialogs, showError(&*form, QString(text), _)); }
    /// Whether the rows' scrolling leaves the whole control in sight.
    bool isInSight(QWidget& control)
    {
        const QRect place(control.mapTo(rows().viewport(), QPoint()), control.size());
        return rows().viewport()->rect().contains(place);
    }

    std::optional<FoodDiary> diary;
    controls::StrictDialogs dialogs;
    QWidget owner;
    std::optional<frmAddIngredient> form;
};

// What a food of the usual columns has behind its nutrients.
std::string behind(const char* flags)
{
    return " | " + kNoHouseholdWeights + flags;
}

TEST_F(AddIngredient, HasItsCaptions)
{
    open();
    EXPECT_EQ(form->windowTitle().toStdString(), " Add Ingredient / Food");
    EXPECT_EQ(child<QLabel>(*form, "lblDesc").text().toStdString(), "Ingredient Description");
    EXPECT_EQ(checkBox("chkRecipe").text().toStdString(), "Recipe");
    EXPECT_EQ(checkBox("chkIngredient").text().toStdString(), "Ingredient");
    EXPECT_EQ(button("cmdOK").text().toStdString(), "OK");
    EXPECT_EQ(button("cmdSave").text().toStdString(), "Save to DB");
    EXPECT_EQ(button("cmdCancel").text().toStdString(), "Cancel");
}

TEST_F(AddIngredient, OpensEmptyWithARowOfZeroForEachNutrient)
{
    open();
    EXPECT_THAT(captions(), ElementsAre("Energ_Kcal", "Carbohydrt", "Iron"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(value(i).text().toStdString(), "0") << i;
    }
    EXPECT_EQ(field("txtDesc").text().toStdString(), "");
    EXPECT_FALSE(checkBox("chkRecipe").isChecked());
    EXPECT_FALSE(checkBox("chkIngredient").isChecked());
    EXPECT_EQ(focused(), "txtDesc");
}

TEST_F(AddIngredient, NeverShowsAFixedColumnWhateverItsPosition)
{
    openOn({flagColumn("Ingredient"), numberColumn("Zinc"), numberColumn("Refuse_Pct"), textColumn("GmWt_Desc2", 20),
            numberColumn("GmWt_2"), keyColumn(), numberColumn("Ash"), textColumn("GmWt_Desc1", 20),
            flagColumn("Recipe"), numberColumn("GmWt_1"), numberColumn("Energ_Kcal"), textColumn("Shrt_Desc", 20),
            numberColumn("Iron")});
    EXPECT_THAT(captions(), ElementsAre("Zinc", "Ash", "Energ_Kcal", "Iron"));
    type(value(0), "1.5");
    type(value(3), "4");
    QTest::mouseClick(&checkBox("chkIngredient"), Qt::LeftButton, Qt::NoModifier, {5, 5});
    type(field("txtDesc"), "Tea");
    click("cmdSave");
    EXPECT_THAT(diary->addedFoods(),
                ElementsAre("1 | 1.5 | null | null | null | 1000 | 0 | null | 0 | null | 0 | Tea | 4"));
}

TEST_F(AddIngredient, ShowsAColumnNameAsItIs)
{
    open({"Lut+Zea", "Vit A & D", "<b>Fat</b>"});
    EXPECT_THAT(captions(), ElementsAre("Lut+Zea", "Vit A & D", "<b>Fat</b>"));
    EXPECT_EQ(label(1).buddy(), nullptr) << "its & would be taken for a short cut's";
    EXPECT_EQ(label(2).textFormat(), Qt::PlainText);
}

TEST_F(AddIngredient, PutsFifteenRowsBelowEachOther)
{
    open(numberedNutrients(15));
    for (int i = 0; i < 15; ++i) {
        EXPECT_EQ(label(i).x(), label(0).x()) << i;
        EXPECT_EQ(label(i).y() - label(0).y(), i * label(0).height() * 3 / 2) << i;
        EXPECT_EQ(value(i).x(), value(0).x()) << i;
        EXPECT_EQ(value(i).y(), label(i).y()) << i;
        EXPECT_TRUE(value(i).isVisible() && label(i).isVisible()) << i;
    }
}

TEST_F(AddIngredient, PutsAllRowsFromTheSixteenthIntoASecondColumnThatGrowsDownwards)
{
    open(numberedNutrients(46)); // more than twice fifteen
    EXPECT_THAT(captions(), SizeIs(46));
    const QRect last = value(14).geometry();
    for (int i = 15; i < 46; ++i) {
        EXPECT_EQ(label(i).x(), label(15).x()) << i;
        EXPECT_GT(label(i).x(), last.right()) << i;
        EXPECT_EQ(label(i).y() - label(0).y(), (i - 15) * label(0).height() * 3 / 2) << i;
        EXPECT_EQ(value(i).x(), value(15).x()) << i;
        EXPECT_EQ(value(i).y(), label(i).y()) << i;
    }
    EXPECT_GT(value(45).y(), last.bottom());
}

TEST_F(AddIngredient, LeavesRoomBetweenRows)
{
    open(numberedNutrients(46));
    for (int i = 1; i < 46; ++i) {
        if (i != 15) {
            EXPECT_GT(value(i).y(), value(i - 1).geometry().bottom()) << i;
        }
        EXPECT_GT(value(i).x(), label(i).geometry().right()) << i;
        EXPECT_GE(label(i).width(), label(i).sizeHint().width()) << "the name is cut at " << i;
    }
}

TEST_F(AddIngredient, FitsTheScreenWithItsButtonsInSight)
{
    open(numberedNutrients(200));
    EXPECT_LE(form->height(), form->screen()->availableSize().height());
    EXPECT_LE(form->width(), form->screen()->availableSize().width());
    for (const char* name : {"cmdOK", "cmdSave", "cmdCancel"}) {
        EXPECT_TRUE(form->rect().contains(button(name).geometry())) << name;
    }
    EXPECT_TRUE(isInSight(value(0)));
    EXPECT_FALSE(isInSight(value(199)));

    form->resize(form->width(), 300);
    handlePostedEvents();
    EXPECT_TRUE(form->rect().contains(button("cmdOK").geometry()));
}

TEST_F(AddIngredient, NeedsNoScrollingSideways)
{
    open(numberedNutrients(46));
    EXPECT_FALSE(rows().horizontalScrollBar()->isVisible());
}

TEST_F(AddIngredient, TabVisitsTheControlsAndWalksTheRowsInOrder)
{
    open(numberedNutrients(17));
    std::vector<std::string> visited;
    for (int step = 0; step < 24; ++step) {
        visited.push_back(focused());
        press(Qt::Key_Tab);
    }
    std::vector<std::string> expected{"txtDesc", "chkRecipe", "chkIngredient"};
    for (int i = 0; i < 17; ++i) {
        expected.push_back("txtNutrientValue(" + std::to_string(i) + ")");
    }
    for (const char* name : {"cmdOK", "cmdSave", "cmdCancel", "txtDesc"}) {
        expected.emplace_back(name);
    }
    EXPECT_EQ(visited, expected);
}

TEST_F(AddIngredient, ScrollsABoxThatGetsTheFocusIntoSight)
{
    open(numberedNutrients(60));
    button("cmdOK").setFocus();
    press(Qt::Key_Backtab);
    EXPECT_EQ(focused(), "txtNutrientValue(59)");
    EXPECT_TRUE(isInSight(value(59)));
    checkBox("chkIngredient").setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "txtNutrientValue(0)");
    for (int i = 0; i < 60; ++i) {
        EXPECT_TRUE(isInSight(value(i))) << i;
        press(Qt::Key_Tab);
    }
}

TEST_F(AddIngredient, ScrollsAWrongBoxBackIntoSight)
{
    open(numberedNutrients(60));
    type(value(0), "x");
    rows().verticalScrollBar()->setValue(rows().verticalScrollBar()->maximum());
    ASSERT_FALSE(isInSight(value(0)));
    QTest::mouseClick(&value(59), Qt::LeftButton);
    EXPECT_TRUE(value(0).hasFocus());
    EXPECT_TRUE(isInSight(value(0)));
}

TEST_F(AddIngredient, TypingIntoABoxReplacesItsZero)
{
    open();
    QTest::mouseClick(&value(1), Qt::LeftButton, Qt::NoModifier, {2, 5});
    QTest::keyClicks(&value(1), QStringLiteral("5"));
    press(Qt::Key_Tab);
    QTest::keyClicks(&value(2), QStringLiteral("7"));
    EXPECT_EQ(value(1).text().toStdString(), "5");
    EXPECT_EQ(value(2).text().toStdString(), "7");
}

TEST_F(AddIngredient, AValueThatIsNoNumberTakesTheFocusBackSilently)
{
    open();
    for (const char* wrong : {"five", "", "5.6.7"}) {
        type(value(1), wrong);
        press(Qt::Key_Tab);
        EXPECT_TRUE(value(1).hasFocus()) << wrong;
        QTest::mouseClick(&value(2), Qt::LeftButton);
        EXPECT_TRUE(value(1).hasFocus()) << wrong;
        QTest::mouseClick(&field("txtDesc"), Qt::LeftButton);
        EXPECT_TRUE(value(1).hasFocus()) << wrong;
    }
    QTest::keyClicks(&value(1), QStringLiteral("5.6\t"));
    EXPECT_TRUE(value(2).hasFocus());
}

TEST_F(AddIngredient, TheDescriptionIsNotChecked)
{
    open();
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "chkRecipe");
    click("cmdOK");
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | null | 0 | 0 | 0" + behind(" | 0 | 0")))
        << "an empty text shows as an open value";
}

TEST_F(AddIngredient, TakesNoMoreOfTheDescriptionThanItsColumnHolds)
{
    open();
    type(field("txtDesc"), "12345678901234567890x");
    EXPECT_EQ(field("txtDesc").text().toStdString(), "12345678901234567890");
}

TEST_F(AddIngredient, TakesAnyDescriptionWhereItsColumnHasNoLimit)
{
    openOn({keyColumn(), {"Shrt_Desc", jet::ColumnType::Memo}, numberColumn("Iron")});
    const QString description(1000, u'x');
    field("txtDesc").insert(description);
    click("cmdOK");
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | " + description.toStdString() + " | 0"));
}

TEST_F(AddIngredient, OkStoresTheFoodAndCloses)
{
    open();
    type(field("txtDesc"), "Stew");
    QTest::mouseClick(&checkBox("chkRecipe"), Qt::LeftButton, Qt::NoModifier, {5, 5});
    type(value(0), "120.5");
    type(value(2), "0.25");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Accepted);
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | Stew | 120.5 | 0 | 0.25" + behind(" | 1 | 0")));
}

TEST_F(AddIngredient, KeysAloneStoreAFood)
{
    open();
    QTest::keyClicks(&field("txtDesc"), QStringLiteral("Salt\t\t")); // over the recipe
    press(Qt::Key_Space);                                            // an ingredient
    press(Qt::Key_Tab);
    for (const char* typed : {"0", "0.5", "3"}) {
        QTest::keyClicks(form->focusWidget(), QLatin1String(typed));
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(focused(), "cmdOK");
    press(Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | Salt | 0 | 0.5 | 3" + behind(" | 0 | 1")));
}

TEST_F(AddIngredient, EnterInABoxStoresNothing)
{
    open();
    for (QLineEdit* box : {&field("txtDesc"), &value(0), &value(2)}) {
        type(*box, "1");
        press(Qt::Key_Return);
        press(Qt::Key_Enter);
    }
    EXPECT_TRUE(form->isVisible());
    EXPECT_THAT(diary->addedFoods(), IsEmpty());
}

TEST_F(AddIngredient, SaveToDbTwiceAddsTwoFoodsWithTheNextTwoNumbersBelow)
{
    open();
    type(field("txtDesc"), "Stew");
    QTest::mouseClick(&checkBox("chkIngredient"), Qt::LeftButton, Qt::NoModifier, {5, 5});
    type(value(1), "7");
    click("cmdSave");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(field("txtDesc").text().toStdString(), "Stew");
    EXPECT_TRUE(checkBox("chkIngredient").isChecked());
    EXPECT_EQ(value(1).text().toStdString(), "7");

    type(value(1), "8");
    click("cmdSave");
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | Stew | 0 | 7 | 0" + behind(" | 0 | 1"),
                                                 "999 | Stew | 0 | 8 | 0" + behind(" | 0 | 1")));
    click("cmdOK");
    EXPECT_THAT(diary->addedFoods(), SizeIs(3)) << "OK stores, whatever was stored before";
}

TEST_F(AddIngredient, ADoubleClickOnOkAddsOneFood)
{
    open();
    click("cmdOK");
    QTest::mouseDClick(&button("cmdOK"), Qt::LeftButton);
    QTest::mouseRelease(&button("cmdOK"), Qt::LeftButton);
    EXPECT_THAT(diary->addedFoods(), SizeIs(1));
}

TEST_F(AddIngredient, CancelEscAndClosingStoreNothing)
{
    open();
    type(field("txtDesc"), "Stew");
    click("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    reopen();
    type(value(0), "5");
    press(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    reopen();
    type(value(0), "not a number");
    click("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    reopen();
    type(value(0), "not a number");
    form->close();
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(diary->addedFoods(), IsEmpty());
}

TEST_F(AddIngredient, AnEmptyBoxIsSavedAsZeroAndShowsIt)
{
    open();
    type(value(0), "12");
    type(value(1), "");
    click("cmdSave"); // the focus never leaves the empty box
    EXPECT_EQ(value(1).text().toStdString(), "0");
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | null | 12 | 0 | 0" + behind(" | 0 | 0")));
}

TEST_F(AddIngredient, AWrongValueInTheFocusedBoxEndsTheSaveWithAnErrorAndStoresNothing)
{
    open();
    type(field("txtDesc"), "Stew");
    type(value(1), "seven");
    expectError("Run-time error '13':\n\nType mismatch\n\n'Carbohydrt' takes no such value: type a number. Nothing was "
                "stored.");
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(field("txtDesc").text().toStdString(), "Stew");
    EXPECT_EQ(value(1).text().toStdString(), "seven");
    EXPECT_THAT(diary->addedFoods(), IsEmpty());

    type(value(1), "7");
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | Stew | 0 | 7 | 0" + behind(" | 0 | 0")));
}

TEST_F(AddIngredient, TakesValuesWithTheDecimalSignOfTheLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    open();
    type(value(0), "120,5");
    click("cmdOK");
    QLocale::setDefault(before);
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | null | 120.5 | 0 | 0" + behind(" | 0 | 0")));
}

TEST_F(AddIngredient, ADiaryThatIsAwayStoresNothingAndTheFormStaysUsable)
{
    open();
    type(field("txtDesc"), "Stew");
    ASSERT_TRUE(QFile::rename(diary->path(), diary->path() + ".away"));
    EXPECT_CALL(dialogs, showError(&*form, testing::Truly([](const QString& text) {
                    return text.startsWith("Run-time error '3024':");
                }),
                                   _));
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    ASSERT_TRUE(QFile::rename(diary->path() + ".away", diary->path()));
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(diary->addedFoods(), SizeIs(1));
}

TEST_F(AddIngredient, ATableWithoutNutrientsHasNoRows)
{
    open({});
    EXPECT_THAT(captions(), IsEmpty());
    type(field("txtDesc"), "Water");
    click("cmdOK");
    EXPECT_THAT(diary->addedFoods(), ElementsAre("1000 | Water" + behind(" | 0 | 0")));
}

TEST_F(AddIngredient, OpensOverTheMiddleOfItsOwner)
{
    open(numberedNutrients(20));
    form->hide();
    owner.setGeometry(50, 40, 700, 500);
    owner.show();
    testing_windows::whenModal([&](QWidget& modal) {
        EXPECT_EQ(&modal, &*form);
        EXPECT_NEAR(modal.geometry().center().x(), owner.geometry().center().x(), 1);
        EXPECT_TRUE(button("cmdCancel").isVisible());
    });
    controls::ShowCentredModal(*form, owner);
    EXPECT_THAT(diary->addedFoods(), IsEmpty());
}

} // namespace
} // namespace meals
