// backup, and the copies that are made before changes.

#include "cli/quillonctl.h"
#include "data/database.h"
#include "runtime/run_time_error.h"
#include "support/file_content.h"
#include "support/test_diary.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Backup : public testing::Test
{
protected:
    QString besideDiary(const QString& name) const { return QFileInfo(diary.path()).dir().filePath(name); }
    QString copy() const { return folder.filePath(QStringLiteral("copy.mdb")); }
    /// Those of the folder backups.
    QStringList copies() const
    {
        return QDir(besideDiary(QStringLiteral("backups"))).entryList(QDir::Files, QDir::Name);
    }
    Outcome run(const char* command, const QStringList& arguments) const
    {
        return quillonctl(QStringList{QString::fromLatin1(command)} + arguments);
    }
    Outcome deleteReadings() const
    {
        return run("sql", {diary.path(), QStringLiteral("Delete * from BloodSugarLevels")});
    }

    TestDiary diary;
    QTemporaryDir folder;
};

TEST_F(Backup, CopiesTheDiary)
{
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const Outcome outcome = run("backup", {diary.path(), copy()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, (diary.path() + QStringLiteral(" is copied to ") + copy() + u'\n').toStdString());
    EXPECT_EQ(contentOf(copy()), contentOf(diary.path()));
    EXPECT_EQ(run("check", {copy()}).status, 0);
}

TEST_F(Backup, NeverOverwritesAFile)
{
    writeFile(copy(), "precious");
    const Outcome outcome = run("backup", {diary.path(), copy()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("Run-time error '58'"));
    EXPECT_EQ(contentOf(copy()), "precious");
}

TEST_F(Backup, WithoutADestinationIsNamedByTheDay)
{
    const QString before = QDate::currentDate().toString(Qt::ISODate);
    const Outcome outcome = run("backup", {diary.path()});
    const QString after = QDate::currentDate().toString(Qt::ISODate);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    ASSERT_EQ(copies().size(), 1);
    const QString name = copies().constFirst();
    const auto nameOf = [](const QString& day) { return QStringLiteral("Nutrition ") + day + QStringLiteral(".mdb"); };
    EXPECT_TRUE(name == nameOf(before) || name == nameOf(after)) << name.toStdString();
}

TEST_F(Backup, OfADamagedDiaryIsMadeAndEndsWithAFault)
{
    QByteArray bytes = contentOf(diary.path());
    bytes.replace(bytes.size() - 4096, 4096, QByteArray(4096, 'U'));
    writeFile(diary.path(), bytes);
    const Outcome outcome = run("backup", {diary.path(), copy()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("is copied to"));
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: The diary is damaged"));
    EXPECT_EQ(contentOf(copy()), bytes);
}

TEST_F(Backup, TakesOneFileOrTwo)
{
    EXPECT_EQ(run("backup", {}).status, 2);
    EXPECT_EQ(run("backup", {diary.path(), copy(), copy()}).status, 2);
    EXPECT_EQ(run("backup", {diary.path(), QString()}).status, 2);
    EXPECT_THAT(run("backup", {QStringLiteral("--help")}).out, StartsWith("Usage: quillonctl backup FILE [DEST]\n"));
}

TEST_F(Backup, IsMadeBeforeTheFirstChangeOfTheDay)
{
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QByteArray before = contentOf(diary.path());
    const Outcome outcome = deleteReadings();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    ASSERT_EQ(copies().size(), 1);
    EXPECT_EQ(contentOf(besideDiary(QStringLiteral("backups/")) + copies().constFirst()), before);
    EXPECT_NE(contentOf(diary.path()), before);
}

TEST_F(Backup, IsMadeBeforeAnImport)
{
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QByteArray before = contentOf(diary.path());
    const QString meter = folder.filePath(QStringLiteral("meter.csv"));
    writeFile(meter, " 05/03/2002, 12:00, 6.6\r\n 05/03/2002, 13:00, 7.6\r\n");
    const Outcome outcome = run("import", {diary.path(), meter});
    EXPECT_EQ(outcome.out, "2 readings added\n") << outcome.err;
    ASSERT_EQ(copies().size(), 1);
    EXPECT_EQ(contentOf(besideDiary(QStringLiteral("backups/")) + copies().constFirst()), before);
}

TEST_F(Backup, IsNotMadeForReading)
{
    EXPECT_EQ(run("tables", {diary.path()}).status, 0);
    EXPECT_EQ(run("check", {diary.path()}).status, 0);
    EXPECT_FALSE(QFileInfo::exists(besideDiary(QStringLiteral("backups"))));
}

TEST_F(Backup, ThatFailsBeforeAChangeIsToldInOneLineAndTheChangeMade)
{
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    writeFile(besideDiary(QStringLiteral("backups")), "a file is in the way");
    const Outcome outcome = deleteReadings();
    EXPECT_EQ(outcome.status, 0);
    ASSERT_EQ(linesOf(outcome.err).size(), 1U) << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: No copy of the diary"));
    EXPECT_EQ(linesOf(run("dump", {diary.path(), QStringLiteral("BloodSugarLevels")}).out).size(), 1U);
}

// --- Putting one back ---

TEST_F(Backup, IsRestoredAndWhatWasThereKept)
{
    EXPECT_EQ(run("backup", {diary.path(), copy()}).status, 0);
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QByteArray present = contentOf(diary.path());
    const Outcome outcome = run("restore", {copy(), diary.path()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(contentOf(diary.path()), contentOf(copy()));
    ASSERT_EQ(copies().size(), 1);
    const QString kept = besideDiary(QStringLiteral("backups/")) + copies().constFirst();
    EXPECT_EQ(contentOf(kept), present);
    EXPECT_THAT(linesOf(outcome.out),
                testing::ElementsAre((diary.path() + QStringLiteral(" is restored from ") + copy()).toStdString(),
                                     (QStringLiteral("The diary that was there is kept as ") + kept).toStdString()));
}

TEST_F(Backup, IsRestoredOverADamagedDiary)
{
    EXPECT_EQ(run("backup", {diary.path(), copy()}).status, 0);
    writeFile(diary.path(), "not a diary any more");
    const Outcome outcome = run("restore", {copy(), diary.path()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("The damaged file that was there is now "));
    EXPECT_EQ(run("check", {diary.path()}).status, 0);
}

TEST_F(Backup, ThatIsDamagedIsNotRestored)
{
    writeFile(copy(), "not a diary");
    const QByteArray present = contentOf(diary.path());
    const Outcome outcome = run("restore", {copy(), diary.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("Run-time error '3343'"));
    EXPECT_EQ(contentOf(diary.path()), present);
}

// --- Compacting ---

TEST_F(Backup, CompactSaysTheSizesAndKeepsTheRecords)
{
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const qint64 before = QFileInfo(diary.path()).size();
    const std::string records = run("dump", {diary.path(), QStringLiteral("BloodSugarLevels")}).out;
    const Outcome outcome = run("compact", {diary.path()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const qint64 after = QFileInfo(diary.path()).size();
    EXPECT_EQ(outcome.out,
              (diary.path() + QStringLiteral(": %1 bytes, before %2\n").arg(after).arg(before)).toStdString());
    EXPECT_EQ(run("dump", {diary.path(), QStringLiteral("BloodSugarLevels")}).out, records);
    EXPECT_EQ(run("check", {diary.path()}).status, 0);
}

TEST_F(Backup, CompactIsNoticedByAProgramThatHasTheDiaryOpen)
{
    diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    data::Database window(diary.path());
    data::Recordset readings = window.openRecordset(QStringLiteral("BloodSugarLevels"));
    EXPECT_EQ(run("compact", {diary.path()}).status, 0);
    const QByteArray compacted = contentOf(diary.path());
    try {
        readings.edit();
        ADD_FAILURE() << "the old file is still in use";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.code(), runtime::ErrorNumber::DiskError);
        EXPECT_THAT(error.hint().toStdString(), HasSubstr("open it again"));
    }
    EXPECT_EQ(contentOf(diary.path()), compacted);
}

TEST_F(Backup, CompactRefusesADamagedDiary)
{
    QByteArray bytes = contentOf(diary.path());
    bytes.replace(bytes.size() - 4096, 4096, QByteArray(4096, 'U'));
    writeFile(diary.path(), bytes);
    const Outcome outcome = run("compact", {diary.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("damaged"));
    EXPECT_EQ(contentOf(diary.path()), bytes);
}

} // namespace
