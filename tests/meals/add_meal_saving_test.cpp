// Checking, storing, printing and fetching meals in the meal builder, by keys and clicks.
#include "meals/meal_builder.h"

#include "data/database.h"
#include "meals/exported_table.h"
#include "reports/diary_report.h"
#include "runtime/conversions.h"

#include <QApplication>

namespace meals {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using testing_windows::child;

constexpr const char* kRefused = "Validation Error";

class AddMealSaving : public MealBuilder
{
protected:
    [[nodiscard]] std::vector<std::string> meals() const { return exportedTable(foods.path(), "Meals"); }
    [[nodiscard]] std::vector<std::string> contents() const { return exportedTable(foods.path(), "MealContent"); }

    /// A lunch of 150 g of rice with 4 units.
    void compose()
    {
        add("rice", "150");
        chooseType("Lunch");
        type("txtInsulinDosage", "4");
    }
    void save()
    {
        expectMessage("Meal Saved", "Quillon");
        click("cmdSave");
    }
    /// Opens the selection of old meals and chooses that line; -1: cancels it.
    void fetch(const char* button, int line)
    {
        testing_windows::whenModal([line](QWidget& selection) {
            EXPECT_EQ(selection.objectName().toStdString(), "frmSelectMeal");
            auto& list = child<controls::ReportListView>(selection, "lstMeals");
            testing_windows::handlePostedEvents();
            if (line >= 0) {
                QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                                  list.visualRect(list.model()->index(line, 0)).center());
            }
            QTest::mouseClick(&child<QPushButton>(selection, line < 0 ? "cmdCancel" : "cmdOK"), Qt::LeftButton);
        });
        click(button);
    }
};

// --- Checks ---

TEST_F(AddMealSaving, TheTypeComesFirst)
{
    expectMessage("Must select meal type", kRefused);
    click("cmdSave");
    EXPECT_TRUE(cboMealType().hasFocus());
    EXPECT_THAT(meals(), IsEmpty());
}

TEST_F(AddMealSaving, ThenTheDose)
{
    chooseType("Lunch");
    for (const char* dose : {"", "some"}) {
        type("txtInsulinDosage", dose);
        field("txtSearch").setFocus();
        expectMessage("Insulin dose must be a number", kRefused);
        click("cmdSave");
        EXPECT_TRUE(field("txtInsulinDosage").hasFocus());
    }
    EXPECT_THAT(meals(), IsEmpty());
}

TEST_F(AddMealSaving, ALunchWithoutInsulinIsRefused)
{
    add("rice", "150");
    chooseType("Lunch");
    type("txtInsulinDosage", "0");
    expectMessage("Zero Insulin only valid with Snacks", kRefused);
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_THAT(meals(), IsEmpty());
}

TEST_F(AddMealSaving, ASnackWithoutInsulinIsStored)
{
    add("rice", "150");
    chooseType("Snack");
    type("txtInsulinDosage", "0");
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 4 | 0"));
}

TEST_F(AddMealSaving, AMealWithoutFoodIsRefused)
{
    chooseType("Lunch");
    type("txtInsulinDosage", "4");
    expectMessage("Meal must contain food", kRefused);
    click("cmdSave");
    EXPECT_THAT(meals(), IsEmpty());
}

// --- Storing ---

TEST_F(AddMealSaving, SaveStoresTheMealAndStaysWithItsContents)
{
    add("rice", "150");
    add("butter", "10.25");
    chooseType("Dinner");
    type("txtInsulinDosage", "6");
    type("txtDate", "04/03/2024");
    type("txtTime", "19:05");
    save();
    EXPECT_TRUE(form->isVisible());
    EXPECT_THAT(foodLines(), SizeIs(2));
    EXPECT_THAT(meals(), ElementsAre("1 | 04/03/2024 19:05:00 | 3 | 6"));
    // meal | food | grams as shown: 10.25 is shown as 10.3
    EXPECT_THAT(contents(), ElementsAre("1 | 2001 | 150", "1 | 1001 | 10.3"));
}

TEST_F(AddMealSaving, SaveTwiceStoresTheMealTwice)
{
    compose();
    save();
    save();
    EXPECT_THAT(meals(), SizeIs(2));
}

TEST_F(AddMealSaving, OkStoresAndClosesWithoutAMessage)
{
    compose();
    click("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_THAT(meals(), ElementsAre("1 | 05/03/2024 12:30:00 | 2 | 4"));
    EXPECT_THAT(contents(), ElementsAre("1 | 2001 | 150"));
}

TEST_F(AddMealSaving, ADoubleClickOnOkStoresOneMeal)
{
    compose();
    click("cmdOK");
    QTest::mouseDClick(&button("cmdOK"), Qt::LeftButton);
    QTest::mouseRelease(&button("cmdOK"), Qt::LeftButton);
    EXPECT_THAT(meals(), SizeIs(1));
}

TEST_F(AddMealSaving, FoodsOfZeroGramsAreNotStored)
{
    add("rice", "0");
    chooseType("Lunch");
    type("txtInsulinDosage", "4");
    save();
    EXPECT_THAT(meals(), SizeIs(1));
    EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(AddMealSaving, AWrongDateStoresNothingAndTheWindowStays)
{
    compose();
    type("txtDate", "soon");
    expectError("Run-time error '13':");
    click("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_THAT(meals(), IsEmpty());
    type("txtDate", "05/03/2024");
    click("cmdOK");
    EXPECT_THAT(meals(), SizeIs(1));
}

TEST_F(AddMealSaving, CancelEscapeAndClosingDiscardTheMeal)
{
    compose();
    click("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    open();
    compose();
    press(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    open();
    compose();
    form->close();
    EXPECT_THAT(meals(), IsEmpty());
}

// --- Old meals ---

TEST_F(AddMealSaving, BaseOnOldMealStoresANewOne)
{
    compose();
    type("txtDate", "01/03/2024");
    click("cmdOK");
    open();
    fetch("cmdGetOldMeal", 0);
    EXPECT_THAT(foodLines(), ElementsAre("150.0\tRice,white,ckd\t30.0\t1.5\t3.0"));
    EXPECT_EQ(cboMealType().currentText().toStdString(), "Lunch");
    EXPECT_EQ(text("txtInsulinDosage"), "4");
    EXPECT_EQ(text("txtDate"), "01/03/2024");
    EXPECT_EQ(text("txtTime"), "12:30");
    EXPECT_TRUE(field("txtDate").isEnabled());
    type("txtDate", "05/03/2024");
    save();
    EXPECT_THAT(meals(), ElementsAre("1 | 01/03/2024 12:30:00 | 2 | 4", "2 | 05/03/2024 12:30:00 | 2 | 4"));
    EXPECT_THAT(contents(), ElementsAre("1 | 2001 | 150", "2 | 2001 | 150"));
}

TEST_F(AddMealSaving, ModifyOldMealReplacesItUnderANewNumber)
{
    compose();
    type("txtDate", "01/03/2024");
    click("cmdOK");
    clock.set(runtime::toDate(QStringLiteral("06/03/2024 18:00")));
    open();
    fetch("cmdModifyOldMeal", 0);
    for (const char* name : {"txtDate", "txtTime"}) {
        EXPECT_FALSE(field(name).isEnabled()) << name;
    }
    for (const char* name : {"lblDate", "lblTime"}) {
        EXPECT_FALSE(label(name).isEnabled()) << name;
    }
    EXPECT_FALSE(button("cmdDate").isEnabled()) << "the calendar would change the date";
    add("butter", "10");
    save();
    EXPECT_THAT(meals(), ElementsAre("2 | 01/03/2024 12:30:00 | 2 | 4"));
    EXPECT_THAT(contents(), ElementsAre("2 | 2001 | 150", "2 | 1001 | 10"));
    save(); // the old one is gone already
    EXPECT_THAT(meals(), SizeIs(2));
}

TEST_F(AddMealSaving, AFetchedMealTakesThePlaceOfWhatWasComposed)
{
    compose();
    save();
    add("butter", "10");
    fetch("cmdGetOldMeal", 0);
    EXPECT_THAT(foodLines(), SizeIs(1));
    EXPECT_THAT(list("lstMeal").selectedLines(), IsEmpty());
}

TEST_F(AddMealSaving, ABreakfastComesBackWithoutItsType)
{
    add("rice", "150");
    chooseType("Breakfast");
    type("txtInsulinDosage", "4");
    save();
    fetch("cmdGetOldMeal", 0);
    EXPECT_EQ(cboMealType().currentIndex(), -1);
    expectMessage("Must select meal type", kRefused);
    click("cmdSave");
    EXPECT_THAT(meals(), SizeIs(1));
}

TEST_F(AddMealSaving, CancellingTheSelectionLeavesTheMealAlone)
{
    compose();
    save();
    add("butter", "10");
    fetch("cmdGetOldMeal", -1);
    EXPECT_THAT(foodLines(), SizeIs(2));
    fetch("cmdModifyOldMeal", -1);
    EXPECT_THAT(foodLines(), SizeIs(2));
    EXPECT_FALSE(field("txtDate").isEnabled()) << "also then";
    save();
    EXPECT_THAT(meals(), SizeIs(2)) << "none is replaced";
}

TEST_F(AddMealSaving, BaseOnOldMealEndsAModification)
{
    compose();
    save();
    fetch("cmdModifyOldMeal", 0);
    fetch("cmdGetOldMeal", -1);
    save();
    EXPECT_THAT(meals(), SizeIs(2)) << "none is replaced";
}

TEST_F(AddMealSaving, AnOldMealWithoutFoodsFailsAndIsNotReplaced)
{
    add("rice", "0");
    chooseType("Lunch");
    type("txtInsulinDosage", "4");
    save();
    expectError("Run-time error '3021':");
    fetch("cmdModifyOldMeal", 0);
    EXPECT_THAT(foodLines(), IsEmpty());
    add("rice", "150");
    save();
    EXPECT_THAT(meals(), SizeIs(2));
}

TEST_F(AddMealSaving, AFailedModificationDoesNotReplaceTheMealChosenBefore)
{
    compose();
    save();
    type("txtDate", "01/03/2024"); // the older one: second in the list
    type("txtQuantity", "0");
    list("lstMeal").setCurrentIndex(list("lstMeal").model()->index(2, 0));
    type("txtQuantity", "0");
    save(); // without foods
    fetch("cmdModifyOldMeal", 0);
    expectError("Run-time error '3021':");
    fetch("cmdModifyOldMeal", 1);
    add("rice", "150");
    save();
    EXPECT_THAT(meals(), SizeIs(3)) << "none is replaced";
}

TEST_F(AddMealSaving, WithoutAnOldMealTheSelectionDoesNotOpen)
{
    expectError("Run-time error '3021':\n\nNo current record.\n\nThere is no stored meal yet.");
    click("cmdModifyOldMeal");
    EXPECT_TRUE(field("txtDate").isEnabled());
}

TEST_F(AddMealSaving, TheOverallDiaryShowsTheStoredMeal)
{
    data::Database database(foods.path());
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    for (const auto& [when, mmol] : {std::pair("05/03/2024 12:20", 5.0), std::pair("05/03/2024 14:30", 7.0)}) {
        readings.addNew();
        readings.set(QStringLiteral("ReadingTime"), runtime::toDate(QString::fromLatin1(when)));
        readings.set(QStringLiteral("BloodSugerLevel"), mmol);
        readings.set(QStringLiteral("ReadingType"), qint32{2});
        readings.update();
    }
    database.close();
    add("rice", "150");
    add("cookies", "20");
    chooseType("Lunch");
    type("txtInsulinDosage", "4");
    click("cmdOK");

    reports::DisplayDiary(state, true);
    std::vector<std::string> diary;
    for (qsizetype line = 0; line < state.lstView.size(); ++line) {
        diary.push_back(state.lstView.at(line).text.toStdString());
    }
    EXPECT_THAT(diary, Contains(StartsWith("Lunch\tTuesday 05 March 2024 12:30\t")));
    EXPECT_THAT(diary, Contains("\tRice,white,ckd\t150.0\t30.0\t1.5\t3.0\t150.0"));
    // 20 g of cookies: 60 kCal, 10 g carbohydrate
    EXPECT_THAT(diary, Contains("\tOatmeal cookies\t60.0\t10.0\t2.0\t1.2\t20.0"));
    EXPECT_THAT(diary, Contains("***\tInsulin (I) = 4 units, Carbs (C) = 40.0 g, C/I = 10.00"));
}

// --- On paper ---

using AddMealPrinting = AddMealSaving;

TEST_F(AddMealPrinting, AnUntouchedBuilderPrintsThreeLines)
{
    click("cmdPrintMeal");
    EXPECT_THAT(printers.onlyPage().words(), ElementsAre("Qty gms", "Food Description", "Carb", "Fat", "Protein", " ",
                                                         "Total", "", "00.0", "00.0", "00.0", "Page - 1"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(AddMealPrinting, ColumnsStandAtTheirPositionsInPlainBlack)
{
    add("rice", "150");
    click("cmdPrintMeal");
    const PrintedPage& page = printers.onlyPage();
    std::vector<std::string> placed;
    for (const PrintedText& text : page.texts) {
        placed.push_back(text.text.toStdString() + " " + std::to_string(static_cast<int>(text.x)));
        EXPECT_FALSE(text.bold || text.underlined);
        EXPECT_EQ(text.colour, reports::Printer::Colour::Black);
    }
    ASSERT_GE(placed.size(), 19U);
    placed.resize(19);
    // Total lines have a column less before their figures.
    EXPECT_THAT(placed, ElementsAre("Qty gms 1000", "Food Description 2000", "Carb 4000", "Fat 5500", "Protein 6500",
                                    testing::_, "150.0 1000", "Rice,white,ckd 2000", "30.0 4000", "1.5 5500",
                                    "3.0 6500", testing::_, "Total grams 1000", "30.0 2000", "1.5 4000", "3.0 5500",
                                    "Total kCal 150.0 Cholestrol - 0.0 1000", "80% 2000", "9% 4000"));
}

TEST_F(AddMealPrinting, FurtherPagesHaveTheHeading)
{
    for (int food = 0; food < 70; ++food) {
        add("rice", "10");
    }
    click("cmdPrintMeal");
    ASSERT_THAT(printers.printout, SizeIs(1));
    ASSERT_THAT(printers.printout[0].pages, SizeIs(2));
    EXPECT_THAT(printers.printout[0].pages[0].words().front(), "Qty gms");
    EXPECT_THAT(printers.printout[0].pages[1].words().front(), "Meal Compiled - Tuesday 05 March 2024 12:30");
}

TEST_F(AddMealPrinting, CountsItsLinesOnFromTheJobBefore)
{
    state.printedLines = 10;
    click("cmdPrintMeal");
    EXPECT_EQ(state.printedLines, 13);
}

TEST_F(AddMealPrinting, APrinterErrorIsReportedWithoutTheHourglass)
{
    printers.failAtOutput = 2;
    expectError("Run-time error '482':");
    click("cmdPrintMeal");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(AddMealPrinting, NoPrinterNoPrintout)
{
    printers.cancelled = true;
    click("cmdPrintMeal");
    EXPECT_THAT(printers.printout, IsEmpty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

} // namespace
} // namespace meals
