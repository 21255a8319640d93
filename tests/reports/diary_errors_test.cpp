// Diaries that end early: which lines stay, and what the user is told.
#include "reports/diary_under_test.h"

#include "data/new_diary/diary_schema.h"
#include "data/new_diary/foods_csv.h"
#include "jet/database.h"

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
