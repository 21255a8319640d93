// The insulin caption, and the quantity that fits the insulin, by keys and clicks.
#include "meals/meal_builder.h"
#include "runtime/locale_in_force.h"

#include <QContextMenuEvent>
#include <QMenu>

namespace meals {
namespace {

using testing::ElementsAre;
using testing::Return;
using testing::StartsWith;
using testing_windows::child;
using testing_windows::handlePostedEvents;

constexpr int kFirstFood = 2; ///< its line

class InsulinCaptionShown : public MealBuilder
{
protected:
    std::string caption() { return label("lblInsulinDosage").text().toStdString(); }
    double captionWidth()
    {
        return QFontMetricsF(label("lblInsulinDosage").font()).horizontalAdvance(label("lblInsulinDosage").text());
    }
};

TEST_F(InsulinCaptionShown, TellsTheCarbohydrateToAUnit)
{
    chooseType("Lunch");
    add("rice", "150"); // 30 g
    type("txtInsulinDosage", "4");
    EXPECT_THAT(caption(), StartsWith("Insulin 7.50 gms/unit."));
}

TEST_F(InsulinCaptionShown, WithoutADoseAFoodOrATypeTellsNothing)
{
    type("txtInsulinDosage", "4"); // no food
    EXPECT_THAT(caption(), StartsWith("Insulin ..."));
    add("rice", "150");
    type("txtInsulinDosage", "5"); // no type
    EXPECT_THAT(caption(), StartsWith("Insulin ..."));
    chooseType("Lunch");
    type("txtInsulinDosage", "0");
    EXPECT_THAT(caption(), StartsWith("Insulin ..."));
}

TEST_F(InsulinCaptionShown, StaysAsItIsWhenTheDoseIsNoNumber)
{
    const std::string before = caption();
    type("txtInsulinDosage", "x");
    EXPECT_EQ(caption(), before);
}

TEST_F(InsulinCaptionShown, OfASnackGetsADotWithEveryChange)
{
    chooseType("Snack");
    add("rice", "150");
    const std::string before = caption();
    type("txtInsulinDosage", "1");
    EXPECT_EQ(caption(), before + ".");
    typeOn("2");
    EXPECT_EQ(caption(), before + "..");
}

TEST_F(InsulinCaptionShown, NeverShrinks)
{
    chooseType("Lunch");
    add("rice", "150");
    double width = captionWidth();
    for (const char* dose : {"1", "11", "0", "x", "2.5", "", "7"}) {
        type("txtInsulinDosage", dose);
        EXPECT_GE(captionWidth(), width) << dose;
        width = captionWidth();
    }
}

TEST_F(InsulinCaptionShown, LeavesTheWindowItsSize)
{
    chooseType("Snack");
    add("rice", "150");
    const int width = form->minimumSizeHint().width();
    const int place = field("txtInsulinDosage").x();
    type("txtInsulinDosage", "1");
    for (int digit = 0; digit < 60; ++digit) {
        press(Qt::Key_Backspace);
        typeOn("1");
    }
    handlePostedEvents();
    EXPECT_EQ(form->minimumSizeHint().width(), width);
    EXPECT_EQ(field("txtInsulinDosage").x(), place);
}

class GoalSeek : public MealBuilder
{
protected:
    QMenu& menu() { return child<QMenu>(*form, "mnuPopUp"); }
    /// Button and menu event, as a mouse sends them.
    void rightClick(int line)
    {
        QWidget* viewport = list("lstMeal").viewport();
        const QPoint place = placeOf("lstMeal", line);
        QTest::mousePress(viewport, Qt::RightButton, {}, place);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
        QCoreApplication::sendEvent(viewport, &event);
        QTest::mouseRelease(viewport, Qt::RightButton, {}, place);
    }
    void chooseFromMenu()
    {
        QTest::mouseClick(&menu(), Qt::LeftButton, {}, menu().actionGeometry(menu().actions().first()).center());
    }
    void expectQuestion(const char* answer)
    {
        EXPECT_CALL(dialogs, askText(&*form, QString("Please enter target ratio to adjust this quantity for?"),
                                     QString("11.55")))
            .WillOnce(Return(QString::fromLatin1(answer)));
    }
};

TEST_F(GoalSeek, TheMenuOpensOnAFoodByTheRightButton)
{
    add("rice", "150");
    add("butter", "10");
    rightClick(kFirstFood + 1);
    EXPECT_TRUE(menu().isVisible());
    EXPECT_THAT(list("lstMeal").selectedLines(), ElementsAre(kFirstFood + 1)) << "the food below the mouse";
    EXPECT_EQ(menu().actions().first()->objectName().toStdString(), "mnuCarbGoalSeek");
    menu().close();
}

TEST_F(GoalSeek, TheMenuOpensOnNoOtherLine)
{
    add("rice", "150");
    for (const int line : {0, 1, 3, 4, 5}) {
        rightClick(line);
        EXPECT_FALSE(menu().isVisible()) << line;
    }
}

TEST_F(GoalSeek, TheMenuOpensByKeysToo)
{
    add("rice", "150");
    clickLine("lstMeal", kFirstFood);
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(menu().isVisible());
    menu().close();

    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(&list("lstMeal"), &menuKey);
    EXPECT_TRUE(menu().isVisible());
    menu().close();

    clickLine("lstMeal", 0);
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_FALSE(menu().isVisible());
}

TEST_F(GoalSeek, FitsTheFoodToTheDose)
{
    add("cookies", "80"); // 40 g of carbohydrate
    type("txtInsulinDosage", "4");
    expectQuestion("11.55");
    rightClick(kFirstFood);
    chooseFromMenu();
    // 4 x 11.55 = 46.2 g, 6.2 g more: 12.4 g of a food that is one half carbohydrate
    EXPECT_THAT(foodLines(), ElementsAre("92.4\tOatmeal cookies\t46.2\t9.2\t5.5"));
    EXPECT_EQ(lines("lstMeal")[4], "Total grams\t46.2\t9.2\t5.5");
    EXPECT_THAT(list("lstMeal").selectedLines(), ElementsAre(kFirstFood));
}

TEST_F(GoalSeek, TheButtonDoesTheSame)
{
    add("rice", "100");   // 20 g
    add("cookies", "40"); // 20 g
    type("txtInsulinDosage", "4");
    clickLine("lstMeal", kFirstFood);
    expectQuestion("12.5");
    click("cmdOptimise");
    // 50 g, 10 g more: 50 g of rice
    EXPECT_THAT(foodLines(), ElementsAre("150.0\tRice,white,ckd\t30.0\t1.5\t3.0", testing::_));
}

TEST_F(GoalSeek, WithNoFoodSelectedNothingIsAsked)
{
    click("cmdOptimise");
    add("rice", "100");
    type("txtInsulinDosage", "4");
    for (const int line : {0, 1, 3, 4, 5}) {
        clickLine("lstMeal", line);
        click("cmdOptimise");
    }
}

TEST_F(GoalSeek, ARatioThatIsNoNumberIsRefusedAndSoIsCancelling)
{
    add("rice", "100");
    type("txtInsulinDosage", "4");
    clickLine("lstMeal", kFirstFood);
    for (const char* answer : {"much", ""}) {
        expectQuestion(answer);
        EXPECT_CALL(dialogs, showError(&*form, QString("Ratio must be numeric"), QString("Quillon")));
        click("cmdOptimise");
    }
    EXPECT_THAT(foodLines(), ElementsAre("100.0\tRice,white,ckd\t20.0\t1.0\t2.0"));
}

TEST_F(GoalSeek, AFoodWithoutCarbohydrateIsRefused)
{
    add("eggs", "50");
    type("txtInsulinDosage", "4");
    clickLine("lstMeal", kFirstFood);
    expectQuestion("11.55");
    expectMessage("Ingredients with no carbohydrate can not be used", "Quillon - Carb/Insulin Optimise");
    click("cmdOptimise");
    EXPECT_THAT(foodLines(), ElementsAre("50.0\tEggs,boiled\t0.0\t5.0\t6.5"));
}

TEST_F(GoalSeek, ADoseThatIsNoNumberIsAnErrorAfterTheQuestion)
{
    add("rice", "100");
    type("txtInsulinDosage", "some");
    clickLine("lstMeal", kFirstFood);
    expectQuestion("11.55");
    expectError("Run-time error '13':\n\nType mismatch\n\nThe insulin dose is not a number: type it first");
    click("cmdOptimise");
    EXPECT_THAT(foodLines(), ElementsAre("100.0\tRice,white,ckd\t20.0\t1.0\t2.0"));
}

TEST_F(GoalSeek, ADoseOfZeroTakesAllCarbohydrateOutOfTheMeal)
{
    add("rice", "100");   // 20 g
    add("cookies", "40"); // 20 g
    type("txtInsulinDosage", "0");
    clickLine("lstMeal", kFirstFood);
    expectQuestion("11.55");
    click("cmdOptimise");
    // 40 g less are 200 g of rice
    EXPECT_THAT(foodLines(), ElementsAre("-100.0\tRice,white,ckd\t-20.0\t-1.0\t-2.0", testing::_));
}

TEST_F(GoalSeek, AMealAtTheRatioKeepsItsQuantity)
{
    add("rice", "150"); // 30 g
    type("txtInsulinDosage", "4");
    clickLine("lstMeal", kFirstFood);
    expectQuestion("7.5");
    click("cmdOptimise");
    EXPECT_THAT(foodLines(), ElementsAre("150.0\tRice,white,ckd\t30.0\t1.5\t3.0"));
}

TEST_F(GoalSeek, GoesWithTheDecimalSignOfTheLocale)
{
    const LocaleInForce german(kGerman);
    open();
    add("cookies", "80");
    EXPECT_THAT(foodLines(), ElementsAre("80,0\tOatmeal cookies\t40,0\t8,0\t4,8"));
    type("txtInsulinDosage", "4");
    clickLine("lstMeal", kFirstFood);
    EXPECT_CALL(dialogs, askText(&*form, testing::_, QString("11,55"))).WillOnce(Return(QStringLiteral("11,55")));
    click("cmdOptimise");
    EXPECT_THAT(foodLines(), ElementsAre("92,4\tOatmeal cookies\t46,2\t9,2\t5,5"));
}

} // namespace
} // namespace meals
