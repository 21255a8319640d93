#include "meals/meal_sheet.h"

#include "meals/known_foods.h"
#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace meals {
namespace {

using testing::ElementsAre;

const std::string kHeading = "Qty gms\tFood Description\tCarb\tFat\tProtein";

class MealSheetTest : public testing::Test
{
protected:
    void add(const char* grams, int food) { AddIngredient(sheet, diary.path(), QString::fromLatin1(grams), food); }
    void change(int line, double factor) { UpdateMenuListQty(sheet, diary.path(), factor, line); }

    [[nodiscard]] std::vector<std::string> lines() const
    {
        std::vector<std::string> texts;
        for (qsizetype line = 0; line < sheet.lines().size(); ++line) {
            texts.push_back(sheet.lines().at(line).text.toStdString());
        }
        return texts;
    }
    [[nodiscard]] std::string line(int number) const { return sheet.lines().at(number).text.toStdString(); }

    /// The number of the run-time error that the action raises; the sheet must stay as it was.
    template <typename Action>
    int errorNumber(const Action& action)
    {
        const std::vector<std::string> before = lines();
        const double carbohydrate = sheet.totalCarbohydrate();
        const auto error = errorOf(action);
        hint = error ? error->hint() : QString();
        EXPECT_EQ(lines(), before);
        EXPECT_EQ(sheet.totalCarbohydrate(), carbohydrate);
        return error ? error->number() : 0;
    }

    const LocaleInForce locale{kBritish};
    const KnownFoods diary;
    MealSheet sheet;
    QString hint; ///< of the last error
};

TEST_F(MealSheetTest, BeginsWithAHeadingAnEmptyLineAndAZeroTotal)
{
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "Total\t\t00.0\t00.0\t00.0"));
    EXPECT_FALSE(sheet.hasFood());
    EXPECT_EQ(sheet.totalCarbohydrate(), 0);
}

TEST_F(MealSheetTest, TheFirstFoodTakesThePlaceOfTheTotalLineAlone)
{
    add("100", KnownFoods::kButter);
    // Shares of 717 kCal: 0.06 x 4 = 0.24 or 0.03 %, 81.11 x 9 = 729.99 or 101.8 %, 0.85 x 4 = 3.4 or 0.5 %.
    EXPECT_THAT(lines(),
                ElementsAre(kHeading, "", "100.0\tButter,with salt\t0.1\t81.1\t0.9", "", "Total grams\t0.1\t81.1\t0.9",
                            "Total kCal 717.0 Cholestrol - 215.0\t0%\t102%\t0%"));
}

TEST_F(MealSheetTest, ALaterFoodTakesThePlaceOfTheThreeClosingLines)
{
    add("100", KnownFoods::kButter);
    add("150", KnownFoods::kRice);
    // Fat: 81.11 + 1.5 = 82.61 g, which is 743.49 of 867 kCal: 85.8 %.
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "100.0\tButter,with salt\t0.1\t81.1\t0.9",
                                     "150.0\tRice,white,ckd\t30.0\t1.5\t3.0", "", "Total grams\t30.1\t82.6\t3.9",
                                     "Total kCal 867.0 Cholestrol - 215.0\t14%\t86%\t2%"));
}

TEST_F(MealSheetTest, Of150GramsWithTwentyGramsOfCarbohydrateIn100AreThirty)
{
    add("150", KnownFoods::kRice);
    const QStringList columns = sheet.lines().at(2).text.split(u'\t');
    EXPECT_EQ(columns.at(0), QStringLiteral("150.0"));
    EXPECT_EQ(columns.at(2), QStringLiteral("30.0"));
}

TEST_F(MealSheetTest, AChangedQuantityRebuildsTheFoodsLineAndTheTotals)
{
    add("100", KnownFoods::kButter);
    add("150", KnownFoods::kRice);
    change(2, 0.1);
    // Butter: 8.111 g fat. In all 8.111 + 1.5 = 9.611 g fat, which is 86.499 of 71.7 + 150 = 221.7 kCal: 39.0 %.
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "10.0\tButter,with salt\t0.0\t8.1\t0.1",
                                     "150.0\tRice,white,ckd\t30.0\t1.5\t3.0", "", "Total grams\t30.0\t9.6\t3.1",
                                     "Total kCal 221.7 Cholestrol - 21.5\t54%\t39%\t6%"));
}

TEST_F(MealSheetTest, FoodsAreAddedAndChangedInAnyOrder)
{
    add("100", KnownFoods::kButter);
    add("150", KnownFoods::kRice);
    change(2, 0.1);
    change(3, 0);
    // What is left is 10 g butter: 8.111 g fat are 72.999 of 71.7 kCal, 101.8 %.
    EXPECT_THAT(lines(),
                ElementsAre(kHeading, "", "10.0\tButter,with salt\t0.0\t8.1\t0.1", "0.0\tRice,white,ckd\t0.0\t0.0\t0.0",
                            "", "Total grams\t0.0\t8.1\t0.1", "Total kCal 71.7 Cholestrol - 21.5\t0%\t102%\t0%"));
    add("50", KnownFoods::kCookies);
    // Carbohydrate: 0.006 + 0 + 25 = 25.006 g, which is 100.024 of 71.7 + 150 = 221.7 kCal: 45.1 %.
    EXPECT_THAT(lines(),
                ElementsAre(kHeading, "", "10.0\tButter,with salt\t0.0\t8.1\t0.1", "0.0\tRice,white,ckd\t0.0\t0.0\t0.0",
                            "50.0\tOatmeal cookies\t25.0\t5.0\t3.0", "", "Total grams\t25.0\t13.1\t3.1",
                            "Total kCal 221.7 Cholestrol - 24.0\t45%\t53%\t6%"));
    change(4, 1);
    change(3, 0.5);
    // Protein: 0.085 + 1 + 6 = 7.085 g, which is 28.34 of 71.7 + 50 + 300 = 421.7 kCal: 6.7 %.
    EXPECT_THAT(lines(),
                ElementsAre(kHeading, "", "10.0\tButter,with salt\t0.0\t8.1\t0.1",
                            "50.0\tRice,white,ckd\t10.0\t0.5\t1.0", "100.0\tOatmeal cookies\t50.0\t10.0\t6.0", "",
                            "Total grams\t60.0\t18.6\t7.1", "Total kCal 421.7 Cholestrol - 26.5\t57%\t40%\t7%"));
}

TEST_F(MealSheetTest, AClearedSheetIsAsAtTheBeginning)
{
    sheet.lines().setTabStops({30, 200, 230, 260});
    add("100", KnownFoods::kButter);
    add("150", KnownFoods::kRice);
    sheet.clear();
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "Total\t\t00.0\t00.0\t00.0"));
    EXPECT_FALSE(sheet.hasFood());
    EXPECT_EQ(sheet.totalCarbohydrate(), 0);
    EXPECT_EQ(sheet.lines().tabStops(), QList<int>({30, 200, 230, 260}));

    add("100", KnownFoods::kRice);
    // 20 g carbohydrate are 80 of 100 kCal.
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "100.0\tRice,white,ckd\t20.0\t1.0\t2.0", "",
                                     "Total grams\t20.0\t1.0\t2.0", "Total kCal 100.0 Cholestrol - 0.0\t80%\t9%\t8%"));
}

TEST_F(MealSheetTest, TheSameFoodTwiceHasTwoLines)
{
    add("10", KnownFoods::kRice);
    add("20", KnownFoods::kRice);
    change(3, 0.4);
    EXPECT_EQ(line(2), "10.0\tRice,white,ckd\t2.0\t0.1\t0.2");
    EXPECT_EQ(line(3), "40.0\tRice,white,ckd\t8.0\t0.4\t0.8");
    EXPECT_EQ(line(5), "Total grams\t10.0\t0.5\t1.0");
}

TEST_F(MealSheetTest, GrowsWithTheMeal)
{
    for (int food = 0; food < 200; ++food) {
        add("10", KnownFoods::kRice);
    }
    // 200 x 10 g with 2 g carbohydrate, 0.1 g fat, 0.2 g protein and 10 kCal each.
    EXPECT_EQ(sheet.lines().size(), 2 + 200 + 3);
    EXPECT_EQ(line(203), "Total grams\t400.0\t20.0\t40.0");
    EXPECT_EQ(line(204), "Total kCal 2000.0 Cholestrol - 0.0\t80%\t9%\t8%");
}

TEST_F(MealSheetTest, AQuantityOf0KeepsTheFoodLineWithZeros)
{
    add("100", KnownFoods::kRice);
    change(2, 0);
    EXPECT_EQ(line(2), "0.0\tRice,white,ckd\t0.0\t0.0\t0.0");
    EXPECT_TRUE(sheet.isFoodLine(2));
    change(2, 0.25);
    EXPECT_EQ(line(2), "25.0\tRice,white,ckd\t5.0\t0.3\t0.5");
}

TEST_F(MealSheetTest, CholesterolThatIsNotKnownAddsNothing)
{
    add("200", KnownFoods::kRice);
    add("50", KnownFoods::kCookies);
    EXPECT_EQ(line(2), "200.0\tRice,white,ckd\t40.0\t2.0\t4.0");
    // 200 + 150 kCal; 5 mg in 100 g of cookies. 65 x 4 = 260, 7 x 9 = 63 and 7 x 4 = 28 kCal.
    EXPECT_EQ(line(6), "Total kCal 350.0 Cholestrol - 2.5\t74%\t18%\t8%");
}

TEST_F(MealSheetTest, AFoodOfWhichNothingIsKnownAddsNothing)
{
    add("80", KnownFoods::kUnknown);
    EXPECT_EQ(line(2), "80.0\tNobody knows\t0.0\t0.0\t0.0");
    EXPECT_EQ(line(5), "Total kCal 0.0 Cholestrol - 0.0\t0%\t0%\t0%");
}

TEST_F(MealSheetTest, AMealWithoutEnergyHasSharesOf0)
{
    add("250", KnownFoods::kWater);
    EXPECT_THAT(lines(), ElementsAre(kHeading, "", "250.0\tWater,tap\t0.0\t0.0\t0.0", "", "Total grams\t0.0\t0.0\t0.0",
                                     "Total kCal 0.0 Cholestrol - 0.0\t0%\t0%\t0%"));
    add("100", KnownFoods::kRice);
    change(3, 0);
    EXPECT_EQ(line(6), "Total kCal 0.0 Cholestrol - 0.0\t0%\t0%\t0%");
}

TEST_F(MealSheetTest, ANegativeQuantityTakesAway)
{
    add("100", KnownFoods::kCookies);
    add("100", KnownFoods::kRice);
    change(3, -0.5);
    EXPECT_EQ(line(3), "-50.0\tRice,white,ckd\t-10.0\t-0.5\t-1.0");
    EXPECT_TRUE(sheet.isFoodLine(3));
    EXPECT_EQ(sheet.gramsAt(3), -50);
    // Carbohydrate: 50 - 10 = 40 g, which is 160 of 300 - 50 = 250 kCal.
    EXPECT_EQ(line(5), "Total grams\t40.0\t9.5\t5.0");
    EXPECT_EQ(line(6), "Total kCal 250.0 Cholestrol - 5.0\t64%\t34%\t8%");
}

TEST_F(MealSheetTest, TheGramsShownCountLaterAndTheNutrientsAreThoseOfTheGramsTyped)
{
    add("33.36", KnownFoods::kRice);
    EXPECT_EQ(line(2), "33.4\tRice,white,ckd\t6.7\t0.3\t0.7");
    EXPECT_EQ(sheet.gramsAt(2), 33.4);
    EXPECT_DOUBLE_EQ(sheet.totalCarbohydrate(), 6.672);
}

TEST_F(MealSheetTest, OnlyTheLinesOfFoodsAreFoodLines)
{
    EXPECT_FALSE(sheet.isFoodLine(2)) << "the first total line";
    add("100", KnownFoods::kButter);
    add("50", KnownFoods::kRice);
    const std::vector<int> numbers = {0, 0, KnownFoods::kButter, KnownFoods::kRice, 0, 0, 0};
    for (int number = 0; number < static_cast<int>(numbers.size()); ++number) {
        const int food = numbers[static_cast<std::size_t>(number)];
        EXPECT_EQ(sheet.isFoodLine(number), food != 0) << number;
        EXPECT_EQ(sheet.foodNumberAt(number), food) << number;
    }
    for (const int number : {-1, 7, 1000}) {
        EXPECT_FALSE(sheet.isFoodLine(number)) << number;
        EXPECT_EQ(sheet.foodNumberAt(number), 0) << number;
    }
}

TEST_F(MealSheetTest, AFoodLineIsToldByItsNumber)
{
    for (const QLocale& inForce : {kBritish, kGerman, kFrench, kSwiss, kPolish}) {
        const LocaleInForce changed(inForce);
        sheet.clear();
        add("1234", KnownFoods::kButter);
        add("50", KnownFoods::kRice);
        change(3, -12345.67);
        for (int number = 0; number < sheet.lines().size(); ++number) {
            const QString& text = sheet.lines().at(number).text;
            if (!text.isEmpty()) {
                EXPECT_EQ(MealSheet::beginsWithNumber(text), sheet.isFoodLine(number)) << text.toStdString();
            }
        }
        EXPECT_EQ(sheet.gramsAt(2), 1234);
        EXPECT_EQ(sheet.gramsAt(3), -1234567);
    }
}

TEST_F(MealSheetTest, TheHeadingAndTheTotalLinesDoNotBeginWithANumber)
{
    EXPECT_FALSE(MealSheet::beginsWithNumber(QStringLiteral("Total\t\t00.0\t00.0\t00.0")));
    EXPECT_FALSE(MealSheet::beginsWithNumber(QString::fromStdString(kHeading)));
    EXPECT_FALSE(MealSheet::beginsWithNumber(QStringLiteral("Total grams\t1.0\t2.0\t3.0")));
    EXPECT_FALSE(MealSheet::beginsWithNumber(QStringLiteral("Total kCal 9.0 Cholestrol - 0.0\t1%\t2%\t3%")));
    EXPECT_TRUE(MealSheet::beginsWithNumber(QStringLiteral("0.0\tRice\t0.0\t0.0\t0.0")));
}

TEST_F(MealSheetTest, AnEmptyLineHasNoFirstColumn)
{
    EXPECT_EQ(errorNumber([] { static_cast<void>(MealSheet::beginsWithNumber(QString())); }), 9);
}

TEST_F(MealSheetTest, AQuantityThatIsNoNumberIsATypeMismatchAndAddsNothing)
{
    add("100", KnownFoods::kRice);
    for (const char* text : {"", "abc", "12,5", "1.2.3"}) {
        EXPECT_EQ(errorNumber([&] { add(text, KnownFoods::kRice); }), 13) << text;
        EXPECT_FALSE(hint.isEmpty());
    }
}

TEST_F(MealSheetTest, AFoodThatIsNotThereIsNoCurrentRecordAndAddsNothing)
{
    EXPECT_EQ(errorNumber([&] { add("100", 0); }), 3021) << "as for the line that tells of a search without results";
    EXPECT_EQ(errorNumber([&] { add("100", 1002); }), 3021);
    EXPECT_EQ(errorNumber([&] { add("abc", 1002); }), 3021) << "the food is looked up first";
}

TEST_F(MealSheetTest, ALineWithoutAFoodCannotBeChanged)
{
    add("100", KnownFoods::kRice);
    for (const int number : {-1, 0, 1, 3, 4, 5, 6}) {
        EXPECT_EQ(errorNumber([&] { change(number, 0.5); }), 3021) << number;
    }
    const Food rice = foodNumbered(diary.path(), KnownFoods::kRice);
    EXPECT_EQ(errorNumber([&] { sheet.change(4, rice, 0.5); }), 9);
    EXPECT_EQ(errorNumber([&] { static_cast<void>(sheet.gramsAt(4)); }), 9);
}

TEST_F(MealSheetTest, AQuantityBeyondAllNumbersIsAnOverflowAndAddsNothing)
{
    add("100", KnownFoods::kButter);
    EXPECT_EQ(errorNumber([&] { add("1e999", KnownFoods::kRice); }), 6);
    // 1e306 x 717 kCal is more than the largest number, 1.8e308.
    EXPECT_EQ(errorNumber([&] { add("1e308", KnownFoods::kButter); }), 6);
    EXPECT_EQ(errorNumber([&] { change(2, 1e306); }), 6);
}

TEST_F(MealSheetTest, NumbersAreTypedAndShownAsTheLocaleHasThem)
{
    const LocaleInForce german(kGerman);
    add("12,5", KnownFoods::kRice);
    // 12.5 g: 2.5 g carbohydrate are 10 of 12.5 kCal.
    EXPECT_EQ(line(2), "12,5\tRice,white,ckd\t2,5\t0,1\t0,3");
    EXPECT_EQ(line(4), "Total grams\t2,5\t0,1\t0,3");
    EXPECT_EQ(line(5), "Total kCal 12,5 Cholestrol - 0,0\t80%\t9%\t8%");
    EXPECT_EQ(sheet.gramsAt(2), 12.5);
    EXPECT_EQ(errorNumber([&] { add("12.5", KnownFoods::kRice); }), 13) << "the point is no decimal sign there";
    add("7,25", KnownFoods::kRice);
    EXPECT_EQ(line(3), "7,3\tRice,white,ckd\t1,5\t0,1\t0,1");
    EXPECT_EQ(sheet.gramsAt(3), 7.3);
}

TEST_F(MealSheetTest, WhoShowsTheLinesFindsTheMealWholeAtEachChange)
{
    sheet.lines().setListener([this](reports::ReportList::Change, qsizetype) {
        EXPECT_EQ(sheet.totalCarbohydrate(), 20);
        EXPECT_TRUE(sheet.isFoodLine(2));
    });
    add("100", KnownFoods::kRice);
    change(2, 1);
    sheet.lines().setListener({});
}

TEST_F(MealSheetTest, AChangedQuantityLeavesAllLinesInTheirPlaces)
{
    add("100", KnownFoods::kRice);
    std::vector<qsizetype> rewritten;
    sheet.lines().setListener([&](reports::ReportList::Change change, qsizetype line) {
        EXPECT_EQ(change, reports::ReportList::Change::Rewritten);
        rewritten.push_back(line);
    });
    change(2, 2);
    EXPECT_THAT(rewritten, ElementsAre(2, 4, 5)) << "so that what is selected stays selected";
}

} // namespace
} // namespace meals
