// Queries: joins, groups, unions, order, names and what is refused.
#include "data/support/query_rows.h"
#include "data/support/small_diary.h"

namespace data::test {
namespace {

class SelectStatement : public SmallDiary
{
protected:
    [[nodiscard]] QString names(const QString& source) const
    {
        Database database = open();
        const Recordset recordset = database.openRecordset(source);
        QStringList list;
        for (int i = 0; i < recordset.fieldCount(); ++i) {
            list.append(recordset.field(i).name);
        }
        return list.join(QStringLiteral(", "));
    }
    [[nodiscard]] FieldType typeOf(const QString& source, int field = 0) const
    {
        Database database = open();
        return database.openRecordset(source).field(field).type;
    }
};

#define SQL(text) QStringLiteral(text)

TEST_F(SelectStatement, ColumnsCalledLikeWordsOfTheLanguageNeedNoBrackets)
{
    EXPECT_EQ(rows(SQL("select Type, Text from BloodSugarReadingTypes where Text like 'meal*' order by Type desc")),
              SQL("4, 'Meal + 3' | 3, 'Meal + 2' | 2, 'Meal'"));
    EXPECT_EQ(rows(SQL("select Desc from MealDetails where When > #1/11/2024# order by Desc desc")),
              SQL("'Porridge' | 'Milk, whole'"));
    EXPECT_EQ(rows(SQL("select [Insulin Dosage] from Meals where [MealNo]=3")), SQL("9"));
}

TEST_F(SelectStatement, AnInnerJoinHasOnlyMatchingRows)
{
    EXPECT_EQ(rows(SQL("SELECT M.MealNo, C.Quantity FROM Meals AS M INNER JOIN MealContent AS C ON M.MealNo = C.MealID "
                       "ORDER BY C.Quantity")),
              SQL("1, 10.0 | 1, 80.0 | 3, 150.0 | 2, 200.0 | 3, 250.0"));
}

TEST_F(SelectStatement, ALeftJoinKeepsRowsWithoutAMatch)
{
    EXPECT_EQ(rows(SQL("SELECT Meals.MealNo, Quantity FROM Meals LEFT JOIN MealContent ON Meals.MealNo = "
                       "MealContent.MealID WHERE MealNo > 2")),
              SQL("3, 150.0 | 3, 250.0 | 4, null"));
}

TEST_F(SelectStatement, ARightJoinIsALeftJoinTheOtherWayRound)
{
    EXPECT_EQ(rows(SQL("SELECT Meals.MealNo, Quantity FROM MealContent RIGHT JOIN Meals ON Meals.MealNo = "
                       "MealContent.MealID WHERE Quantity Is Null")),
              SQL("4, null"));
}

TEST_F(SelectStatement, JoinsNestInParentheses)
{
    const QString joined = SQL("SELECT M.MealNo, N.Shrt_Desc FROM %1 ORDER BY M.MealNo, N.Shrt_Desc");
    const QString expected =
        SQL("1, 'bread' | 1, 'BUTTER,WITH SALT' | 2, 'Milk, whole' | 3, 'Milk, whole' | 3, 'Porridge'");
    EXPECT_EQ(rows(joined.arg(SQL("(Meals AS M INNER JOIN MealContent AS C ON M.MealNo = C.MealID) INNER JOIN "
                                  "NutritionalInformation AS N ON C.NDB_No = N.NDB_No"))),
              expected);
    EXPECT_EQ(rows(joined.arg(SQL("Meals AS M INNER JOIN (MealContent AS C INNER JOIN NutritionalInformation AS N ON "
                                  "C.NDB_No = N.NDB_No) ON M.MealNo = C.MealID"))),
              expected);
    EXPECT_EQ(rows(joined.arg(SQL("Meals M, MealContent C, NutritionalInformation N WHERE M.MealNo = C.MealID AND "
                                  "C.NDB_No = N.NDB_No"))),
              expected);
}

TEST_F(SelectStatement, AnInnerJoinOnTheInsideOfALeftJoinDropsNothingOutside)
{
    EXPECT_EQ(
        rows(SQL("SELECT M.MealNo, N.Shrt_Desc FROM Meals AS M LEFT JOIN (MealContent AS C INNER JOIN "
                 "NutritionalInformation AS N ON C.NDB_No = N.NDB_No) ON M.MealNo = C.MealID WHERE M.MealNo > 2")),
        SQL("3, 'Porridge' | 3, 'Milk, whole' | 4, null"));
}

TEST_F(SelectStatement, StarOfAJoinTellsRepeatedNamesApartByTheirTables)
{
    EXPECT_EQ(names(SQL("SELECT * FROM MealContent, NutritionalInformation")),
              SQL("MealID, MealContent.NDB_No, Quantity, NutritionalInformation.NDB_No, Shrt_Desc, Energ_Kcal, "
                  "Carbohydrt, Recipe"));
    EXPECT_EQ(names(SQL("SELECT C.*, 1 FROM MealContent AS C")), SQL("MealID, NDB_No, Quantity, Expr1003"));
}

TEST_F(SelectStatement, OutputColumnsWithoutANameGetOneByTheirPlace)
{
    EXPECT_EQ(names(SQL("SELECT MealNo, MealNo + 1, Count(*) AS n FROM Meals GROUP BY MealNo")),
              SQL("MealNo, Expr1001, n"));
    EXPECT_EQ(names(SQL("SELECT A.MealNo, B.MealNo FROM Meals AS A, Meals AS B")), SQL("MealNo, B.MealNo"));
    EXPECT_EQ(errorOf(SQL("SELECT MealNo AS a, MealTime AS a FROM Meals")), 3063);
}

TEST_F(SelectStatement, GroupsCountSumAndAverage)
{
    EXPECT_EQ(
        rows(SQL("SELECT MealID, Count(*) AS n, Sum(Quantity) AS total, Avg(Quantity), Min(Quantity), Max(Quantity) "
                 "FROM MealContent GROUP BY MealID")),
        SQL("1, 2, 90.0, 45.0, 10.0, 80.0 | 2, 1, 200.0, 200.0, 200.0, 200.0 | 3, 2, 400.0, 200.0, 150.0, 250.0"));
    EXPECT_EQ(
        rows(SQL("SELECT MealID FROM MealContent GROUP BY MealID HAVING Count(*) > 1 ORDER BY Sum(Quantity) DESC")),
        SQL("3 | 1"));
}

TEST_F(SelectStatement, GroupsOfAnExpressionCanShowIt)
{
    EXPECT_EQ(rows(SQL("SELECT Day(ReadingTime) AS d, Count(*) FROM BloodSugarLevels GROUP BY Day(ReadingTime)")),
              SQL("9, 1 | 10, 3 | 11, 2 | 12, 1"));
    EXPECT_EQ(rows(SQL("SELECT Day(ReadingTime) + 1 FROM BloodSugarLevels GROUP BY Day(ReadingTime)")),
              SQL("10 | 11 | 12 | 13"));
}

TEST_F(SelectStatement, ANumberInGroupByIsAValueAndNoPosition)
{
    EXPECT_EQ(rows(SQL("SELECT MealID, Count(*) FROM MealContent GROUP BY MealID, 2")), SQL("1, 2 | 2, 1 | 3, 2"));
    EXPECT_EQ(rows(SQL("SELECT Sum(Quantity), 1 FROM MealContent GROUP BY 1")), SQL("690.0, 1"));
    EXPECT_EQ(rows(SQL("SELECT Count(*) FROM MealContent WHERE False GROUP BY -7")), QString());
}

TEST_F(SelectStatement, AColumnThatIsNeitherGroupedNorSummedIsRefused)
{
    EXPECT_EQ(errorOf(SQL("SELECT MealNo, Count(*) FROM Meals")), 3122);
    EXPECT_EQ(errorOf(SQL("SELECT MealTime FROM Meals GROUP BY MealNo")), 3122);
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals GROUP BY MealNo HAVING MealTime > 0")), 3122);
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals WHERE Count(*) > 1")), 3075);
    EXPECT_EQ(errorOf(SQL("SELECT * FROM Meals GROUP BY MealNo")), 3075);
}

TEST_F(SelectStatement, AggregatesOfNoRows)
{
    EXPECT_EQ(
        rows(SQL("SELECT Count(*), Sum(Quantity), Max(Quantity), First(Quantity), StDev(Quantity) FROM MealContent "
                 "WHERE MealID = 99")),
        SQL("0, null, null, null, null"));
    EXPECT_EQ(rows(SQL("SELECT MealID, Count(*) FROM MealContent WHERE MealID = 99 GROUP BY MealID")), QString());
}

TEST_F(SelectStatement, AggregatesPassOverNulls)
{
    EXPECT_EQ(rows(SQL("SELECT Count(Comment), Count(*), Sum(Null) FROM BloodSugarLevels")), SQL("5, 7, null"));
    EXPECT_EQ(errorOf(SQL("SELECT Sum(Comment) FROM BloodSugarLevels")), 3464);
}

TEST_F(SelectStatement, FirstAndLastGoByTheOrderOfEntry)
{
    EXPECT_EQ(
        rows(SQL("SELECT First(BloodSugerLevel), Last(BloodSugerLevel), First(ReadingTime) FROM BloodSugarLevels")),
        SQL("5.5, 9.0, 10/01/2024 07:00:00"));
    EXPECT_EQ(rows(SQL("SELECT MealID, First(NDB_No), Last(NDB_No) FROM MealContent GROUP BY MealID")),
              SQL("1, 1003, 1001 | 2, 1002, 1002 | 3, 2000, 1002"));
}

TEST_F(SelectStatement, DeviationsOfASampleAndOfAll)
{
    // 10 and 80: mean 45, squared deviations 2 * 35 * 35 = 2450.
    EXPECT_EQ(rows(SQL("SELECT Var(Quantity), VarP(Quantity), StDevP(Quantity) FROM MealContent WHERE MealID = 1")),
              SQL("2450.0, 1225.0, 35.0"));
    EXPECT_EQ(rows(SQL("SELECT StDev(Quantity), StDevP(Quantity) FROM MealContent WHERE MealID = 2")),
              SQL("null, 0.0"));
}

TEST_F(SelectStatement, DistinctRowsComeOnceAndInOrder)
{
    EXPECT_EQ(rows(SQL("SELECT DISTINCT NDB_No FROM MealContent")), SQL("1001 | 1002 | 1003 | 2000"));
    EXPECT_EQ(rows(SQL("SELECT DISTINCT NDB_No FROM MealContent ORDER BY NDB_No DESC")),
              SQL("2000 | 1003 | 1002 | 1001"));
    EXPECT_EQ(errorOf(SQL("SELECT DISTINCT NDB_No FROM MealContent ORDER BY Quantity")), 3075);
}

TEST_F(SelectStatement, DistinctRowShowsEachRowOfTheTablesShownOnce)
{
    EXPECT_EQ(rows(SQL("SELECT DISTINCTROW Meals.MealNo FROM Meals INNER JOIN MealContent ON Meals.MealNo = "
                       "MealContent.MealID")),
              SQL("1 | 2 | 3"));
    EXPECT_EQ(rows(SQL("SELECT DISTINCTROW MealID FROM MealContent")), SQL("1 | 1 | 2 | 3 | 3"));
}

TEST_F(SelectStatement, TopKeepsWhatIsEqualToTheLast)
{
    EXPECT_EQ(rows(SQL("SELECT TOP 2 BloodSugerNo FROM BloodSugarLevels ORDER BY ReadingTime DESC")), SQL("5 | 4 | 7"));
    EXPECT_EQ(rows(SQL("SELECT TOP 1 BloodSugerNo FROM BloodSugarLevels ORDER BY ReadingTime DESC")), SQL("5"));
    EXPECT_EQ(rows(SQL("SELECT TOP 2 BloodSugerNo FROM BloodSugarLevels")), SQL("1 | 2"));
    EXPECT_EQ(rows(SQL("SELECT TOP 30 PERCENT BloodSugerNo FROM BloodSugarLevels ORDER BY BloodSugerNo")),
              SQL("1 | 2 | 3"));
    EXPECT_EQ(rows(SQL("SELECT TOP 2 * FROM ExcelHistory")).count(u'|'), 1);
}

TEST_F(SelectStatement, AUnionDropsRepetitionsAndUnionAllKeepsThem)
{
    EXPECT_EQ(rows(SQL("SELECT MealID FROM MealContent UNION SELECT MealNo FROM Meals")), SQL("1 | 2 | 3 | 4"));
    EXPECT_EQ(
        rows(SQL("SELECT MealID FROM MealContent WHERE MealID > 2 UNION ALL SELECT MealNo FROM Meals WHERE MealNo < "
                 "3")),
        SQL("3 | 3 | 1 | 2"));
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals UNION SELECT MealID, NDB_No FROM MealContent")), 3307);
}

TEST_F(SelectStatement, AUnionTakesItsOrderAndNamesFromTheFirstPart)
{
    const QString sql =
        SQL("SELECT MealTime AS [When], 'Meal' AS Kind FROM Meals UNION ALL SELECT ReadingTime, 'Reading' "
            "FROM BloodSugarLevels WHERE BloodSugerNo > 5 ORDER BY [When] DESC");
    EXPECT_EQ(names(sql), SQL("When, Kind"));
    EXPECT_EQ(rows(sql),
              SQL("11/01/2024 19:00:00, 'Meal' | 11/01/2024 08:00:00, 'Meal' | 11/01/2024 07:30:00, 'Reading' | "
                  "10/01/2024 16:00:00, 'Meal' | 10/01/2024 08:00:00, 'Meal' | 09/01/2024 22:00:00, 'Reading'"));
}

TEST_F(SelectStatement, AUnionOfTextsDisregardsCase)
{
    EXPECT_EQ(rows(SQL("SELECT 'Milk' FROM Meals UNION SELECT 'MILK' FROM Meals")).count(u'|'), 0);
}

TEST_F(SelectStatement, TextsAreGroupedAndOrderedWithoutRegardToCase)
{
    EXPECT_EQ(rows(SQL("SELECT Shrt_Desc FROM NutritionalInformation ORDER BY Shrt_Desc")),
              SQL("'bread' | 'BUTTER,WITH SALT' | 'Milk, whole' | 'Porridge'"));
    EXPECT_EQ(rows(SQL("SELECT NDB_No FROM NutritionalInformation WHERE Shrt_Desc = 'BREAD'")), SQL("1003"));
    EXPECT_EQ(rows(SQL("SELECT Count(*) FROM NutritionalInformation GROUP BY IIf(Recipe, 'X', IIf(NDB_No = 1001, 'x', "
                       "'y'))")),
              SQL("2 | 2"));
    EXPECT_EQ(rows(SQL("SELECT Max(Shrt_Desc), Min(Shrt_Desc) FROM NutritionalInformation")),
              SQL("'Porridge', 'bread'"));
}

TEST_F(SelectStatement, NullsComeFirstInAscendingOrderAndLastInDescending)
{
    EXPECT_EQ(rows(SQL("SELECT NDB_No FROM NutritionalInformation ORDER BY Carbohydrt")),
              SQL("2000 | 1001 | 1002 | 1003"));
    EXPECT_EQ(rows(SQL("SELECT NDB_No FROM NutritionalInformation ORDER BY Carbohydrt DESC")),
              SQL("1003 | 1002 | 1001 | 2000"));
}

TEST_F(SelectStatement, SubqueriesInListsExistsAndFrom)
{
    EXPECT_EQ(rows(SQL("SELECT MealNo FROM Meals WHERE MealNo Not In (SELECT MealID FROM MealContent)")), SQL("4"));
    EXPECT_EQ(
        rows(SQL("SELECT MealNo FROM Meals WHERE Exists (SELECT * FROM MealContent WHERE MealID = Meals.MealNo And "
                 "NDB_No = 1002)")),
        SQL("2 | 3"));
    EXPECT_EQ(rows(SQL("SELECT D.n FROM (SELECT MealID, Count(*) AS n FROM MealContent GROUP BY MealID) AS D ORDER BY "
                       "D.MealID DESC")),
              SQL("2 | 1 | 2"));
    EXPECT_EQ(
        rows(SQL("SELECT MealNo, (SELECT Sum(Quantity) FROM MealContent AS C WHERE C.MealID = M.MealNo) AS q FROM "
                 "Meals AS M")),
        SQL("1, 90.0 | 2, 200.0 | 3, 400.0 | 4, null"));
}

TEST_F(SelectStatement, ASubqueryThatStandsForAValueHasOneColumn)
{
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals WHERE MealNo In (SELECT Quantity, MealID FROM MealContent)")),
              3306);
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals WHERE MealNo Not In (SELECT * FROM MealContent)")), 3306);
    EXPECT_EQ(errorOf(SQL("SELECT (SELECT TOP 1 MealNo, MealTime FROM Meals) FROM Meals")), 3306);
}

TEST_F(SelectStatement, OrderGoesByPositionAliasOrExpression)
{
    EXPECT_EQ(rows(SQL("SELECT MealNo, [Insulin Dosage] AS d FROM Meals ORDER BY 2")),
              SQL("2, 0 | 1, 7 | 3, 9 | 4, 12"));
    EXPECT_EQ(rows(SQL("SELECT MealNo, [Insulin Dosage] AS d FROM Meals ORDER BY d DESC")),
              SQL("4, 12 | 3, 9 | 1, 7 | 2, 0"));
    EXPECT_EQ(rows(SQL("SELECT MealNo FROM Meals ORDER BY MealNo Mod 2, -MealNo")), SQL("4 | 2 | 3 | 1"));
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals ORDER BY 2")), 3075);
}

TEST_F(SelectStatement, AnAliasCanBeUsedInLaterColumns)
{
    EXPECT_EQ(rows(SQL("SELECT MealNo * 2 AS a, a + 1 AS b FROM Meals WHERE MealNo = 2")), SQL("4, 5"));
    EXPECT_EQ(errorOf(SQL("SELECT b + 1 AS a, a + 1 AS b FROM Meals")), 3102);
    EXPECT_EQ(errorOf(SQL("SELECT MealNo * 2 AS a FROM Meals WHERE a = 4")), 3061);
}

TEST_F(SelectStatement, ComputedNullsComeFirstInAscendingOrderAndLastInDescending)
{
    const QString sql = SQL("SELECT BloodSugerNo + 0 FROM BloodSugarLevels "
                            "ORDER BY IIf(BloodSugerNo = 3, Null, IIf(BloodSugerNo > 5, 0, -BloodSugerNo))");
    EXPECT_EQ(rows(sql), SQL("3 | 5 | 4 | 2 | 1 | 6 | 7"));
    EXPECT_EQ(rows(sql + SQL(" DESC")), SQL("6 | 7 | 1 | 2 | 4 | 5 | 3"));
}

TEST_F(SelectStatement, ComputedTextsAreOrderedWithoutRegardToCase)
{
    EXPECT_EQ(rows(SQL("SELECT MealNo + 0 FROM Meals ORDER BY Mid('bCaB', MealNo, 1)")), SQL("3 | 1 | 4 | 2"));
}

TEST_F(SelectStatement, TrueComesBeforeFalseAndTheNextTermDecidesAmongEqualOnes)
{
    EXPECT_EQ(rows(SQL("SELECT BloodSugerNo + 0 FROM BloodSugarLevels ORDER BY BloodSugerNo < 3, BloodSugerNo DESC")),
              SQL("2 | 1 | 7 | 6 | 5 | 4 | 3"));
}

TEST_F(SelectStatement, AKeyThatNoFoodCanHaveJoinsWithNone)
{
    EXPECT_EQ(rows(SQL("SELECT Count(N.NDB_No) FROM MealContent AS C LEFT JOIN NutritionalInformation AS N "
                       "ON C.NDB_No + 4000000000 = N.NDB_No")),
              SQL("0"));
}

TEST_F(SelectStatement, EqualRowsKeepTheOrderOfEntryWhateverThePlanIs)
{
    EXPECT_EQ(rows(SQL("SELECT BloodSugerNo FROM BloodSugarLevels ORDER BY ReadingTime")),
              SQL("6 | 3 | 1 | 2 | 4 | 7 | 5"));
    EXPECT_EQ(rows(SQL("SELECT BloodSugerNo FROM BloodSugarLevels ORDER BY ReadingTime DESC")),
              SQL("5 | 4 | 7 | 2 | 1 | 3 | 6"));
    EXPECT_EQ(rows(SQL("SELECT BloodSugerNo FROM BloodSugarLevels ORDER BY 1 = 1")), SQL("1 | 2 | 3 | 4 | 5 | 6 | 7"));
    EXPECT_EQ(rows(SQL("SELECT BloodSugerNo FROM BloodSugarLevels WHERE ReadingTime > #1/10/2024 5:00#")),
              SQL("1 | 2 | 4 | 5 | 7"));
}

TEST_F(SelectStatement, ASavedQuerysOrderHoldsWhenItIsSelectedFrom)
{
    addQuery(QueryRows("ByDose")
                 .column(u"MealNo")
                 .column(u"[Insulin Dosage]", u"Dose")
                 .source(u"Meals")
                 .orderBy(u"[Insulin Dosage]", true)
                 .query());
    EXPECT_EQ(rows(SQL("Select * from ByDose where MealNo <> 3")), SQL("4, 12 | 1, 7 | 2, 0"));
    EXPECT_EQ(rows(SQL("Select MealNo from ByDose")), SQL("4 | 3 | 1 | 2"));
    EXPECT_EQ(
        rows(SQL("Select B.MealNo, Quantity from ByDose as B inner join MealContent as C on B.MealNo = C.MealID")),
        SQL("3, 150.0 | 3, 250.0 | 1, 80.0 | 1, 10.0 | 2, 200.0"));
    EXPECT_EQ(rows(SQL("Select MealNo from ByDose order by MealNo")), SQL("1 | 2 | 3 | 4"));
    EXPECT_EQ(rows(SQL("Select MealNo from ByDose order by MealNo > 2")), SQL("4 | 3 | 1 | 2"));
}

TEST_F(SelectStatement, SavedQueriesAreBuiltOnSavedQueries)
{
    addQuery(QueryRows("High").options(QueryRows::kAllColumns).source(u"ExcelHistory").where(u"Mmol>8").query());
    addQuery(QueryRows("HighMornings").column(u"High.Mmol").source(u"High").where(u"Hour([When])<9").query());
    EXPECT_EQ(rows(SQL("HighMornings")), SQL("12.5 | 9.0"));
    EXPECT_EQ(rows(SQL("select count(*) from High, HighMornings")), SQL("6"));
    EXPECT_EQ(names(SQL("High")), SQL("Mmol, When, Type, Comment"));
}

TEST_F(SelectStatement, QueriesThatReferToThemselvesAreRefused)
{
    addQuery(QueryRows("A").options(QueryRows::kAllColumns).source(u"B").query());
    addQuery(QueryRows("B").options(QueryRows::kAllColumns).source(u"A").query());
    EXPECT_EQ(errorOf(SQL("A")), 3102);
}

TEST_F(SelectStatement, AQueryWhoseTableIsMissingSaysSo)
{
    addQuery(QueryRows("Lost").options(QueryRows::kAllColumns).source(u"Gone").query());
    EXPECT_EQ(errorOf(SQL("Lost")), 3078);
    EXPECT_EQ(errorOf(SQL("select * from Nowhere")), 3078);
    EXPECT_EQ(errorOf(SQL("Nowhere")), 3078);
    EXPECT_EQ(errorOf(SQL("select X.* from Meals")), 3078);
}

TEST_F(SelectStatement, NamesWithParenthesesAndBracketsAreFound)
{
    EXPECT_EQ(rows(SQL("[Min(NDB)]")), SQL("1001"));
    EXPECT_EQ(rows(SQL("select MinOfNDB - 1 from [Min(NDB)]")), SQL("1000"));
    EXPECT_EQ(rows(SQL("select * from [min(ndb)];")), SQL("1001"));
}

TEST_F(SelectStatement, TypesOfColumnsGoThroughQueriesAndFunctions)
{
    EXPECT_EQ(typeOf(SQL("LastBldReading")), FieldType::Date);
    EXPECT_EQ(typeOf(SQL("ExcelHistory"), 1), FieldType::Date);
    EXPECT_EQ(typeOf(SQL("ExcelHistory"), 2), FieldType::Text);
    EXPECT_EQ(typeOf(SQL("select IIf(MealNo > 1, MealTime, Null) from Meals")), FieldType::Date);
    EXPECT_EQ(typeOf(SQL("select Recipe from NutritionalInformation")), FieldType::Boolean);
    EXPECT_EQ(typeOf(SQL("select MealTime - 1 from Meals")), FieldType::Date);
    EXPECT_EQ(typeOf(SQL("select MealNo / 2 from Meals")), FieldType::Double);
    EXPECT_EQ(typeOf(SQL("select MealNo = 2 from Meals")), FieldType::Boolean);
    EXPECT_EQ(typeOf(SQL("select Count(*) from Meals")), FieldType::Long);
    EXPECT_EQ(rows(SQL("select Max(Recipe), Min(Recipe) from NutritionalInformation")), SQL("False, True"));
}

TEST_F(SelectStatement, ANameThatSeveralTablesHaveNeedsItsTable)
{
    EXPECT_EQ(errorOf(SQL("SELECT NDB_No FROM MealContent, NutritionalInformation")), 3079);
    EXPECT_EQ(errorOf(SQL("SELECT MealNo FROM Meals WHERE Nothing = 1 And Nobody = 2")), 3061);
}

TEST_F(SelectStatement, OtherStatementsAreRefused)
{
    for (const char* sql :
         {"INSERT INTO Meals (MealNo) VALUES (9)", "UPDATE Meals SET MealNo = 9", "DROP TABLE Meals",
          "PARAMETERS d DateTime; SELECT * FROM Meals WHERE MealTime = d", "CREATE TABLE x (y LONG)",
          "ATTACH DATABASE '/tmp/x' AS y", "PRAGMA encoding", "select * from sqlite_master; select 1",
          "select * from Meals limit 1", "select * from Meals where", "select from Meals", "select * Meals",
          "select * from Meals where MealNo = 1 or", "select * from (Meals", "select * from Meals order MealNo"}) {
        EXPECT_EQ(errorOf(QString::fromLatin1(sql)), 3075) << sql;
    }
    EXPECT_EQ(errorOf(SQL("select * from sqlite_master")), 3078);
    EXPECT_EQ(errorOf(SQL("Delete * from Meals")), 3219);
}

TEST_F(SelectStatement, AStatementBeyondReasonIsTooComplexAndDoesNoHarm)
{
    EXPECT_EQ(errorOf(SQL("select ") + QString(5000, u'(') + u'1' + QString(5000, u')')), 3360);
    EXPECT_EQ(errorOf(SQL("select 1") + SQL(" + 1").repeated(5000)), 3360);
    EXPECT_EQ(errorOf(SQL("select ") + SQL("not ").repeated(5000) + u'1'), 3360);
    EXPECT_EQ(errorOf(SQL("select ") + SQL("-").repeated(5000) + u'1'), 3360);
    EXPECT_EQ(rows(SQL("select MealNo from Meals where MealNo = 1") + SQL(" or MealNo = 2").repeated(300)),
              SQL("1 | 2"));
    EXPECT_EQ(rows(SQL("select '' ") + SQL(" & 'x'").repeated(300) + SQL(" from Meals where MealNo = 1")).size(), 302);
}

} // namespace
} // namespace data::test
