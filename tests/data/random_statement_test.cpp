// Statements made up at random from a grammar: whatever they mean, they end in rows or in one of the errors that a
// statement may have, and the translation is always one that SQLite accepts.
#include "data/support/small_diary.h"

#include "runtime/run_time_error.h"

#include <algorithm>
#include <random>
#include <set>

namespace data::test {
namespace {

class Maker
{
public:
    explicit Maker(unsigned seed) : random_(seed) {}

    QString query(int depth)
    {
        const int parts = depth > 0 && oneIn(5) ? 2 : 1;
        QString sql = select(depth);
        for (int i = 1; i < parts; ++i) {
            sql += pick({" UNION ", " UNION ALL "}) + select(depth);
        }
        if (oneIn(2)) {
            sql += " ORDER BY " + (oneIn(2) ? QStringLiteral("1") : expression(depth)) + pick({"", " DESC"});
        }
        return sql;
    }

    /// Words of the dialect in any order.
    QString noise()
    {
        QString sql = pick({"SELECT ", "DELETE ", "( "});
        for (int i = number(12); i >= 0; --i) {
            sql += pick({"SELECT", "*",      "FROM",   "Meals",   "WHERE",    "(",   ")",    ",",          "=",
                         "Like",   "'a'",    "5",      "Not",     "In",       "Is",  "Null", "AS",         "Desc",
                         "ORDER",  "BY",     "GROUP",  "Between", "And",      "[x]", ".",    "#1/1/2024#", "UNION",
                         "JOIN",   "LEFT",   "ON",     "TOP",     "DISTINCT", "&",   "^",    "-",          "Count",
                         "IIf",    "Exists", "MealNo", "\\",      "Mod"}) +
                   u' ';
        }
        return sql;
    }

private:
    int number(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most + 1)); }
    bool oneIn(int count) { return number(count - 1) == 0; }
    QString pick(const std::vector<const char*>& choices)
    {
        return QString::fromLatin1(choices[static_cast<std::size_t>(number(static_cast<int>(choices.size()) - 1))]);
    }

    QString select(int depth)
    {
        const bool grouped = oneIn(4);
        QString sql = "SELECT " + pick({"", "", "DISTINCT ", "DISTINCTROW ", "TOP 3 ", "TOP 20 PERCENT "});
        if (grouped) {
            const QString key = expression(1);
            return sql + key + " AS g, " +
                   pick({"Count(*)", "Sum(Quantity)", "First(MealNo)", "Max(MealTime)", "StDev(Quantity)"}) + " FROM " +
                   source(depth) + " GROUP BY " + key + (oneIn(2) ? QStringLiteral(" HAVING Count(*) > 1") : QString());
        }
        sql +=
            oneIn(3) ? QStringLiteral("*") : expression(depth) + (oneIn(2) ? " AS a, " + expression(depth) : QString());
        sql += " FROM " + source(depth);
        return oneIn(2) ? sql + " WHERE " + expression(depth) : sql;
    }

    /// MealNo, MealTime, Quantity and MealDescription are columns of every choice.
    QString source(int depth)
    {
        const QString joined =
            pick({"Meals AS M INNER JOIN MealContent AS C ON M.MealNo = C.MealID",
                  "Meals AS M LEFT JOIN MealContent AS C ON M.MealNo = C.MealID",
                  "MealContent AS C RIGHT JOIN Meals AS M ON M.MealNo = C.MealID",
                  "(Meals AS M LEFT JOIN MealContent AS C ON M.MealNo = C.MealID) LEFT JOIN "
                  "NutritionalInformation AS N ON N.NDB_No = C.NDB_No",
                  "Meals AS M LEFT JOIN (MealContent AS C INNER JOIN NutritionalInformation AS N ON N.NDB_No "
                  "= C.NDB_No) ON M.MealNo = C.MealID",
                  "Meals AS M, MealContent AS C"});
        if (depth <= 0 || oneIn(3)) {
            return joined;
        }
        return "(SELECT MealNo, MealTime, Quantity, MealDescription FROM " + source(depth - 1) +
               pick({"", " ORDER BY MealTime DESC"}) + ") AS D";
    }

    QString expression(int depth)
    {
        if (depth <= 0) {
            return pick({"MealNo", "MealTime", "Quantity", "MealDescription", "5", "2.5", "'a'", "Null", "True",
                         "#1/10/2024#"});
        }
        const QString left = expression(depth - 1);
        const QString right = expression(depth - 1);
        switch (number(13)) {
        case 0:
            return left + pick({" + ", " - ", " * ", " & "}) + right;
        case 1:
            return left + pick({" / ", " \\ ", " Mod ", " ^ "}) + right;
        case 2:
        case 3:
            return left + pick({" = ", " <> ", " < ", " >= ", " Like "}) + right;
        case 4:
            return "(" + left + ")" + pick({" And ", " Or ", " Xor ", " Eqv ", " Imp "}) + "(" + right + ")";
        case 5:
            return "Not " + left;
        case 6:
            return "IIf(" + left + ", " + right + ", " + expression(depth - 1) + ")";
        case 7:
            return "(" + left + pick({") Between ", ") Not Between "}) + "(" + right + ") And 7";
        case 8:
            return left + pick({" In (", " Not In ("}) + right + ", 3)";
        case 9:
            return left + " In (SELECT MealNo FROM Meals WHERE " + expression(0) + " Is Not Null)";
        case 10:
            return "Exists (SELECT * FROM MealContent AS X WHERE X.MealID = " + left + ")";
        case 11:
            return "Nz(" + left + ", " + right + ")";
        case 12:
            return pick({"Len(", "Year(", "Format(", "IsNull(", "Abs("}) + left + ")";
        default:
            return "-(" + left + ")";
        }
    }

    std::mt19937 random_;
};

class RandomStatements : public SmallDiary
{
};

TEST_F(RandomStatements, AreTranslatedToWhatSqliteAccepts)
{
    // Mistakes in the values: types that do not go together, results out of range, ambiguity, grouping, DISTINCT with
    // ORDER BY.
    const std::set<int> allowed{5, 6, 11, 13, 93, 94, 3061, 3063, 3075, 3079, 3102, 3122, 3307, 3464};
    Database database = open();
    int succeeded = 0;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        const QString sql = Maker(seed).query(1 + static_cast<int>(seed % 2));
        try {
            Recordset recordset = database.openRecordset(sql);
            static_cast<void>(rowsOf(recordset));
            ++succeeded;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_TRUE(allowed.contains(error.number())) << seed << ": " << error.text().toStdString() << "\n"
                                                          << sql.toStdString();
        }
    }
    EXPECT_GT(succeeded, 1000);
}

TEST_F(RandomStatements, WordsInAnyOrderAreAnErrorOrAStatementAndNothingElse)
{
    Database database = open();
    int refused = 0;
    for (unsigned seed = 0; seed < 5000; ++seed) {
        const QString sql = Maker(seed).noise();
        try {
            Recordset recordset = database.openRecordset(sql);
        } catch (const runtime::RunTimeError& error) {
            EXPECT_NE(error.number(), 3360) << sql.toStdString() << error.text().toStdString();
            ++refused;
        }
    }
    EXPECT_GT(refused, 4000);
}

TEST_F(RandomStatements, CutAnywhereAStatementIsRefusedOrStillOne)
{
    Database database = open();
    const QString sql = QStringLiteral(
        "SELECT TOP 5 M.MealNo AS [a b], IIf(IsNull(Q.Quantity), \"x\"\"y\", 'z' & #1/2/2024#) FROM (Meals AS M "
        "LEFT JOIN MealContent AS Q ON M.MealNo = Q.MealID) WHERE M.MealNo Not In (SELECT 1 FROM Meals) And "
        "M.MealTime Between #1/1/2024# And Now() ORDER BY M.MealNo DESC, 2;");
    for (qsizetype length = 0; length <= sql.size(); ++length) {
        try {
            Recordset recordset = database.openRecordset(sql.left(length));
        } catch (const runtime::RunTimeError& error) {
            EXPECT_TRUE(error.number() == 3075 || error.number() == 3061 || error.number() == 3078 ||
                        error.number() == 3085 || error.number() == 3079)
                << sql.left(length).toStdString() << error.text().toStdString();
        }
    }
}

} // namespace
} // namespace data::test
