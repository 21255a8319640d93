// The SQL texts that the program issues, exactly as it issues them.
#include "data/support/small_diary.h"

#include "runtime/run_time_error.h"

namespace data::test {
namespace {

class IssuedSql : public SmallDiary
{
};

TEST_F(IssuedSql, AnEmptyRecordsetForANewReading)
{
    Database database = open();
    Recordset readings =
        database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = -1"));
    EXPECT_TRUE(readings.bof());
    EXPECT_TRUE(readings.eof());
    EXPECT_TRUE(readings.isUpdatable());
}

TEST_F(IssuedSql, TheHistoryByNameHasAllReadingsInOrderOfTime)
{
    EXPECT_EQ(rows(QStringLiteral("ExcelHistory")),
              QStringLiteral("7.0, 09/01/2024 22:00:00, 'Pre Bed', null | "
                             "4.0, 10/01/2024 00:00:00, 'Unclassified', '' | "
                             "5.5, 10/01/2024 07:00:00, 'Getting Up', 'before breakfast' | "
                             "8.25, 10/01/2024 10:00:00, 'Meal + 2', null | "
                             "12.5, 11/01/2024 07:30:00, 'Getting Up', 'It's high' | "
                             "9.0, 11/01/2024 07:30:00, 'Other', 'same time as 4' | "
                             "6.0, 12/01/2024 00:00:00, 'Meal', '50% of [it]'"));
}

TEST_F(IssuedSql, TheHistoryWithAnEmptyFilterAsASelectIsTheSame)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from ExcelHistory ")), rows(QStringLiteral("ExcelHistory")));
}

TEST_F(IssuedSql, BothBoundsOfTheFilterAreExclusiveSoMidnightOfTheFromDayIsOut)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from ExcelHistory where When > Cdate('10/01/2024') and When < "
                                  "Cdate('12/01/2024')")),
              QStringLiteral("5.5, 10/01/2024 07:00:00, 'Getting Up', 'before breakfast' | "
                             "8.25, 10/01/2024 10:00:00, 'Meal + 2', null | "
                             "12.5, 11/01/2024 07:30:00, 'Getting Up', 'It's high' | "
                             "9.0, 11/01/2024 07:30:00, 'Other', 'same time as 4'"));
}

TEST_F(IssuedSql, ReadingsOnTheToDayAreOutUnlessTheToFieldCarriesATime)
{
    const QString filter = QStringLiteral("Select * from ExcelHistory where When > Cdate('10/01/2024') and When < "
                                          "Cdate('%1')");
    EXPECT_EQ(rows(filter.arg(QStringLiteral("11/01/2024"))).count(u'|'), 1);
    EXPECT_EQ(rows(filter.arg(QStringLiteral("11/01/2024 07:31"))).count(u'|'), 3);
    EXPECT_EQ(rows(filter.arg(QStringLiteral("11/01/2024 07:30"))).count(u'|'), 1);
}

TEST_F(IssuedSql, TheHistoryAfterADayWithItsMonthInLetters)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from ExcelHistory where When > Cdate('11/jan/2024')")).count(u'|'), 2);
}

TEST_F(IssuedSql, TheMealsInsideTheFilterWithTheirFoodsAsStored)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from MealDetails where When > Cdate('10/01/2024') and When < "
                                  "Cdate('11/01/2024')")),
              QStringLiteral("10/01/2024 08:00:00, 'Breakfast', 7, 80.0, 'bread', 212.8, 39.2 | "
                             "10/01/2024 08:00:00, 'Breakfast', 7, 10.0, 'BUTTER,WITH SALT', 71.7, 0.006 | "
                             "10/01/2024 16:00:00, 'Snack', 0, 200.0, 'Milk, whole', 122.0, 9.6"));
}

TEST_F(IssuedSql, AMealWithoutATypeReadsAsAnEmptyText)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from MealDetails where When > Cdate('11/01/2024')")),
              QStringLiteral("11/01/2024 08:00:00, '', 9, 150.0, 'Porridge', 105.0, null | "
                             "11/01/2024 08:00:00, '', 9, 250.0, 'Milk, whole', 152.5, 12.0"));
}

TEST_F(IssuedSql, TheStoredMealsByTime)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from ExistingMeals order by MTime")),
              QStringLiteral("10/01/2024 08:00:00, 1, 1, 7 | 10/01/2024 16:00:00, 4, 2, 0 | "
                             "11/01/2024 08:00:00, 0, 3, 9 | 11/01/2024 19:00:00, 3, 4, 12"));
}

TEST_F(IssuedSql, EmptyRecordsetsForANewMealItsFoodsAndANewFood)
{
    Database database = open();
    for (const char* sql :
         {"Select * from Meals where MealNo = -999999", "Select * from MealContent where MealID = -999999",
          "Select * from NutritionalInformation where NDB_No = -999999"}) {
        const Recordset recordset = database.openRecordset(QString::fromLatin1(sql));
        EXPECT_TRUE(recordset.eof()) << sql;
        EXPECT_TRUE(recordset.isUpdatable()) << sql;
        EXPECT_EQ(recordset.recordCount(), 0) << sql;
    }
}

TEST_F(IssuedSql, TheFoodsOfAMeal)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from MealContent where MealID = 1")),
              QStringLiteral("1, 1003, 80.0 | 1, 1001, 10.0"));
}

TEST_F(IssuedSql, AMealIsDeletedAndThenItsFoods)
{
    Database database = open();
    EXPECT_EQ(database.execute(QStringLiteral("Delete * from Meals where MealNo = 1")), 1);
    EXPECT_EQ(database.execute(QStringLiteral("Delete * from MealContent where MealID =1")), 2);
    database.close();
    EXPECT_EQ(rows(QStringLiteral("Meals")).count(u'|'), 2);
    EXPECT_EQ(rows(QStringLiteral("MealContent")), QStringLiteral("2, 1002, 200.0 | 3, 2000, 150.0 | 3, 1002, 250.0"));
}

TEST_F(IssuedSql, OneFoodByItsNumber)
{
    EXPECT_EQ(rows(QStringLiteral("Select * from NutritionalInformation where NDB_No = 2000")),
              QStringLiteral("2000, 'Porridge', 70.0, null, True"));
    EXPECT_EQ(rows(QStringLiteral("Select * from NutritionalInformation where NDB_No = 7")), QString());
}

TEST_F(IssuedSql, FoodsByAPartOfTheirNameInEitherCase)
{
    const QString search = QStringLiteral("Select * from NutritionalInformation where Shrt_Desc like '*%1*'");
    EXPECT_EQ(rows(search.arg(QStringLiteral("b"))).count(u'|'), 1);
    EXPECT_TRUE(rows(search.arg(QStringLiteral("utter"))).startsWith(QStringLiteral("1001,")));
    EXPECT_TRUE(rows(search.arg(QStringLiteral("MILK"))).startsWith(QStringLiteral("1002,")));
    EXPECT_EQ(rows(search.arg(QString())).count(u'|'), 3);
}

TEST_F(IssuedSql, AnApostropheInTheSearchTextIsASyntaxError)
{
    EXPECT_EQ(errorOf(QStringLiteral("Select * from NutritionalInformation where Shrt_Desc like '*it's*'")), 3075);
}

TEST_F(IssuedSql, TheCodeListTheLastReadingAndTheLeastFoodNumberByName)
{
    EXPECT_TRUE(
        rows(QStringLiteral("BloodSugarReadingTypes")).startsWith(QStringLiteral("1, 'Getting Up' | 2, 'Meal'")));
    EXPECT_EQ(rows(QStringLiteral("LastBldReading")), QStringLiteral("12/01/2024 00:00:00"));
    EXPECT_EQ(rows(QStringLiteral("Min(NDB)")), QStringLiteral("1001"));
}

TEST_F(IssuedSql, AMalformedDateInTheFilterIsATypeMismatch)
{
    EXPECT_EQ(errorOf(QStringLiteral("Select * from ExcelHistory where When > Cdate('yesterday')")), 13);
    EXPECT_EQ(errorOf(QStringLiteral("Select * from ExcelHistory where When > Cdate('')")), 13);
    EXPECT_EQ(errorOf(QStringLiteral("Select * from ExcelHistory where When > Cdate('01/13/2024')")), 13);
}

TEST_F(IssuedSql, AMalformedDateIsReportedThoughThereIsNoReading)
{
    Database database = open();
    database.execute(QStringLiteral("delete from BloodSugarLevels"));
    try {
        static_cast<void>(database.openRecordset(QStringLiteral("Select * from ExcelHistory where When > Cdate('x')")));
        FAIL();
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 13);
    }
}

} // namespace
} // namespace data::test
