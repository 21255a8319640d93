#include "reports/diary_report.h"

#include "data/new_diary/diary_schema.h"
#include "data/new_diary/foods_csv.h"
#include "jet/database.h"
#include "report_under_test.h"
#include "support/diary_content.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reports {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

enum MealType : int { NoType, Breakfast, Lunch, Dinner, Snack };
enum Food : qint32 { Bread = 1, Apple, Water };

constexpr const char* kReadingColumns = "\t\tTime\tMmol\tDrop\tReading Type";
const std::string kSeparator(57, '=');

/// Doses in 32 bits, as another program may have made the table.
void makeDiaryWithLongDoses(const QString& path)
{
    const auto file = jet::Database::create(jet::posixFileSystem(), path.toStdString(), jet::DateTime{46000});
    for (jet::TableSpec table : data::diaryTables(data::requiredNutrients())) {
        for (jet::ColumnSpec& column : table.columns) {
            column.type = column.name == "Insulin Dosage" ? jet::ColumnType::Long : column.type;
        }
        file->createTable(table);
    }
    for (const jet::SavedQuery& query : data::diaryQueries()) {
        file->createQuery(query);
    }
}

class DiaryTest : public testing::Test, protected ReportUnderTest
{
protected:
    explicit DiaryTest(void (*builder)(ReportState&)) : ReportUnderTest(builder)
    {
        addFood(diary_.path(), Bread, {QStringLiteral("BREAD,WHITE"), 250, 50, 4, 8});
        addFood(diary_.path(), Apple, {QStringLiteral("APPLE,RAW"), 52, 14, 0.2, 0.3});
        addFood(diary_.path(), Water, {QStringLiteral("WATER,TAP"), {}, {}, {}, {}});
    }

    void eat(const char* when, MealType type, std::optional<int> dose, const std::vector<MealRow::Portion>& portions)
    {
        addMeal(diary_.path(), {QString::fromLatin1(when), type, dose, portions});
    }

    /// 100 g of bread at 08:00 with 4 units, 5.0 before it and 7.0 two hours after it.
    void addBreakfast()
    {
        eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
        add("05/03/2002 07:50", 5.0, Meal);
        add("05/03/2002 10:00", 7.0, MealPlus2);
    }

    /// The styles of the lines that begin with this, in their order.
    [[nodiscard]] std::vector<int> stylesOf(const char* beginning) const
    {
        std::vector<int> styles;
        for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
            if (state_.lstView.at(line).text.startsWith(QString::fromLatin1(beginning))) {
                styles.push_back(state_.lstView.at(line).style);
            }
        }
        return styles;
    }

    [[nodiscard]] bool dayIsEmpty() const
    {
        const NutrientTotals& day = state_.dayTotals;
        return day.carbohydrate == 0 && day.protein == 0 && day.fat == 0 && day.energy == 0;
    }
};

class OverallDiary : public DiaryTest
{
protected:
    OverallDiary() : DiaryTest([](ReportState& state) { DisplayDiary(state, true); }) {}
};

class OverallDiarySummary : public DiaryTest
{
protected:
    OverallDiarySummary() : DiaryTest([](ReportState& state) { DisplayDiary(state, false); }) {}
};

class InsulinDiary : public DiaryTest
{
protected:
    InsulinDiary() : DiaryTest(DisplayInsulinDiary) {}
};

// --- What a meal shows ---

TEST_F(OverallDiary, ShowsHeadingFoodsTotalsInsulinReadingsAndTheDay)
{
    addBreakfast();
    build();
    // 200 + 36 + 32 = 268 kCal: 74.6, 13.4 and 11.9 %
    EXPECT_THAT(lines(), ElementsAre("Breakfast\tTuesday 05 March 2002 08:00\tkCal\tCarb\tFat\tProt\tGrams", //
                                     "",                                                                     //
                                     "\tBread,white\t250.0\t50.0\t4.0\t8.0\t100.0",                          //
                                     "",                                                                     //
                                     "\tTotal\t250.0\t50.0\t4.0\t8.0",                                       //
                                     "\tCalc Total kCal/kCal/kCal/kCal\t268.0\t200.0\t36.0\t32.0",           //
                                     "\tTotal %\t268.0\t75%\t13%\t12%",                                      //
                                     "",                                                                     //
                                     "***\tInsulin (I) = 4 units, Carbs (C) = 50.0 g, C/I = 12.50",          //
                                     kReadingColumns,                                                        //
                                     "\t05 Mar 07:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t",                   //
                                     "\t05 Mar 10:00\t2:00\t7.0\t2.0\tMeal + 2\t",                           //
                                     "",                                                                     //
                                     "",                                                                     //
                                     "\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0",                  //
                                     "\tCalc Total kCal/kCal/kCal/kCal\t268.0\t200.0\t36.0\t32.0",           //
                                     "\tDay Total %\t268.0\t75%\t13%\t12%",                                  //
                                     "", kSeparator, ""));
}

TEST_F(OverallDiarySummary, LeavesOutTheFoodsAndTheEmptyLineBelowThem)
{
    addBreakfast();
    build();
    ASSERT_THAT(lines(), SizeIs(18));
    EXPECT_THAT(lines().at(0), StartsWith("Breakfast\t"));
    EXPECT_EQ(lines().at(1), "");
    EXPECT_THAT(lines().at(2), StartsWith("\tTotal\t"));
    EXPECT_THAT(lines().at(3), StartsWith("\tCalc Total"));
    EXPECT_THAT(lines().at(4), StartsWith("\tTotal %"));
    EXPECT_EQ(lines().at(5), "");
    EXPECT_THAT(lines().at(6), StartsWith("***\tInsulin"));
    EXPECT_EQ(lines().at(7), kReadingColumns);
    EXPECT_THAT(lines().at(12), StartsWith("\tDay Total kCal"));
}

TEST_F(InsulinDiary, ShowsNeitherFoodsNorTotalsNorTheDay)
{
    addBreakfast();
    build();
    EXPECT_THAT(lines(), ElementsAre("Breakfast\tTuesday 05 March 2002 08:00\tkCal\tCarb\tFat\tProt\tGrams", //
                                     "",                                                                     //
                                     "***\tInsulin (I) = 4 units, Carbs (C) = 50.0 g, C/I = 12.50",          //
                                     kReadingColumns,                                                        //
                                     "\t05 Mar 07:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t",                   //
                                     "\t05 Mar 10:00\t2:00\t7.0\t2.0\tMeal + 2\t",                           //
                                     ""));
}

TEST_F(OverallDiary, LinesHaveTheirStyles)
{
    addBreakfast();
    add("05/03/2002 11:00", 9.0, MealPlus3);
    build();
    EXPECT_THAT(stylesOf("Breakfast"), ElementsAre(Bold));
    EXPECT_THAT(stylesOf("\tBread"), ElementsAre(Plain));
    EXPECT_THAT(stylesOf("\tTotal\t"), ElementsAre(Plain));
    EXPECT_THAT(stylesOf("\tCalc Total"), ElementsAre(Plain, Bold)) << "the meal's, the day's";
    EXPECT_THAT(stylesOf("\tTotal %"), ElementsAre(Bold));
    EXPECT_THAT(stylesOf("***"), ElementsAre(Plain));
    EXPECT_THAT(stylesOf(kReadingColumns), ElementsAre(Plain));
    EXPECT_THAT(stylesOf("\t05 Mar"), ElementsAre(Green, Blue, Red));
    EXPECT_THAT(stylesOf("\tDay Total"), ElementsAre(Bold, Bold));
    EXPECT_THAT(stylesOf("="), ElementsAre(Plain));
}

TEST_F(OverallDiary, AFoodThatTheTableLacksHasItsNumberAndNoFigures)
{
    addBreakfast();
    eat("05/03/2002 09:00", Snack, 0, {{77, 30.0}, {Apple, 100}});
    build();
    EXPECT_THAT(lines(), Contains("\tFood number 77\t\t\t\t\t30.0"));
    EXPECT_THAT(lines(), Contains("\tTotal\t52.0\t14.0\t0.2\t0.3"));
}

TEST_F(OverallDiary, TwoMealsOfTheSameMinuteAreOneWithTheFirstOnesTypeAndDose)
{
    addBreakfast();
    eat("05/03/2002 08:00", Snack, 0, {{Apple, 100}});
    build();
    EXPECT_THAT(lines(), Contains(StartsWith("Breakfast")));
    EXPECT_THAT(lines(), Not(Contains(StartsWith("Snack"))));
    EXPECT_THAT(lines(), Contains("\tTotal\t302.0\t64.0\t4.2\t8.3"));
    EXPECT_THAT(lines(), Contains("***\tInsulin (I) = 4 units, Carbs (C) = 64.0 g, C/I = 16.00"));
}

TEST_F(OverallDiary, AMealWithoutATypeHasAHeadingThatBeginsWithATab)
{
    addBreakfast();
    eat("05/03/2002 12:00", NoType, 1, {{Bread, 100}});
    build();
    EXPECT_THAT(lines(), Contains(StartsWith("\tTuesday 05 March 2002 12:00\tkCal")));
}

TEST_F(InsulinDiary, AMealWithoutInsulinShowsItsCarbohydrateAlone)
{
    eat("05/03/2002 08:00", Dinner, 0, {{Bread, 45}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(2), "\tNo bosal insulin with this snack, Carbs = 22.5") << "whatever the meal's type is";
}

TEST_F(InsulinDiary, ANegativeDoseIsOne)
{
    eat("05/03/2002 08:00", Dinner, -2, {{Bread, 100}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(2), "***\tInsulin (I) = -2 units, Carbs (C) = 50.0 g, C/I = -25.00");
}

TEST_F(OverallDiary, AFoodOfUnknownWeightAndNutrientsIsAnEmptyLine)
{
    addBreakfast();
    eat("05/03/2002 08:00", Breakfast, 4, {{Water, std::nullopt}});
    build();
    EXPECT_THAT(lines(), Contains("\tWater,tap\t\t\t\t\t"));
    EXPECT_THAT(lines(), Contains("\tTotal\t250.0\t50.0\t4.0\t8.0"));
}

// --- Readings ---

TEST_F(InsulinDiary, AReadingAtExactlyTheMealIsBeforeItByNoTime)
{
    eat("05/03/2002 08:17", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 07:00", 4.0, Meal);
    add("05/03/2002 08:17", 5.0, Meal);
    add("05/03/2002 10:17", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(4), "\t05 Mar 08:17 pre meal by\t0:00\t5.0\t0.0\tMeal\t");
    EXPECT_EQ(lines().at(5), "\t05 Mar 10:17\t2:00\t7.0\t2.0\tMeal + 2\t");
}

TEST_F(InsulinDiary, AReadingAtExactlyALaterMealIsASecondOneBeforeIt)
{
    addBreakfast();
    eat("05/03/2002 12:20", Lunch, 4, {{Bread, 100}});
    add("05/03/2002 12:20", 6.0, Meal);
    build();
    EXPECT_EQ(lines().at(11), "\t05 Mar 10:00 pre meal by\t2:20\t7.0\t0.0\tMeal + 2\t");
    EXPECT_EQ(lines().at(12), "\t05 Mar 12:20 pre meal by\t0:00\t6.0\t-1.0\tMeal\t");
    EXPECT_THAT(stylesOf("\t05 Mar 12:20"), ElementsAre(Green));
}

TEST_F(InsulinDiary, TheReadingsOfTheLastMealEndAtMidnight)
{
    addBreakfast();
    add("05/03/2002 23:59:59", 5.5, PreBed);
    add("06/03/2002", 5.6, Other);
    add("06/03/2002 07:00", 5.7, GettingUp);
    build();
    EXPECT_EQ(lines().at(6), "\t05 Mar 23:59\t15:59\t5.5\t0.5\tPre Bed\t");
    EXPECT_EQ(lines().at(7), "");
    EXPECT_THAT(lines(), SizeIs(8));
}

TEST_F(InsulinDiary, TheReadingsOfALateLastMealEndAtTheSameMidnight)
{
    eat("05/03/2002 23:30", Snack, 0, {{Bread, 100}});
    add("05/03/2002 23:00", 5.0, PreBed);
    add("05/03/2002 23:58", 5.5, PreBed);
    add("06/03/2002 07:00", 5.7, GettingUp);
    build();
    EXPECT_EQ(lines().at(5), "\t05 Mar 23:58\t0:28\t5.5\t0.5\tPre Bed\t");
    EXPECT_THAT(lines(), SizeIs(7));
}

TEST_F(InsulinDiary, TheReadingsOfAnEarlierMealGoOnToTheNextDaysMeal)
{
    addBreakfast();
    add("06/03/2002 06:30", 5.7, GettingUp);
    eat("06/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    build();
    EXPECT_EQ(lines().at(6), "\t06 Mar 06:30\t22:30\t5.7\t0.7\tGetting Up\t");
    EXPECT_EQ(lines().at(12), "\t06 Mar 06:30 pre meal by\t1:30\t5.7\t0.0\tGetting Up\t");
}

TEST_F(InsulinDiary, AReadingWithoutAnotherBetweenTwoMealsIsBeforeBoth)
{
    addBreakfast();
    eat("05/03/2002 08:30", Snack, 0, {{Apple, 100}});
    build();
    EXPECT_EQ(lines().at(4), "\t05 Mar 07:50 pre meal by\t0:10\t5.0\t0.0\tMeal\t");
    EXPECT_EQ(lines().at(5), "");
    EXPECT_EQ(lines().at(10), "\t05 Mar 07:50 pre meal by\t0:40\t5.0\t0.0\tMeal\t");
    EXPECT_EQ(lines().at(11), "\t05 Mar 10:00\t1:30\t7.0\t2.0\tMeal + 2\t");
}

TEST_F(InsulinDiary, AChangeBelowThreeEitherWayIsBlueAndThreeIsRed)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 07:00", 8.0, Meal);
    add("05/03/2002 09:00", 10.5, Other);
    add("05/03/2002 10:00", 11.0, Other);
    add("05/03/2002 11:00", 5.5, Other);
    add("05/03/2002 12:00", 5.0, Other);
    build();
    EXPECT_THAT(stylesOf("\t05 Mar"), ElementsAre(Green, Blue, Red, Blue, Red));
}

TEST_F(InsulinDiary, LevelsAreComparedAsTheyAreStored)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 07:00", 5.2, Meal);
    add("05/03/2002 10:00", 8.2, Other); // 8.2 - 5.2 is 2.9999999999999991
    build();
    EXPECT_EQ(lines().at(5), "\t05 Mar 10:00\t2:00\t8.2\t3.0\tOther\t");
    EXPECT_THAT(stylesOf("\t05 Mar 10:00"), ElementsAre(Blue));
}

TEST_F(InsulinDiary, OfTimesLongerThanADayTheHoursBeyondIt)
{
    eat("05/03/2002 18:00", Dinner, 4, {{Bread, 100}});
    eat("09/03/2002 18:00", Dinner, 4, {{Bread, 100}});
    add("04/03/2002 15:00", 6.0, Other);
    add("06/03/2002 20:30", 7.0, Other);
    build();
    EXPECT_EQ(lines().at(4), "\t04 Mar 15:00 pre meal by\t3:00\t6.0\t0.0\tOther\t");
    EXPECT_EQ(lines().at(5), "\t06 Mar 20:30\t2:30\t7.0\t1.0\tOther\t");
}

TEST_F(InsulinDiary, TheFirstReadingIsTheBaseWhenAllAreLaterThanTheMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 10:00", 9.0, MealPlus2);
    add("05/03/2002 12:00", 6.0, Other);
    build();
    EXPECT_EQ(lines().at(4), "\t05 Mar 10:00\t2:00\t9.0\t0.0\tMeal + 2\t");
    EXPECT_EQ(lines().at(5), "\t05 Mar 12:00\t4:00\t6.0\t-3.0\tOther\t");
    EXPECT_THAT(stylesOf("\t05 Mar"), ElementsAre(Blue, Red));
}

TEST_F(InsulinDiary, AfterTheLastReadingItIsTheOneBeforeEveryMeal)
{
    addBreakfast();
    eat("05/03/2002 12:00", Lunch, 4, {{Bread, 100}});
    eat("05/03/2002 18:00", Dinner, 4, {{Bread, 100}});
    build();
    EXPECT_EQ(lines().at(11), "\t05 Mar 10:00 pre meal by\t2:00\t7.0\t0.0\tMeal + 2\t");
    EXPECT_EQ(lines().at(12), "");
    EXPECT_EQ(lines().at(17), "\t05 Mar 10:00 pre meal by\t8:00\t7.0\t0.0\tMeal + 2\t");
    EXPECT_THAT(lines(), SizeIs(19));
}

TEST_F(InsulinDiary, TheReadingsBeginAfterMidnightOfTheDayBeforeTheFirstMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("04/03/2002", 4.0, Other);
    add("04/03/2002 00:01", 5.0, Other);
    add("05/03/2002 10:00", 7.0, Other);
    filter("05/03/2002", "06/03/2002");
    build();
    EXPECT_EQ(lines().at(4), "\t04 Mar 00:01 pre meal by\t7:59\t5.0\t0.0\tOther\t") << "whatever the filter hides";
}

// --- The list, and the sums that outlive a report ---

TEST_F(OverallDiary, SetsTabStopsAndPrintPositionsAndNoHeading)
{
    addBreakfast();
    state_.ReportTitle = QStringLiteral("of the report before");
    build();
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({40, 210, 240, 270, 300, 330}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({500, 2000, 6000, 7000, 8000, 9000, 10000}));
    EXPECT_EQ(state_.ReportTitle, QStringLiteral("of the report before"));
}

TEST_F(OverallDiary, WithoutAMealInTheFilterOnlyTabStopsAndPrintPositionsChange)
{
    addBreakfast();
    filter("06/03/2002", "07/03/2002");
    state_.lstView.addItem(QStringLiteral("an older report"));
    build();
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({40, 210, 240, 270, 300, 330}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({500, 2000, 6000, 7000, 8000, 9000, 10000}));
    EXPECT_TRUE(state_.ReportTitle.isEmpty());
    EXPECT_TRUE(dayIsEmpty());
}

TEST_F(InsulinDiary, WithoutAMealInTheFilterTheListStaysAsItWas)
{
    addBreakfast();
    filter("06/03/2002", "07/03/2002");
    state_.lstView.addItem(QStringLiteral("an older report"));
    build();
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_EQ(state_.lstView.tabStops(), QList<int>({40, 210, 240, 270, 300, 330}));
    EXPECT_EQ(state_.PrintTabs, QList<double>({500, 2000, 6000, 7000, 8000, 9000, 10000}));
}

TEST_F(OverallDiary, AMealAtTheFiltersBoundsIsOutsideIt)
{
    addBreakfast();
    filter("05/03/2002 08:00", "06/03/2002");
    build();
    EXPECT_THAT(lines(), IsEmpty());
    filter("05/03/2002", "05/03/2002 08:00");
    build();
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(OverallDiary, RunTwiceShowsBothReportsOneBelowTheOther)
{
    addBreakfast();
    build();
    const std::vector<std::string> once = lines();
    build();
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(lines(), twice) << "also the day's sums, which began anew";
}

TEST_F(OverallDiary, ClosesEachDayAndBeginsItsSumsAnew)
{
    addBreakfast();
    eat("05/03/2002 19:00", Dinner, 4, {{Bread, 100}});
    eat("06/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    build();
    EXPECT_EQ(stylesOf("\tDay Total kCal").size(), 2U);
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t500.0\t100.0\t8.0\t16.0"));
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0"));
    EXPECT_TRUE(dayIsEmpty());
}

TEST_F(InsulinDiary, LeavesItsMealsToTheNextOverallDiarysFirstDay)
{
    addBreakfast();
    build();
    build();
    EXPECT_DOUBLE_EQ(state_.dayTotals.energy, 500);
    EXPECT_DOUBLE_EQ(state_.dayTotals.carbohydrate, 100);
    EXPECT_DOUBLE_EQ(state_.dayTotals.fat, 8);
    EXPECT_DOUBLE_EQ(state_.dayTotals.protein, 16);
    DisplayDiary(state_, false);
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t750.0\t150.0\t12.0\t24.0"));
    EXPECT_TRUE(dayIsEmpty());
    DisplayDiary(state_, false);
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t250.0\t50.0\t4.0\t8.0"));
}

TEST_F(OverallDiary, OneThatFailsLeavesThePartOfItsDayToTheNext)
{
    addBreakfast();
    eat("05/03/2002 12:00", Snack, 0, {{Water, 200}});
    EXPECT_EQ(errorOfBuild(), 11);
    EXPECT_DOUBLE_EQ(state_.dayTotals.carbohydrate, 50) << "of the meal before";
    filter("05/03/2002", "05/03/2002 12:00");
    build();
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t500.0\t100.0\t8.0\t16.0"));
    EXPECT_TRUE(dayIsEmpty());
}

// --- Reports that end early ---

TEST_F(OverallDiary, AMealWithoutAnyNutrientEndsItAtTheShares)
{
    eat("05/03/2002 08:00", Snack, 0, {{Water, 250}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    EXPECT_EQ(errorOfBuild(), 11);
    EXPECT_THAT(lines(), ElementsAre("Snack\tTuesday 05 March 2002 08:00\tkCal\tCarb\tFat\tProt\tGrams", "",
                                     "\tWater,tap\t\t\t\t\t250.0", "", "\tTotal\t0.0\t0.0\t0.0\t0.0",
                                     "\tCalc Total kCal/kCal/kCal/kCal\t0.0\t0.0\t0.0\t0.0"));
    EXPECT_THAT(hint(), AllOf(HasSubstr("05 Mar 2002 08:00"), HasSubstr("no carbohydrate, fat or protein"),
                              HasSubstr("choose Insulin Diary")));
    EXPECT_TRUE(dayIsEmpty());
}

TEST_F(OverallDiarySummary, AMealWithoutAnyNutrientEndsItAtTheShares)
{
    eat("05/03/2002 08:00", Snack, 0, {{Water, 250}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    EXPECT_EQ(errorOfBuild(), 11);
    EXPECT_THAT(lines(), SizeIs(4));
}

TEST_F(InsulinDiary, AMealWithoutAnyNutrientIsAnyOther)
{
    eat("05/03/2002 08:00", Lunch, 3, {{Water, 250}});
    add("05/03/2002 07:50", 5.0, Meal);
    add("05/03/2002 10:00", 7.0, MealPlus2);
    build();
    EXPECT_EQ(lines().at(2), "***\tInsulin (I) = 3 units, Carbs (C) = 0.0 g, C/I = 0.00");
    EXPECT_THAT(lines(), SizeIs(7));
}

TEST_F(OverallDiary, ADayWithoutEnergyEndsItAtItsShares)
{
    addBreakfast();
    state_.dayTotals = {-50, -8, -4, -250}; // foods that users enter may have any figures
    EXPECT_EQ(errorOfBuild(), 11);
    EXPECT_EQ(lines().back(), "\tCalc Total kCal/kCal/kCal/kCal\t0.0\t0.0\t0.0\t0.0");
    EXPECT_THAT(hint(), HasSubstr("the day that ends with the one at 05 Mar 2002 08:00"));
}

TEST_F(OverallDiary, WithoutAnyReadingItEndsBeforeTheFirstMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(hint(), "The first meal is at 05 Mar 2002 08:00, and there is no blood sugar reading from the day before "
                      "it on; add one from after that meal and choose the report again.");
}

TEST_F(InsulinDiary, WithoutAnyReadingItEndsBeforeTheFirstMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("03/03/2002 12:00", 5.0, Other);
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_THAT(hint(), HasSubstr("no blood sugar reading from the day before it on"));
}

TEST_F(OverallDiary, OneReadingIsTooFewAlsoWhenItIsLaterThanTheMeal)
{
    eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
    add("05/03/2002 10:00", 7.0, Other);
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_THAT(hint(), AllOf(HasSubstr("05 Mar 2002 08:00"), HasSubstr("only one blood sugar reading")));
}

TEST_F(OverallDiary, WithoutAReadingLaterThanTheFirstMealItEndsBeforeIt)
{
    eat("05/03/2002 08:15", Breakfast, 4, {{Bread, 100}});
    add("04/03/2002 22:00", 5.0, PreBed);
    add("05/03/2002 08:15", 5.5, Meal);
    state_.lstView.addItem(QStringLiteral("an older report"));
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_EQ(hint(), "There is no blood sugar reading later than the first meal, which is at 05 Mar 2002 08:15; add "
                      "one from after that meal and choose the report again.");
}

TEST_F(OverallDiary, WhereAFilterIsInForceAnEarlierDateIsAdvised)
{
    addBreakfast();
    eat("05/03/2002 12:00", Lunch, 4, {{Bread, 100}});
    filter("05/03/2002 10:00", "06/03/2002");
    EXPECT_EQ(errorOfBuild(), 3021);
    EXPECT_THAT(hint(), HasSubstr("set an earlier From date and choose Apply"));
    filter("05/03/2002", "06/03/2002");
    EXPECT_EQ(errorOfBuild(), 0) << "as advised";
}

TEST_F(OverallDiary, AMealWithoutADoseEndsItBeforeItsHeading)
{
    addBreakfast();
    eat("05/03/2002 12:00", Lunch, std::nullopt, {{Bread, 100}});
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_THAT(lines(), Contains(StartsWith("Breakfast")));
    EXPECT_EQ(lines().back(), "");
    EXPECT_THAT(lines(), Not(Contains(StartsWith("Lunch"))));
    EXPECT_THAT(hint(), AllOf(HasSubstr("05 Mar 2002 12:00"), HasSubstr("no insulin dose")));
    EXPECT_DOUBLE_EQ(state_.dayTotals.energy, 250);
}

TEST_F(InsulinDiary, ADoseBeyond16BitsEndsIt)
{
    const QTemporaryDir folder;
    state_.strPath = folder.filePath(QStringLiteral("Nutrition.mdb"));
    makeDiaryWithLongDoses(state_.strPath);
    addMeal(state_.strPath, {QStringLiteral("05/03/2002 08:00"), Breakfast, 32767, {{Bread, 100}}});
    addMeal(state_.strPath, {QStringLiteral("05/03/2002 12:00"), Lunch, 32768, {{Bread, 100}}});
    data::Database database(state_.strPath);
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    for (const char* time : {"05/03/2002 07:00", "05/03/2002 10:00"}) {
        readings.addNew();
        readings.set(QStringLiteral("ReadingTime"), runtime::toDate(QString::fromLatin1(time)));
        readings.set(QStringLiteral("BloodSugerLevel"), 5.0);
        readings.update();
    }
    EXPECT_EQ(errorOfBuild(), 6);
    EXPECT_THAT(lines(), Contains(StartsWith("***\tInsulin (I) = 32767 units")));
    EXPECT_THAT(lines(), Not(Contains(StartsWith("Lunch"))));
}

TEST_F(OverallDiary, AMealWithoutATimeEndsItBeforeAnyLine)
{
    addBreakfast();
    eat("", Lunch, 4, {{Bread, 100}});
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_THAT(hint(), HasSubstr("A meal has no time"));
}

TEST_F(OverallDiary, AFoodWithoutAQuantityEndsItBelowTheFoodsBefore)
{
    addBreakfast();
    eat("05/03/2002 12:00", Lunch, 4, {{Apple, 100}, {Bread, std::nullopt}});
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_EQ(lines().back(), "\tApple,raw\t52.0\t14.0\t0.2\t0.3\t100.0");
    EXPECT_THAT(hint(), AllOf(HasSubstr("05 Mar 2002 12:00"), HasSubstr("no quantity")));
}

TEST_F(InsulinDiary, AReadingWithoutALevelEndsItBelowTheReadingsBefore)
{
    addBreakfast();
    addReadingWithoutLevel("05/03/2002 09:00");
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_THAT(lines(), SizeIs(5));
    EXPECT_THAT(lines().back(), StartsWith("\t05 Mar 07:50 pre meal by"));
    EXPECT_THAT(hint(), AllOf(HasSubstr("05 Mar 2002 09:00"), HasSubstr("no value")));
}

TEST_F(InsulinDiary, ABaseWithoutALevelEndsItBelowTheColumnsOfTheReadings)
{
    addBreakfast();
    addReadingWithoutLevel("05/03/2002 07:55");
    EXPECT_EQ(errorOfBuild(), 94);
    EXPECT_EQ(lines().back(), kReadingColumns);
    EXPECT_THAT(hint(), HasSubstr("05 Mar 2002 07:55"));
}

TEST_F(OverallDiary, WithoutAFileNothingChanges)
{
    state_.lstView.addItem(QStringLiteral("an older report"));
    state_.strPath = QStringLiteral("/no/such/Nutrition.mdb");
    EXPECT_EQ(errorOfBuild(), 3024);
    EXPECT_THAT(lines(), ElementsAre("an older report"));
    EXPECT_TRUE(state_.PrintTabs.isEmpty());
    EXPECT_TRUE(state_.lstView.tabStops().isEmpty());
}

TEST_F(OverallDiary, AFilterThatIsNoDateEndsItBelowTheTabStops)
{
    addBreakfast();
    filter("soon", "later");
    EXPECT_NE(errorOfBuild(), 0);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(state_.PrintTabs.size(), 7);
}

} // namespace
} // namespace reports
