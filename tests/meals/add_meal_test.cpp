// Composing a meal by keys and clicks: finding foods, their quantities, the totals.
#include "meals/meal_builder.h"

#include "support/diary_content.h"

#include <QFile>

namespace meals {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing_windows::handlePostedEvents;

using AddMeal = MealBuilder;

// Lines of a meal of 150 g of rice: 30 g carbohydrate, 1.5 g fat, 3 g protein, 150 kCal, of which 120, 13.5 and 12.
constexpr const char* kHeading = "Qty gms\tFood Description\tCarb\tFat\tProtein";
constexpr const char* kRice150 = "150.0\tRice,white,ckd\t30.0\t1.5\t3.0";
constexpr const char* kRice150Grams = "Total grams\t30.0\t1.5\t3.0";
constexpr const char* kRice150Energy = "Total kCal 150.0 Cholestrol - 0.0\t80%\t9%\t8%";
constexpr int kFirstFood = 2; ///< its line

// --- At the start ---

TEST_F(AddMeal, OpensWithAnEmptyMealTheDayAndTheTime)
{
    EXPECT_THAT(lines("lstMeal"), ElementsAre(kHeading, "", "Total\t\t00.0\t00.0\t00.0"));
    EXPECT_EQ(text("txtDate"), "05/03/2024");
    EXPECT_EQ(text("txtTime"), "12:30");
    EXPECT_EQ(cboMealType().currentIndex(), -1);
    EXPECT_EQ(text("txtInsulinDosage"), "");
    EXPECT_THAT(lines("lstSearch"), IsEmpty());
    EXPECT_TRUE(field("txtSearch").hasFocus());
}

TEST_F(AddMeal, OffersTheFourTypesWithTheirCodes)
{
    std::vector<std::string> items;
    for (int item = 0; item < cboMealType().count(); ++item) {
        items.push_back(cboMealType().itemText(item).toStdString() + " " +
                        cboMealType().itemData(item).toString().toStdString());
    }
    EXPECT_THAT(items, ElementsAre("Breakfast 1", "Lunch 2", "Dinner 3", "Snack 4"));
    EXPECT_FALSE(cboMealType().isEditable());
}

TEST_F(AddMeal, TheListHasItsTabStops)
{
    const QList<int>& stops = dynamic_cast<controls::ReportListModel&>(*list("lstMeal").model()).tabStops();
    EXPECT_THAT(stops, ElementsAre(30, 200, 230, 260));
}

TEST_F(AddMeal, TabVisitsTheControlsInTheirOrder)
{
    field("txtSearch").setText(QStringLiteral("rice")); // the search button is enabled
    std::vector<std::string> visited;
    for (int step = 0; step < 20; ++step) {
        visited.push_back(form->focusWidget()->objectName().toStdString());
        press(Qt::Key_Tab);
    }
    EXPECT_THAT(visited, ElementsAre("txtSearch", "cmdSearch", "lstSearch", "txtQuantity", "cmdAdd", "cmdAddIngredient",
                                     "lstMeal", "cmdOptimise", "cmdPrintMeal", "txtDate", "cmdDate", "txtTime",
                                     "cboMealType", "txtInsulinDosage", "cmdGetOldMeal", "cmdModifyOldMeal", "cmdOK",
                                     "cmdCancel", "cmdSave", "txtSearch"));
}

TEST_F(AddMeal, FitsASmallScreen)
{
    EXPECT_LE(form->minimumSizeHint().width(), 780);
    EXPECT_LE(form->minimumSizeHint().height(), 560);
}

// --- Finding foods ---

TEST_F(AddMeal, TheSearchButtonIsEnabledFromTwoCharacters)
{
    EXPECT_FALSE(button("cmdSearch").isEnabled());
    typeOn("r");
    EXPECT_FALSE(button("cmdSearch").isEnabled());
    typeOn("i");
    EXPECT_TRUE(button("cmdSearch").isEnabled());
    press(Qt::Key_Backspace);
    EXPECT_FALSE(button("cmdSearch").isEnabled());
}

TEST_F(AddMeal, ClickAndEnterSearch)
{
    type("txtSearch", "rice");
    click("cmdSearch");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Rice,white,ckd"));
    search("butter");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Butter,with salt"));
    EXPECT_TRUE(form->isVisible()) << "Enter in a field does not mean OK";
}

TEST_F(AddMeal, ResultsStandInTheReverseOfTheTable)
{
    search("a");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Water,tap", "Oatmeal cookies", "Butter,with salt"));
}

TEST_F(AddMeal, WildcardsAreTakenAsTyped)
{
    search("t*r"); // oatmeal cookies have no r
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Water,tap", "Butter,with salt"));
    search("r?ce");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Rice,white,ckd"));
}

TEST_F(AddMeal, ASearchReplacesTheResults)
{
    search("rice");
    search("zzz");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("No Results for - zzz"));
    search("rice");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Rice,white,ckd"));
}

TEST_F(AddMeal, TheLineOfNoResultsCannotBeAdded)
{
    search("zzz");
    clickLine("lstSearch", 0);
    typeOn("100");
    expectError("Run-time error '3021':\n\nNo current record.");
    press(Qt::Key_Return);
    EXPECT_THAT(foodLines(), IsEmpty());
    EXPECT_TRUE(field("txtQuantity").hasFocus());
}

TEST_F(AddMeal, TheLineOfNoResultsDoesNotStandForAFoodOfTheNumberZero)
{
    reports::addFood(foods.path(), 0, {"CAKE", 300, 50, 10, 5});
    search("zzz");
    clickLine("lstSearch", 0);
    expectError("Run-time error '3021':\n\nNo current record.\n\nNo food is chosen");
    click("cmdAdd");
    EXPECT_THAT(foodLines(), IsEmpty());
}

TEST_F(AddMeal, WithoutAChosenFoodNothingIsAdded)
{
    const char* error = "Run-time error '9':\n\nSubscript out of range\n\nNo food is chosen: search for one and choose "
                        "it in the list. Nothing was added.";
    type("txtQuantity", "100");
    expectError(error);
    click("cmdAdd");
    search("rice"); // finds one food, which is not chosen by itself
    expectError(error);
    click("cmdAdd");
    clickLine("lstSearch", 0);
    search("butter"); // the choice among the results before is gone
    expectError(error);
    click("cmdAdd");
    EXPECT_THAT(lines("lstMeal"), SizeIs(3));
}

TEST_F(AddMeal, AnApostropheGivesAnErrorBoxAndTheResultsStay)
{
    search("rice");
    type("txtSearch", "o'brien");
    expectError("Run-time error '3075':");
    press(Qt::Key_Return);
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Rice,white,ckd"));
}

TEST_F(AddMeal, AChosenFoodLeadsToTheQuantitySelectedWhole)
{
    type("txtQuantity", "75");
    search("rice");
    clickLine("lstSearch", 0);
    EXPECT_TRUE(field("txtQuantity").hasFocus());
    EXPECT_EQ(field("txtQuantity").selectedText().toStdString(), "75");
    EXPECT_THAT(list("lstSearch").selectedLines(), ElementsAre(0));
}

TEST_F(AddMeal, ADoubleClickOnAResultAddsNothing)
{
    search("rice");
    doubleClickLine("lstSearch", 0);
    EXPECT_THAT(lines("lstMeal"), SizeIs(3));
}

TEST_F(AddMeal, ResultsAreChosenByKeysToo)
{
    search("e");
    press(Qt::Key_Tab); // to the list: the button is disabled
    press(Qt::Key_Down);
    EXPECT_THAT(list("lstSearch").selectedLines(), ElementsAre(0));
    press(Qt::Key_Down);
    EXPECT_THAT(list("lstSearch").selectedLines(), ElementsAre(1));
    press(Qt::Key_Return);
    EXPECT_TRUE(field("txtQuantity").hasFocus());
    typeOn("100");
    press(Qt::Key_Return);
    EXPECT_THAT(foodLines(), SizeIs(1));
}

// --- Adding foods ---

TEST_F(AddMeal, AFoodShowsItsPartOfTheValuesFor100Grams)
{
    add("rice", "150");
    EXPECT_THAT(lines("lstMeal"), ElementsAre(kHeading, "", kRice150, "", kRice150Grams, kRice150Energy));
}

TEST_F(AddMeal, EnterInTheQuantityAddsAndGoesBackToTheSearch)
{
    add("rice", "150");
    EXPECT_TRUE(field("txtSearch").hasFocus());
    EXPECT_EQ(field("txtSearch").selectedText().toStdString(), "rice");
    EXPECT_TRUE(form->isVisible());
}

TEST_F(AddMeal, TheButtonAddsToo)
{
    search("rice");
    clickLine("lstSearch", 0);
    typeOn("150");
    click("cmdAdd");
    EXPECT_THAT(foodLines(), ElementsAre(kRice150));
}

TEST_F(AddMeal, ADescriptionIsShownInSmallLettersButForItsFirst)
{
    search("BUTTER");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("Butter,with salt"));
    add("butter", "10");
    EXPECT_THAT(foodLines(), ElementsAre("10.0\tButter,with salt\t0.0\t8.1\t0.1"));
}

TEST_F(AddMeal, FoodsStandInTheOrderAddedAndAreSummed)
{
    add("rice", "150");
    add("butter", "10");
    // 30 + 0.006, 1.5 + 8.111, 3 + 0.085; 150 + 71.7 kCal; the rice's cholesterol is not known and counts as 0.
    EXPECT_THAT(lines("lstMeal"),
                ElementsAre(kHeading, "", kRice150, "10.0\tButter,with salt\t0.0\t8.1\t0.1", "",
                            "Total grams\t30.0\t9.6\t3.1", "Total kCal 221.7 Cholestrol - 21.5\t54%\t39%\t6%"));
}

TEST_F(AddMeal, AFoodWithoutKnownCholesterolAddsNone)
{
    add("eggs", "50");
    add("rice", "150");
    // 50 g of eggs: 5 g fat, 6.5 g protein, 75 kCal, 200 mg
    EXPECT_EQ(lines("lstMeal").back(), "Total kCal 225.0 Cholestrol - 200.0\t53%\t26%\t17%");
}

TEST_F(AddMeal, AMealWithoutEnergyShowsNoShares)
{
    add("water", "200");
    EXPECT_EQ(lines("lstMeal").back(), "Total kCal 0.0 Cholestrol - 0.0\t0%\t0%\t0%");
}

TEST_F(AddMeal, ALongDescriptionMovesNoFigureFromItsPlace)
{
    controls::ReportListView& meal = list("lstMeal");
    const QFontMetricsF metrics(meal.font());
    const QString line = QStringLiteral("200.0\t") + QString(60, u'm') + QStringLiteral("\t30.0\t11.2\t3.8");
    const controls::ColumnLayout drawn = layOutColumns(line, meal.tabStops(), metrics, meal.cutColumn());
    ASSERT_EQ(drawn.columns.size(), 5);
    for (int column = 1; column < 5; ++column) {
        EXPECT_EQ(drawn.columns[column].x, meal.tabStops().places().at(column - 1)) << column;
    }
}

// --- Quantities ---

TEST_F(AddMeal, ClearingTheQuantityPutsAZeroThere)
{
    type("txtQuantity", "150");
    type("txtQuantity", "");
    EXPECT_EQ(text("txtQuantity"), "0");
    typeOn("25");
    EXPECT_EQ(text("txtQuantity"), "25") << "typed over the zero";
}

TEST_F(AddMeal, AQuantityThatIsNoNumberBecomesZero)
{
    for (const char* wrong : {"x", "-", "15x", "1.5."}) {
        type("txtQuantity", wrong);
        EXPECT_EQ(text("txtQuantity"), "0") << wrong;
    }
    add("rice", "150");
    clickLine("lstMeal", kFirstFood);
    type("txtQuantity", "x");
    EXPECT_THAT(foodLines(), ElementsAre("0.0\tRice,white,ckd\t0.0\t0.0\t0.0"));
}

TEST_F(AddMeal, TypingChangesTheSelectedFoodAgainAndAgain)
{
    add("rice", "150");
    add("butter", "10");
    clickLine("lstMeal", kFirstFood);
    type("txtQuantity", "2");
    EXPECT_THAT(foodLines(), ElementsAre("2.0\tRice,white,ckd\t0.4\t0.0\t0.0", testing::_));
    typeOn("00");
    EXPECT_THAT(foodLines(), ElementsAre("200.0\tRice,white,ckd\t40.0\t2.0\t4.0", testing::_));
    EXPECT_THAT(list("lstMeal").selectedLines(), ElementsAre(kFirstFood));
    // 40 + 0.006, 2 + 8.111, 4 + 0.085; 200 + 71.7 kCal
    EXPECT_EQ(lines("lstMeal")[5], "Total grams\t40.0\t10.1\t4.1");
    EXPECT_EQ(lines("lstMeal")[6], "Total kCal 271.7 Cholestrol - 21.5\t59%\t33%\t6%");
    clickLine("lstMeal", kFirstFood + 1);
    type("txtQuantity", "20");
    EXPECT_THAT(foodLines(),
                ElementsAre("200.0\tRice,white,ckd\t40.0\t2.0\t4.0", "20.0\tButter,with salt\t0.0\t16.2\t0.2"));
}

TEST_F(AddMeal, AQuantityOfZeroKeepsTheFood)
{
    add("rice", "150");
    clickLine("lstMeal", kFirstFood);
    type("txtQuantity", "0");
    EXPECT_THAT(foodLines(), ElementsAre("0.0\tRice,white,ckd\t0.0\t0.0\t0.0"));
}

TEST_F(AddMeal, LeavingTheQuantitySelectsTheLastLineSoThatLaterTypingChangesNothing)
{
    add("rice", "150");
    clickLine("lstMeal", kFirstFood);
    type("txtQuantity", "200");
    press(Qt::Key_Tab);
    EXPECT_THAT(list("lstMeal").selectedLines(), ElementsAre(5));
    type("txtQuantity", "300");
    EXPECT_THAT(foodLines(), ElementsAre("200.0\tRice,white,ckd\t40.0\t2.0\t4.0"));
}

TEST_F(AddMeal, TheQuantityOfTheNextFoodChangesNoneThatIsThere)
{
    add("rice", "150");
    add("butter", "10"); // typed while the rice is the last food
    add("eggs", "50");
    EXPECT_THAT(foodLines(),
                ElementsAre(kRice150, "10.0\tButter,with salt\t0.0\t8.1\t0.1", "50.0\tEggs,boiled\t0.0\t5.0\t6.5"));
}

TEST_F(AddMeal, AddingByTheButtonLeavesNoFoodSelectedThatWasNot)
{
    add("rice", "150");
    search("butter");
    clickLine("lstSearch", 0);
    typeOn("10");
    click("cmdAdd"); // leaves the quantity, which selects the last line; that one is built anew
    EXPECT_THAT(list("lstMeal").selectedLines(), IsEmpty());
    type("txtQuantity", "300");
    EXPECT_THAT(foodLines(), ElementsAre(kRice150, "10.0\tButter,with salt\t0.0\t8.1\t0.1"));
}

TEST_F(AddMeal, ASelectedFoodStaysSelectedWhenAnotherIsAdded)
{
    add("rice", "150");
    search("butter");
    clickLine("lstSearch", 0);
    press(Qt::Key_Tab);
    clickLine("lstMeal", kFirstFood);
    click("cmdAdd");
    EXPECT_THAT(list("lstMeal").selectedLines(), ElementsAre(kFirstFood));
    EXPECT_THAT(foodLines(), SizeIs(2));
}

TEST_F(AddMeal, TypingWithTheHeadingOrATotalLineSelectedChangesNothing)
{
    add("rice", "150");
    const std::vector<std::string> before = lines("lstMeal");
    for (const int line : {0, 4, 5}) {
        clickLine("lstMeal", line);
        type("txtQuantity", "77");
        EXPECT_EQ(lines("lstMeal"), before) << line;
    }
}

TEST_F(AddMeal, TypingWithAnEmptyLineSelectedIsAnError)
{
    add("rice", "150");
    for (const int line : {1, 3}) {
        clickLine("lstMeal", line);
        expectError("Run-time error '9':\n\nSubscript out of range");
        type("txtQuantity", line == 1 ? "7" : "8");
        EXPECT_THAT(foodLines(), ElementsAre(kRice150));
        press(Qt::Key_Tab); // and out of the field, which ends it
    }
}

TEST_F(AddMeal, TheSameQuantityAgainRaisesNoChange)
{
    add("rice", "150");
    clickLine("lstMeal", 1);
    field("txtQuantity").setText(QStringLiteral("150")); // an empty line: a change would be an error
}

TEST_F(AddMeal, ADoubleClickOnAFoodTakesItsQuantity)
{
    add("rice", "150.04");
    type("txtQuantity", "10");
    doubleClickLine("lstMeal", kFirstFood);
    EXPECT_EQ(text("txtQuantity"), "150.0");
    EXPECT_THAT(foodLines(), ElementsAre(kRice150));
}

TEST_F(AddMeal, AfterADoubleClickTheQuantityCanBeTypedOver)
{
    add("rice", "150");
    add("butter", "20");
    doubleClickLine("lstMeal", kFirstFood);
    ASSERT_EQ(QApplication::focusWidget(), &field("txtQuantity"));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("200"));
    EXPECT_THAT(foodLines(), ElementsAre(testing::StartsWith("200.0\tRice"), testing::StartsWith("20.0\tButter")));
}

TEST_F(AddMeal, ADoubleClickOnAnotherLineDoesNothing)
{
    add("rice", "150");
    type("txtQuantity", "10");
    for (const int line : {0, 1, 3, 4, 5}) {
        doubleClickLine("lstMeal", line);
        EXPECT_EQ(text("txtQuantity"), "10") << line;
    }
}

TEST_F(AddMeal, AClickFromTheQuantityIntoALongListSelectsTheLineUnderThePointer)
{
    for (int food = 0; food < 30; ++food) {
        add("rice", "10");
    }
    list("lstMeal").scrollToTop();
    clickLine("lstMeal", 4);
    type("txtQuantity", "33");
    clickLine("lstMeal", 5); // leaves the quantity, which selects the last line, out of sight
    EXPECT_THAT(list("lstMeal").selectedLines(), ElementsAre(5));
}

TEST_F(AddMeal, AfterAddingTheTotalsOfALongMealAreInSight)
{
    for (int food = 0; food < 30; ++food) {
        add("rice", "10");
    }
    handlePostedEvents();
    controls::ReportListView& meal = list("lstMeal");
    const QRect last = meal.visualRect(meal.model()->index(34, 0));
    EXPECT_LE(last.bottom(), meal.viewport()->rect().bottom());
}

// --- The rest of the window ---

TEST_F(AddMeal, EnterPressesTheButtonThatHasTheFocus)
{
    search("rice");
    clickLine("lstSearch", 0);
    typeOn("150");
    press(Qt::Key_Tab);
    EXPECT_TRUE(button("cmdAdd").hasFocus());
    press(Qt::Key_Return);
    EXPECT_THAT(foodLines(), ElementsAre(kRice150));
}

TEST_F(AddMeal, TheCalendarPicksTheDate)
{
    testing_windows::whenModal([](QWidget& calendar) {
        EXPECT_EQ(calendar.objectName().toStdString(), "frmCalender");
        QTest::keyClick(calendar.focusWidget(), Qt::Key_Right);
        QTest::keyClick(calendar.focusWidget(), Qt::Key_Return);
    });
    click("cmdDate");
    EXPECT_EQ(text("txtDate"), "06/03/2024");
}

TEST_F(AddMeal, AFoodThatIsMissingCanBeAddedAndThenFound)
{
    search("lentils");
    EXPECT_THAT(lines("lstSearch"), ElementsAre("No Results for - lentils"));
    testing_windows::whenModal([](QWidget& newFood) {
        EXPECT_EQ(newFood.objectName().toStdString(), "frmAddIngredient");
        testing_windows::child<QLineEdit>(newFood, "txtDesc").setText(QStringLiteral("LENTILS,RED"));
        QTest::mouseClick(&testing_windows::child<QPushButton>(newFood, "cmdOK"), Qt::LeftButton);
    });
    click("cmdAddIngredient");
    add("lentils", "80");
    EXPECT_THAT(foodLines(), ElementsAre("80.0\tLentils,red\t0.0\t0.0\t0.0"));
}

TEST_F(AddMeal, ADiaryThatIsNotThereIsReportedAndTheWindowStaysUsable)
{
    ASSERT_TRUE(QFile::rename(foods.path(), foods.path() + ".away"));
    type("txtSearch", "rice");
    expectError("Run-time error '3024':");
    press(Qt::Key_Return);
    ASSERT_TRUE(QFile::rename(foods.path() + ".away", foods.path()));
    add("rice", "150");
    EXPECT_THAT(foodLines(), ElementsAre(kRice150));
}

} // namespace
} // namespace meals
