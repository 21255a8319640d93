// The SQL that saved queries are rebuilt to, by worked examples and by the rows that Access itself stored.
#include "jet/database/sample_dump.h"
#include "jet/disk/error.h"
#include "jet/format/utf.h"
#include "jet/schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace jet {
namespace {

using testing::HasSubstr;

/// Puts a query together row by row.
class Query
{
public:
    explicit Query(std::int32_t flags = 0)
    {
        query_.name = "Q";
        query_.flags = flags;
    }

    Query& type(std::int16_t flag, const std::string& name1 = "", const std::string& expression = "")
    {
        return row(1, flag, expression, name1);
    }
    Query& options(std::int16_t flag, const std::string& top = "") { return row(3, flag, "", top); }
    Query& parameter(const std::string& name, std::int16_t typeCode) { return row(2, typeCode, "", name); }
    Query& from(const std::string& table, const std::string& alias = "")
    {
        return row(5, std::nullopt, "", table, alias);
    }
    Query& part(const std::string& sql, const std::string& name) { return row(5, std::nullopt, sql, name); }
    Query& column(const std::string& expression, const std::string& alias = "") { return row(6, 0, expression, alias); }
    Query& column(std::int16_t flag, const std::string& expression, const std::string& alias = "",
                  const std::string& target = "")
    {
        return row(6, flag, expression, alias, target);
    }
    Query& join(std::int16_t kind, const std::string& left, const std::string& right, const std::string& on)
    {
        return row(7, kind, on, left, right);
    }
    Query& where(const std::string& condition) { return row(8, std::nullopt, condition); }
    Query& groupBy(const std::string& expression, std::int16_t flag = 0) { return row(9, flag, expression); }
    Query& having(const std::string& condition) { return row(10, std::nullopt, condition); }
    Query& orderBy(const std::string& expression, bool descending = false)
    {
        return row(11, std::nullopt, expression, descending ? "D" : "");
    }
    Query& row(std::uint8_t attribute, std::optional<std::int16_t> flag, const std::string& expression,
               const std::string& name1 = "", const std::string& name2 = "")
    {
        const auto orNull = [](const std::string& text) {
            return text.empty() ? std::nullopt : std::optional(toUtf16(text));
        };
        query_.rows.push_back(
            {attribute, ++orders_[attribute], flag, orNull(expression), orNull(name1), orNull(name2)});
        return *this;
    }

    [[nodiscard]] std::string sql() const { return sqlOf(query_); }
    SavedQuery& stored() { return query_; }

private:
    SavedQuery query_;
    std::map<std::uint8_t, std::uint32_t> orders_;
};

std::string messageOf(const Query& query)
{
    try {
        return "made " + query.sql();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::Corrupt);
        return error.what();
    }
}

TEST(SavedQuerySql, ASelectOfOneTableBracketsItsNames)
{
    EXPECT_EQ(Query().type(1).options(0).from("Code Types").column("Desc", "When").sql(),
              "SELECT Desc AS [When]\nFROM [Code Types];");
}

TEST(SavedQuerySql, AQueryWithoutTypeAndOptionsIsASelect)
{
    EXPECT_EQ(Query().from("T").column("T.A").sql(), "SELECT T.A\nFROM [T];");
}

TEST(SavedQuerySql, RowsAreTakenInTheirOrderNotAsTheyStand)
{
    Query query;
    query.from("T").column("A").column("B").column("C");
    std::reverse(query.stored().rows.begin(), query.stored().rows.end());
    EXPECT_EQ(query.sql(), "SELECT A, B, C\nFROM [T];");
}

TEST(SavedQuerySql, TheStarOfTheOptionsComesLast)
{
    EXPECT_EQ(Query().options(1).from("T").column("A+1", "Next").sql(), "SELECT A+1 AS [Next], *\nFROM [T];");
}

TEST(SavedQuerySql, DistinctTopAndPercentStandBeforeTheColumns)
{
    EXPECT_EQ(Query().options(2).from("T").column("A").sql(), "SELECT DISTINCT A\nFROM [T];");
    EXPECT_EQ(Query().options(8).from("T").column("A").sql(), "SELECT DISTINCTROW A\nFROM [T];");
    EXPECT_EQ(Query().options(16, "5").from("T").column("A").sql(), "SELECT TOP 5 A\nFROM [T];");
    EXPECT_EQ(Query().options(2 + 16 + 32, "10").from("T").column("A").sql(),
              "SELECT DISTINCT TOP 10 PERCENT A\nFROM [T];");
}

TEST(SavedQuerySql, AllClausesComeInTheirOrder)
{
    EXPECT_EQ(Query()
                  .orderBy("B", true)
                  .orderBy("A")
                  .having("Count(*)>1")
                  .groupBy("A")
                  .groupBy("B")
                  .where("A>0")
                  .from("T")
                  .column("Count(*)", "N")
                  .sql(),
              "SELECT Count(*) AS [N]\nFROM [T]\nWHERE A>0\nGROUP BY A, B\nHAVING Count(*)>1\nORDER BY B DESC, A;");
}

TEST(SavedQuerySql, SourcesThatNoJoinConnectsAreJoinedByCommas)
{
    EXPECT_EQ(Query().from("A").from("B", "C").column("*").sql(), "SELECT *\nFROM [A], [B] AS [C];");
}

TEST(SavedQuerySql, TheTotalsOfALeftJoin)
{
    EXPECT_EQ(Query()
                  .type(1)
                  .options(0)
                  .from("Meals")
                  .from("MealContent")
                  .column("Meals.MealNo")
                  .column("Count(MealContent.NDB_No)", "Foods")
                  .join(2, "Meals", "MealContent", "Meals.MealNo = MealContent.MealID")
                  .groupBy("Meals.MealNo")
                  .orderBy("Meals.MealNo", true)
                  .sql(),
              "SELECT Meals.MealNo, Count(MealContent.NDB_No) AS [Foods]\n"
              "FROM [Meals] LEFT JOIN [MealContent] ON Meals.MealNo = MealContent.MealID\n"
              "GROUP BY Meals.MealNo\nORDER BY Meals.MealNo DESC;");
}

TEST(SavedQuerySql, JoinsNestInTheOrderOfTheirRows)
{
    EXPECT_EQ(Query()
                  .from("A")
                  .from("B")
                  .from("C")
                  .from("D")
                  .column("*")
                  .join(1, "A", "B", "A.x=B.x")
                  .join(3, "C", "D", "C.x=D.x")
                  .join(2, "B", "C", "B.y=C.y")
                  .sql(),
              "SELECT *\nFROM ([A] INNER JOIN [B] ON A.x=B.x) LEFT JOIN ([C] RIGHT JOIN [D] ON C.x=D.x) ON B.y=C.y;");
}

TEST(SavedQuerySql, SeveralJoinRowsOfTheSameTablesAreOneJoin)
{
    EXPECT_EQ(Query()
                  .from("A")
                  .from("B")
                  .column("*")
                  .join(1, "A", "B", "A.x=B.x")
                  .join(1, "A", "B", "A.y=B.y")
                  .join(1, "A", "B", "A.z=B.z")
                  .sql(),
              "SELECT *\nFROM [A] INNER JOIN [B] ON (A.x=B.x) AND (A.y=B.y) AND (A.z=B.z);");
}

TEST(SavedQuerySql, AFurtherConditionGoesToTheJoinThatBringsItsTablesTogether)
{
    EXPECT_EQ(Query()
                  .from("A")
                  .from("B")
                  .from("C")
                  .column("*")
                  .join(1, "A", "B", "A.x=B.x")
                  .join(1, "B", "C", "B.x=C.x")
                  .join(1, "A", "B", "A.y=B.y")
                  .join(1, "A", "C", "A.z=C.z")
                  .sql(),
              "SELECT *\nFROM ([A] INNER JOIN [B] ON (A.x=B.x) AND (A.y=B.y)) INNER JOIN [C] ON (B.x=C.x) AND "
              "(A.z=C.z);");
}

TEST(SavedQuerySql, JoinsNameTablesByAliasAndWithoutRegardToCase)
{
    EXPECT_EQ(Query()
                  .from("People")
                  .from("People", "Boss")
                  .column("*")
                  .join(2, "people", "BOSS", "People.BossId = Boss.Id")
                  .sql(),
              "SELECT *\nFROM [People] LEFT JOIN [People] AS [Boss] ON People.BossId = Boss.Id;");
}

TEST(SavedQuerySql, AJoinedSourceStandsWhereItsFirstTableStood)
{
    EXPECT_EQ(Query().from("A").from("B").from("C").column("*").join(1, "C", "A", "C.x=A.x").sql(),
              "SELECT *\nFROM [C] INNER JOIN [A] ON C.x=A.x, [B];");
}

TEST(SavedQuerySql, AQueryInsideTheQueryIsItsSource)
{
    EXPECT_EQ(Query().row(5, std::nullopt, "SELECT A FROM T;", "", "X").column("X.A").sql(),
              "SELECT X.A\nFROM (SELECT A FROM T) AS [X];");
}

TEST(SavedQuerySql, ParametersAreDeclaredFirst)
{
    EXPECT_EQ(Query().parameter("From when?", 8).parameter("N", 4).from("T").column("A").sql(),
              "PARAMETERS [From when?] DateTime, [N] Long;\nSELECT A\nFROM [T];");
}

TEST(SavedQuerySql, AUnionKeepsItsPartsAndTheirLineBreaks)
{
    Query query(128);
    query.type(9).part("SELECT A FROM T\r\nWHERE A>1\r\n", "X7YZ_____1").part("SELECT B FROM U;\r\n", "X7YZ_____2");
    EXPECT_EQ(Query(query).options(1).sql(), "SELECT A FROM T\r\nWHERE A>1\nUNION ALL SELECT B FROM U;");
    EXPECT_EQ(Query(query).options(3).sql(), "SELECT A FROM T\r\nWHERE A>1\nUNION SELECT B FROM U;");
    EXPECT_EQ(Query(query).options(1).orderBy("[When]", true).sql(),
              "SELECT A FROM T\r\nWHERE A>1\nUNION ALL SELECT B FROM U\nORDER BY [When] DESC;");
}

TEST(SavedQuerySql, TheTypeRowTellsTheKindWhenTheFlagsDoNot)
{
    EXPECT_EQ(Query(0).type(9).part("SELECT 1", "X7YZ_____1").part("SELECT 2", "X7YZ_____2").options(3).sql(),
              "SELECT 1\nUNION SELECT 2;");
}

TEST(SavedQuerySql, AHiddenSelectIsASelect)
{
    EXPECT_EQ(Query(8 + 3).from("T").column("A").sql(), "SELECT A\nFROM [T];");
}

TEST(SavedQuerySql, ADeleteOfWholeRows)
{
    EXPECT_EQ(Query(32).type(5).options(1).from("T").where("A=1").sql(), "DELETE *\nFROM [T]\nWHERE A=1;");
    EXPECT_EQ(Query(32).type(5).from("T").column("T.*").sql(), "DELETE T.*\nFROM [T];");
}

TEST(SavedQuerySql, AnUpdateSetsItsTargets)
{
    EXPECT_EQ(Query(48)
                  .type(4)
                  .from("T")
                  .column(0, "1", "", "T.A")
                  .column(0, "[x]", "", "[T].[B c]")
                  .column(0, "Null", "", "Desc")
                  .where("A Is Null")
                  .sql(),
              "UPDATE [T]\nSET [T].[A] = 1, [T].[B c] = [x], [Desc] = Null\nWHERE A Is Null;");
}

TEST(SavedQuerySql, AnAppendTakesASelectOrValues)
{
    EXPECT_EQ(Query(64).type(3, "To").from("T").column(0, "A", "", "X").column(0, "B", "", "Y").sql(),
              "INSERT INTO [To] ([X], [Y])\nSELECT A, B\nFROM [T];");
    EXPECT_EQ(Query(64).type(3, "To").column(-32768, "1", "", "X").column(-32768, "'a'", "", "Y").sql(),
              "INSERT INTO [To] ([X], [Y])\nVALUES (1, 'a');");
}

TEST(SavedQuerySql, AMakeTableNamesItsTargetAfterTheColumns)
{
    EXPECT_EQ(Query(80).type(2, "New one").from("T").column("A").where("A>1").sql(),
              "SELECT A\nINTO [New one]\nFROM [T]\nWHERE A>1;");
}

TEST(SavedQuerySql, ACrosstabGroupsByItsRowHeadingsAlone)
{
    EXPECT_EQ(Query(16)
                  .type(6)
                  .from("T")
                  .column(0, "Sum(N)", "Total")
                  .column(2, "Who")
                  .column(1, "Month")
                  .groupBy("Who", 2)
                  .groupBy("Month", 1)
                  .sql(),
              "TRANSFORM Sum(N) AS [Total]\nSELECT Who\nFROM [T]\nGROUP BY Who\nPIVOT Month;");
}

TEST(SavedQuerySql, StatementsThatAreStoredWholeComeBackWithoutTheirEndMark)
{
    Query definition(96);
    definition.type(7, "", "DROP TABLE T;");
    definition.stored().rows.front().expression->push_back(u'\0');
    EXPECT_EQ(definition.sql(), "DROP TABLE T;");
    EXPECT_EQ(Query(112).type(8, "ODBC;", "select 1").sql(), "select 1");
}

TEST(SavedQuerySql, RowsThatMakeNoStatementAreRefusedWithTheQuerysName)
{
    EXPECT_EQ(messageOf(Query().from("T")), "The saved query \"Q\" selects no columns");
    EXPECT_EQ(messageOf(Query(0x90).from("T").column("A")), "The saved query \"Q\" is of an unknown kind");
    EXPECT_EQ(messageOf(Query().type(77).from("T").column("A")), "The saved query \"Q\" is of an unknown kind");
    EXPECT_EQ(messageOf(Query().from("T").column("A").join(1, "T", "U", "x")),
              "The saved query \"Q\" joins \"U\", which is not one of its sources");
    EXPECT_EQ(messageOf(Query().from("T").column("A").join(1, "T", "T", "x")),
              "The saved query \"Q\" joins \"T\" to itself");
    EXPECT_EQ(messageOf(Query().from("T").from("U").column("A").join(9, "T", "U", "x")),
              "The saved query \"Q\" has a join of an unknown kind");
    EXPECT_EQ(messageOf(Query().from("T").from("U").column("A").join(1, "T", "U", "x").join(2, "T", "U", "y")),
              "The saved query \"Q\" joins \"T\" and \"U\" in two ways");
    EXPECT_EQ(messageOf(Query().from("T").column("A", "a]b")),
              "The saved query \"Q\" has a name that cannot be written: \"a]b\"");
    EXPECT_EQ(messageOf(Query().options(16, "x").from("T").column("A")),
              "The saved query \"Q\" says TOP without a number");
    EXPECT_EQ(messageOf(Query().from("T").row(6, 0, "", "A")),
              "The saved query \"Q\" has a row without its expression");
    EXPECT_EQ(messageOf(Query(128).options(1)), "The saved query \"Q\" is a union of nothing");
    EXPECT_EQ(messageOf(Query(48).from("T")), "The saved query \"Q\" updates nothing");
    EXPECT_EQ(messageOf(Query(32).column("T.*")), "The saved query \"Q\" deletes from no table");
    EXPECT_EQ(messageOf(Query(112)), "The saved query \"Q\" has lost its statement");
    EXPECT_EQ(messageOf(Query(16).from("T").column(2, "A")),
              "The saved query \"Q\" is a crosstab without cells, row headings or column headings");
    EXPECT_EQ(messageOf(Query(64).from("T").column("A")),
              "The saved query \"Q\" has a name that cannot be written: \"\"");
}

TEST(SavedQuerySql, AQueryOfThousandsOfSourcesIsRefusedSoon)
{
    Query query;
    query.column("*");
    for (int i = 0; i < 5000; ++i) {
        query.from("T" + std::to_string(i));
    }
    EXPECT_EQ(messageOf(query), "The saved query \"Q\" has more sources than a query can have");
}

// --- Queries that Access stored ---------------------------------------------------------------------------------

std::optional<std::u16string> textOrNull(const std::string& field)
{
    return field == "\\N" ? std::nullopt : std::optional(toUtf16(test::unescaped(field)));
}

/// The saved queries of a dump that includes the system tables, straight from the rows that it lists.
std::map<std::string, SavedQuery> queriesOf(const test::Dump& dump)
{
    std::map<std::string, SavedQuery> byId;
    // Columns of MSysObjects: Id, ParentId, Name, Type, DateCreate, DateUpdate, Owner, Flags ...
    for (const std::string& line : dump.find("MSysObjects")->rows) {
        const test::Fields row = test::split(line, '\t');
        if (row.at(3) == "5") {
            byId[row.at(0)].name = test::unescaped(row.at(2));
            byId[row.at(0)].flags = std::stoi(row.at(7));
        }
    }
    // Columns of MSysQueries: Attribute, Expression, Flag, LvExtra, Name1, Name2, ObjectId, Order
    for (const std::string& line : dump.find("MSysQueries")->rows) {
        const test::Fields row = test::split(line, '\t');
        QueryRow stored;
        stored.attribute = static_cast<std::uint8_t>(std::stoi(row.at(0)));
        stored.expression = textOrNull(row.at(1));
        if (row.at(2) != "\\N") {
            stored.flag = static_cast<std::int16_t>(std::stoi(row.at(2)));
        }
        stored.name1 = textOrNull(row.at(4));
        stored.name2 = textOrNull(row.at(5));
        stored.order = static_cast<std::uint32_t>(std::stoul(row.at(7), nullptr, 16));
        byId.at(row.at(6)).rows.push_back(stored);
    }
    std::map<std::string, SavedQuery> byName;
    for (auto& [id, query] : byId) {
        byName[query.name] = query;
    }
    return byName;
}

TEST(SavedQuerySql, QueriesOfAccessMeanWhatAnIndependentReaderMakesOfThem)
{
    const std::filesystem::path folder = QUILLON_JET_SAMPLES;
    if (!std::filesystem::exists(folder / "queryTestV2000.mdb.system.txt")) {
        GTEST_SKIP() << "no sample files";
    }
    const auto stored = queriesOf(test::readDump(folder / "queryTestV2000.mdb.system.txt"));
    const auto dumped = test::readDump(folder / "queryTestV2000.mdb.dump.txt").queries;
    ASSERT_EQ(dumped.size(), 9U);
    for (const test::Fields& query : dumped) {
        SCOPED_TRACE(query.at(0));
        ASSERT_TRUE(stored.contains(query.at(0)));
        EXPECT_EQ(test::essence(sqlOf(stored.at(query.at(0)))), test::essence(test::unescaped(query.at(2))));
    }
}

TEST(SavedQuerySql, TheNineKindsOfAccessWrittenOut)
{
    const std::filesystem::path path = std::filesystem::path(QUILLON_JET_SAMPLES) / "queryTestV2000.mdb.system.txt";
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no sample files";
    }
    const auto stored = queriesOf(test::readDump(path));
    EXPECT_EQ(sqlOf(stored.at("SelectQuery")),
              "SELECT DISTINCT Table1.*, Table2.col1, Table2.col2, Table3.col3\n"
              "FROM ([Table1] LEFT JOIN [Table3] ON Table1.col1 = Table3.col1) INNER JOIN [Table2] ON "
              "(Table3.col1 = Table2.col1) AND (Table3.col1 = Table2.col2)\n"
              "WHERE (((Table2.col2)=\"foo\" Or (Table2.col2) In (\"buzz\",\"bazz\")))\nORDER BY Table2.col1;");
    EXPECT_EQ(sqlOf(stored.at("UpdateQuery")),
              "PARAMETERS [User Name] Text;\nUPDATE [Table1]\nSET [Table1].[col1] = \"foo\", [Table1].[col2] = "
              "[Table2].[col3], [Table2].[col1] = [User Name]\nWHERE ((([Table2].[col1]) Is Not Null));");
    EXPECT_THAT(sqlOf(stored.at("MakeTableQuery")),
                HasSubstr("FROM ([Table2] INNER JOIN [Table1] ON Table2.col1 = Table1.col2) RIGHT JOIN [Table3] ON "
                          "Table1.col2 = Table3.col3"));
}

} // namespace
} // namespace jet
