// Files that other programs wrote: their saved queries against figures that come from mdbtools' export and SQL written
// by hand for SQLite's own tables.
#include "data/support/small_diary.h"
#include "runtime/run_time_error.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <memory>

namespace data::test {
namespace {

QString sample(const char* name)
{
    return QStringLiteral(QUILLON_JET_SAMPLES) + u'/' + QString::fromLatin1(name);
}

/// The sample's tables as mdb-export writes them, in a SQLite database of their own; dates as texts.
class Export
{
public:
    explicit Export(const QString& path) : path_(path)
    {
        sqlite3* connection = nullptr;
        sqlite3_open(":memory:", &connection);
        connection_.reset(connection);
    }

    void load(const char* table)
    {
        QProcess process;
        process.start(QStringLiteral(QUILLON_MDB_EXPORT),
                      {QStringLiteral("-I"), QStringLiteral("sqlite"), QStringLiteral("-T"),
                       QStringLiteral("%Y-%m-%d %H:%M:%S"), path_, QString::fromLatin1(table)});
        process.waitForFinished();
        const QByteArray inserts = process.readAllStandardOutput();
        run(QByteArray("BEGIN;") + inserts + "COMMIT;");
    }

    void run(const QByteArray& sql)
    {
        char* message = nullptr;
        if (sqlite3_exec(connection_.get(), sql.constData(), nullptr, nullptr, &message) != SQLITE_OK) {
            ADD_FAILURE() << message;
            sqlite3_free(message);
        }
    }

    /// Rows as textOf and rowsOf would show them; the SQL yields texts.
    QString rows(const char* sql)
    {
        QStringList result;
        const int code = sqlite3_exec(
            connection_.get(), sql,
            [](void* list, int count, char** values, char**) {
                QStringList row;
                for (int i = 0; i < count; ++i) {
                    row.append(values[i] == nullptr ? QStringLiteral("null") : QString::fromUtf8(values[i]));
                }
                static_cast<QStringList*>(list)->append(row.join(QStringLiteral(", ")));
                return 0;
            },
            &result, nullptr);
        EXPECT_EQ(code, SQLITE_OK) << sqlite3_errmsg(connection_.get());
        return result.join(QStringLiteral(" | "));
    }

private:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    QString path_;
    std::unique_ptr<sqlite3, Close> connection_;
};

class DiaryOfThirtyDays : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFile::exists(sample("diary-30.mdb")) || !QFile::exists(QStringLiteral(QUILLON_MDB_EXPORT))) {
            GTEST_SKIP() << "needs the sample files and mdbtools";
        }
        ASSERT_TRUE(QFile::copy(sample("diary-30.mdb"), path_));
        QFile::setPermissions(path_, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        export_ = std::make_unique<Export>(path_);
        export_->run(
            "CREATE TABLE BloodSugarLevels(BloodSugerNo INTEGER, BloodSugerLevel REAL, ReadingTime TEXT, "
            "ReadingType INTEGER, Comment TEXT);"
            "CREATE TABLE Meals(MealNo INTEGER, MealTime TEXT, MealDescription INTEGER, \"Insulin Dosage\" INTEGER);"
            "CREATE TABLE MealContent(MealID INTEGER, NDB_No INTEGER, Quantity REAL);"
            "CREATE TABLE Foods(NDB_No INTEGER, Shrt_Desc TEXT, Carbohydrt REAL)");
        export_->load("BloodSugarLevels");
        export_->load("Meals");
        export_->load("MealContent");
    }

    [[nodiscard]] QString ours(const QString& source) const
    {
        Database database(path_);
        Recordset recordset = database.openRecordset(source);
        return rowsOf(recordset);
    }
    QString theirs(const char* sql) { return export_->rows(sql); }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(QStringLiteral("diary.mdb"));
    std::unique_ptr<Export> export_;
};

TEST_F(DiaryOfThirtyDays, TheMealsWithTheirNumberOfFoodsFromTheLatestOn)
{
    EXPECT_EQ(ours(QStringLiteral("ExistingMeals")),
              theirs("SELECT m.MealNo, strftime('%d/%m/%Y %H:%M:%S', MealTime), count(c.NDB_No) FROM Meals m LEFT JOIN "
                     "MealContent c ON c.MealID = m.MealNo GROUP BY m.MealNo ORDER BY MealTime DESC, m.MealNo"));
}

TEST_F(DiaryOfThirtyDays, ReadingsAndMealsInOneListByTime)
{
    const char* const sql =
        "SELECT strftime('%d/%m/%Y %H:%M:%S', t), iif(v IS NULL, NULL, printf('%!.15g', round(v, 6))), quote(k) FROM "
        "(SELECT "
        "ReadingTime t, BloodSugerLevel v, 'Reading' k, 1 p, BloodSugerNo n FROM BloodSugarLevels UNION ALL SELECT "
        "MealTime, \"Insulin Dosage\", 'Meal', 2, MealNo FROM Meals) ORDER BY t, p, n";
    EXPECT_EQ(ours(QStringLiteral("select When, Round(Amount, 6), Kind from ExcelHistory")), theirs(sql));
}

TEST_F(DiaryOfThirtyDays, TheLatestReadingAndTheLeastFood)
{
    EXPECT_EQ(ours(QStringLiteral("LastBldReading")),
              theirs("SELECT strftime('%d/%m/%Y %H:%M:%S', max(ReadingTime)) FROM BloodSugarLevels"));
    EXPECT_EQ(ours(QStringLiteral("Min(NDB)")), QStringLiteral("1001"));
}

TEST_F(DiaryOfThirtyDays, TheFoodsOfEachMealBelowFour)
{
    EXPECT_EQ(
        ours(QStringLiteral("select MealNo, Count(*), Sum(Quantity) from MealDetails group by MealNo")),
        theirs(
            "SELECT m.MealNo, count(*), printf('%!.15g', sum(Quantity)) FROM Meals m JOIN MealContent c ON c.MealID = "
            "m.MealNo WHERE MealDescription < 4 GROUP BY m.MealNo ORDER BY m.MealNo"));
}

TEST_F(DiaryOfThirtyDays, ReadingsADayWithTheirAverage)
{
    EXPECT_EQ(
        ours(QStringLiteral(
            "select Format(ReadingTime, 'yyyy') & '-' & DatePart('y', ReadingTime), Count(*), "
            "Round(Avg(BloodSugerLevel), 6) from BloodSugarLevels group by Format(ReadingTime, 'yyyy') & "
            "'-' & DatePart('y', ReadingTime) order by Min(ReadingTime)")),
        theirs("SELECT '''' || strftime('%Y', ReadingTime) || '-' || CAST(strftime('%j', ReadingTime) AS INTEGER) || "
               "'''', count(*), printf('%!.15g', round(avg(BloodSugerLevel), 6)) FROM BloodSugarLevels GROUP BY "
               "date(ReadingTime) ORDER BY date(ReadingTime)"));
}

TEST_F(DiaryOfThirtyDays, ATextIsFoundThroughItsIndexAndByASearch)
{
    EXPECT_EQ(ours(QStringLiteral("select NDB_No from NutritionalInformation where Shrt_Desc = 'nopales,raw'")),
              QStringLiteral("11963"));
    EXPECT_EQ(ours(QStringLiteral("select NDB_No from NutritionalInformation where Shrt_Desc like 'NOPALES,RAW'")),
              QStringLiteral("11963"));
}

TEST(SamplesOfAccess, QueriesOtherThanSelectionsAreRefusedAndSelectionsRun)
{
    if (!QFile::exists(sample("queryTestV2000.mdb"))) {
        GTEST_SKIP() << "needs the sample files";
    }
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("queries.mdb"));
    ASSERT_TRUE(QFile::copy(sample("queryTestV2000.mdb"), path));
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    Database database(path);
    const auto errorOf = [&](const char* name) {
        try {
            static_cast<void>(database.openRecordset(QString::fromLatin1(name)));
        } catch (const runtime::RunTimeError& error) {
            return error.number();
        }
        return 0;
    };
    EXPECT_EQ(database.openRecordset(QStringLiteral("SelectQuery")).fieldCount(), 6);
    EXPECT_EQ(errorOf("DeleteQuery"), 3219);
    EXPECT_EQ(errorOf("UnionQuery"), 3061); // its parts have no FROM
    for (const char* name :
         {"UpdateQuery", "AppendQuery", "MakeTableQuery", "CrosstabQuery", "PassthroughQuery", "DataDefinitionQuery"}) {
        EXPECT_EQ(errorOf(name), 3075) << name;
    }
}

} // namespace
} // namespace data::test
