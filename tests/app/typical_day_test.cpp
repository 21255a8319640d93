// A day as a user goes through it, from the reading before a meal to the printed diary.
#include "app/main_window.h"

#include "support/diary_content.h"

#include "runtime/conversions.h"

#include <QAbstractItemView>
#include <QLabel>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::StartsWith;
using testing_windows::child;
using testing_windows::whenModal;

class TypicalDay : public MainWindow
{
protected:
    TypicalDay()
    {
        reports::addFood(diary.path(), 18064, {"BREAD,WHITE", 250, 50, 2, 9});
        reports::addFood(diary.path(), 1009, {"CHEESE,CHEDDAR", 400, 1, 33, 25});
    }

    void now(const char* moment) { clock.set(runtime::toDate(QString::fromLatin1(moment))); }

    void enterReading(const char* mmol, const char* type)
    {
        whenModal([=](QWidget& form) {
            testing_windows::typeOver(child<QLineEdit>(form, "txtBloodSugar"), QLatin1String(mmol));
            child<QComboBox>(form, "cboType").setCurrentText(QLatin1String(type));
            QTest::mouseClick(&child<QPushButton>(form, "cmdOK"), Qt::LeftButton);
        });
        choose("mnuAdd", "mnuBloodSugar");
    }

    /// By the keyboard, but for the choice of the food.
    static void addFoundFood(QWidget& builder, const char* search, const char* grams)
    {
        auto& searchField = child<QLineEdit>(builder, "txtSearch");
        searchField.setFocus();
        QTest::keyClicks(&searchField, QLatin1String(search));
        QTest::keyClick(&searchField, Qt::Key_Return);
        testing_windows::handlePostedEvents(); // the list shows its lines with the next event
        auto& found = child<QAbstractItemView>(builder, "lstSearch");
        ASSERT_EQ(found.model()->rowCount(), 1);
        QTest::mouseClick(found.viewport(), Qt::LeftButton, {}, found.visualRect(found.model()->index(0, 0)).center());
        auto& quantity = child<QLineEdit>(builder, "txtQuantity");
        ASSERT_TRUE(quantity.hasFocus());
        QTest::keyClicks(&quantity, QLatin1String(grams));
        QTest::keyClick(&quantity, Qt::Key_Return);
        ASSERT_TRUE(searchField.hasFocus());
    }

    static void composeLunch(QWidget& builder)
    {
        EXPECT_EQ(builder.objectName().toStdString(), "frmAddMeal");
        addFoundFood(builder, "bread", "60");
        addFoundFood(builder, "chee*dar", "40");
        auto& types = child<QComboBox>(builder, "cboMealType");
        types.setFocus();
        QTest::keyClicks(&types, "Lunch");
        auto& dose = child<QLineEdit>(builder, "txtInsulinDosage");
        dose.setFocus();
        QTest::keyClicks(&dose, "5");
        EXPECT_THAT(child<QLabel>(builder, "lblInsulinDosage").text().toStdString(),
                    StartsWith("Insulin 6.08 gms/unit."));
        QTest::mouseClick(&child<QPushButton>(builder, "cmdOK"), Qt::LeftButton);
    }
};

TEST_F(TypicalDay, EndsAsADiaryOnScreenAndOnPaper)
{
    now("03/03/2002 12:00");
    enterReading("5.2", "Meal");
    now("03/03/2002 12:05");
    whenModal(composeLunch);
    choose("mnuAdd", "mnuAddMeal");
    now("03/03/2002 14:05");
    enterReading("8.4", "Meal + 2");

    // 60 g of bread: 150 kCal, 30 g of carbohydrate, 1.2 g of fat, 5.4 g of protein. 40 g of cheese: 160,
    // 0.4, 13.2, 10. Together 30.4 x 4 = 121.6 kCal, 14.4 x 9 = 129.6 and 15.4 x 4 = 61.6 of 312.8: 38.9 %, 41.4 %
    // and 19.7 %.
    const std::vector<std::string> day = {"Lunch\tSunday 03 March 2002 12:05\tkCal\tCarb\tFat\tProt\tGrams",
                                          "",
                                          "\tBread,white\t150.0\t30.0\t1.2\t5.4\t60.0",
                                          "\tCheese,cheddar\t160.0\t0.4\t13.2\t10.0\t40.0",
                                          "",
                                          "\tTotal\t310.0\t30.4\t14.4\t15.4",
                                          "\tCalc Total kCal/kCal/kCal/kCal\t312.8\t121.6\t129.6\t61.6",
                                          "\tTotal %\t312.8\t39%\t41%\t20%",
                                          "",
                                          "***\tInsulin (I) = 5 units, Carbs (C) = 30.4 g, C/I = 6.08",
                                          "\t\tTime\tMmol\tDrop\tReading Type",
                                          "\t03 Mar 12:00 pre meal by\t0:05\t5.2\t0.0\tMeal\t",
                                          "\t03 Mar 14:05\t2:00\t8.4\t3.2\tMeal + 2\t",
                                          "",
                                          "",
                                          "\tDay Total kCal/gms/gms/gms\t310.0\t30.4\t14.4\t15.4",
                                          "\tCalc Total kCal/kCal/kCal/kCal\t312.8\t121.6\t129.6\t61.6",
                                          "\tDay Total %\t312.8\t39%\t41%\t20%",
                                          "",
                                          "=========================================================",
                                          ""};
    choose("mnuReports", "mnuDairy");
    EXPECT_THAT(lines(), testing::ElementsAreArray(day));

    choose("mnuPrntReports", "mnuPrintCurrent");
    ASSERT_EQ(printers.printout.size(), 1U);
    EXPECT_TRUE(printers.printout.at(0).isPrinted());
    EXPECT_THAT(printers.printout.at(0).pages.at(0).words(),
                IsSupersetOf({"Bread,white", "Day Total %", "03 Mar 12:00 pre meal by", "39%"}));
}

TEST_F(TypicalDay, TakesInAFoodThatTheTableLacksAndATimeThatWasWrong)
{
    whenModal([](QWidget& form) {
        EXPECT_EQ(form.objectName().toStdString(), "frmAddIngredient");
        QTest::keyClicks(&child<QLineEdit>(form, "txtDesc"), "Grandmother-cake");
        QTest::mouseClick(&child<QPushButton>(form, "cmdOK"), Qt::LeftButton);
    });
    choose("mnuAdd", "mnuAddIngredient");

    now("03/03/2002 15:00");
    EXPECT_CALL(dialogs, showMessage(testing::_, QString("Meal Saved"), QString("Quillon")));
    whenModal([](QWidget& builder) {
        addFoundFood(builder, "grandmother", "80");
        addFoundFood(builder, "bread", "10");
        child<QComboBox>(builder, "cboMealType").setCurrentText("Snack");
        child<QLineEdit>(builder, "txtInsulinDosage").setText("0");
        QTest::mouseClick(&child<QPushButton>(builder, "cmdSave"), Qt::LeftButton);
        QTest::mouseClick(&child<QPushButton>(builder, "cmdCancel"), Qt::LeftButton);
    });
    choose("mnuAdd", "mnuAddMeal");

    whenModal([](QWidget& form) {
        EXPECT_EQ(form.objectName().toStdString(), "frmEditMealTime");
        auto& time = child<QLineEdit>(form, "txtMealTime");
        QTest::mouseClick(&time, Qt::LeftButton);
        testing_windows::typeOver(time, QStringLiteral("03/03/2002 16:00"));
        form.close();
    });
    choose("mnuEdit", "mnuEditMealTime");

    diary.addReading("03/03/2002 15:50", 5, 2);
    diary.addReading("03/03/2002 18:00", 6, 3);
    choose("mnuReports", "mnuDairySummary");
    EXPECT_THAT(lines(), Contains("Snack\tSunday 03 March 2002 16:00\tkCal\tCarb\tFat\tProt\tGrams"));
    EXPECT_THAT(lines(), Contains("\tNo bosal insulin with this snack, Carbs = 5.0"));
    EXPECT_THAT(lines(), Contains("\t03 Mar 15:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t"));
}

} // namespace
} // namespace app
