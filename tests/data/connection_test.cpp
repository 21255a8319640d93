// The SQLite connection on its own: what it may do, and how errors leave it.
#include "data/engine/error_translation.h"
#include "data/engine/session.h"
#include "data/support/small_diary.h"
#include "jet/support/fault_file_system.h"

#include <QFile>

#include <functional>

namespace data::test {
namespace {

class Connection : public SmallDiary
{
protected:
    /// Runs SQLite's own SQL; the error's number, 0 for none.
    static int errorOfSql(const QString& sql)
    {
        SqlConnection connection;
        try {
            connection.run({sql, {}}, [](const ResultRow&) {});
        } catch (const runtime::RunTimeError& error) {
            return error.number();
        }
        return 0;
    }
};

TEST_F(Connection, MaySelectAndNothingElse)
{
    EXPECT_EQ(errorOfSql(QStringLiteral("SELECT 1")), 0);
    for (const char* sql : {"CREATE TABLE t(a)", "CREATE TEMP TABLE t(a)", "PRAGMA encoding", "ATTACH 'file' AS x",
                            "ATTACH ':memory:' AS x", "UPDATE sqlite_master SET sql = ''", "DROP TABLE x", "VACUUM",
                            "BEGIN", "CREATE VIEW v AS SELECT 1", "DELETE FROM sqlite_master",
                            "WITH RECURSIVE r(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM r) SELECT * FROM r"}) {
        EXPECT_EQ(errorOfSql(QString::fromLatin1(sql)), 3360) << sql;
    }
    EXPECT_EQ(errorOfSql(QStringLiteral("ATTACH '%1' AS x").arg(path() + QStringLiteral(".db"))), 3360);
    EXPECT_FALSE(QFile::exists(path() + QStringLiteral(".db")));
}

TEST_F(Connection, TextsInDoubleQuotesAreNoTexts)
{
    EXPECT_EQ(errorOfSql(QStringLiteral("SELECT \"abc\"")), 3360);
}

TEST_F(Connection, AnErrorInAFunctionEndsTheStatementAndTheConnectionGoesOn)
{
    SqlConnection connection;
    const auto run = [&](const QString& sql) {
        QString result;
        connection.run({sql, {}}, [&](const ResultRow& row) { result += textOf(row.value(0)); });
        return result;
    };
    try {
        run(QStringLiteral("SELECT op_divide(1, 0)"));
        FAIL();
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 11);
    }
    EXPECT_EQ(run(QStringLiteral("SELECT op_divide(1, 4)")), QStringLiteral("0.25"));
}

TEST_F(Connection, TheErrorOfAPageThatCannotBeReadReachesTheCaller)
{
    // One call after the other fails, until opening and reading everything succeeds.
    bool succeeded = false;
    for (std::size_t call = 0; !succeeded && call < 2000; ++call) {
        jet::test::FaultFileSystem fileSystem(jet::posixFileSystem());
        fileSystem.set({.at = call});
        try {
            Session session(path(), fileSystem);
            translating(path(), [&] {
                const ReadScope reading(session.database());
                const TranslatedQuery query =
                    translateName(QStringLiteral("MealDetails"), session.catalogue(), session.clock());
                std::size_t rows = 0;
                session.connection().run(query.rows, [&](const ResultRow&) { ++rows; });
                EXPECT_EQ(rows, 5U);
            });
            succeeded = true;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.number(), 3043) << "at call " << call;
        }
    }
    EXPECT_TRUE(succeeded);
}

TEST_F(Connection, ADamagedPageIsReportedAndNamed)
{
    // The last pages hold rows and keys; damage to them must never be taken for data.
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const qint64 pages = file.size() / 4096;
    for (qint64 page = pages - 12; page < pages; ++page) {
        file.seek(page * 4096);
        file.write(QByteArray(4096, '\x7f'));
    }
    file.close();
    try {
        Database database = open();
        for (const char* source :
             {"ExcelHistory", "MealDetails", "Min(NDB)", "MealContent", "NutritionalInformation"}) {
            Recordset recordset = database.openRecordset(QString::fromLatin1(source));
            static_cast<void>(rowsOf(recordset));
        }
        FAIL();
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3343);
        EXPECT_TRUE(error.hint().contains(QStringLiteral("page"))) << error.hint().toStdString();
    }
}

TEST(ErrorTranslation, EveryErrorOfTheEngineHasANumberAndWords)
{
    const auto numberOf = [](jet::ErrorCode code) {
        return translated(jet::Error(code, 7, "A sentence."), QStringLiteral("diary.mdb")).number();
    };
    EXPECT_EQ(numberOf(jet::ErrorCode::FileNotFound), 3024);
    EXPECT_EQ(numberOf(jet::ErrorCode::NotADatabase), 3343);
    EXPECT_EQ(numberOf(jet::ErrorCode::Encoded), 3343);
    EXPECT_EQ(numberOf(jet::ErrorCode::Corrupt), 3343);
    EXPECT_EQ(numberOf(jet::ErrorCode::JournalDamaged), 3343);
    EXPECT_EQ(numberOf(jet::ErrorCode::Locked), 3045);
    EXPECT_EQ(numberOf(jet::ErrorCode::ReadOnly), 3027);
    EXPECT_EQ(numberOf(jet::ErrorCode::IndexNotSupported), 3027);
    EXPECT_EQ(numberOf(jet::ErrorCode::DiskFull), 3026);
    EXPECT_EQ(numberOf(jet::ErrorCode::Io), 3043);
    EXPECT_EQ(numberOf(jet::ErrorCode::DuplicateKey), 3022);
    EXPECT_EQ(numberOf(jet::ErrorCode::NullNotAllowed), 3058);
    EXPECT_EQ(numberOf(jet::ErrorCode::ValueTooLong), 3163);
    EXPECT_EQ(numberOf(jet::ErrorCode::MissingParent), 3201);
    EXPECT_EQ(numberOf(jet::ErrorCode::HasChildren), 3200);
    const runtime::RunTimeError corrupt =
        translated(jet::Error(jet::ErrorCode::Corrupt, 7, "A row is cut."), QStringLiteral("d.mdb"));
    EXPECT_EQ(corrupt.words(), QStringLiteral("Unrecognized database format 'd.mdb'."));
    EXPECT_EQ(corrupt.hint(), QStringLiteral("A row is cut (page 7)."));
}

TEST(ErrorTranslation, ARefusedJournalIsToldInTheEnginesWordsAlone)
{
    const runtime::RunTimeError refused =
        translated(jet::Error(jet::ErrorCode::JournalDamaged, "It is torn; both files were left as they are"),
                   QStringLiteral("d"));
    EXPECT_EQ(refused.words(), QStringLiteral("Unrecognized database format 'd'."));
    EXPECT_EQ(refused.hint(), QStringLiteral("It is torn; both files were left as they are."));
}

TEST(ErrorTranslation, AHintEndsWithOneFullStopWhateverTheEngineWrote)
{
    for (const char* words : {"It is torn", "It is torn."}) {
        EXPECT_EQ(translated(jet::Error(jet::ErrorCode::Io, words), QStringLiteral("d")).hint(),
                  QStringLiteral("It is torn."));
    }
}

} // namespace
} // namespace data::test
