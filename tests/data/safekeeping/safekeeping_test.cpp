// Backups: made, and put back.
#include "data/safekeeping/files.h"
#include "data/safekeeping/safekeeping.h"
#include "jet/database.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"
#include "support/file_size_limit.h"
#include "support/test_diary.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <functional>

namespace {

using runtime::ErrorNumber;
using testing::ElementsAre;
using testing::HasSubstr;

/// The error that the action raises; none fails the test.
runtime::RunTimeError errorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const runtime::RunTimeError& error) {
        return error;
    }
    ADD_FAILURE() << "no error";
    return runtime::RunTimeError(ErrorNumber::InvalidProcedureCall);
}

class Safekeeping : public testing::Test
{
protected:
    void addReading() { diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1); }
    QString inFolder(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }
    QString besideDiary(const char* name) const
    {
        return QFileInfo(diary.path()).dir().filePath(QString::fromLatin1(name));
    }
    static void damage(const QString& path)
    {
        QByteArray bytes = contentOf(path);
        bytes.replace(bytes.size() - 4096, 4096, QByteArray(4096, 'U'));
        writeFile(path, bytes);
    }

    TestDiary diary;
    QTemporaryDir folder;
    runtime::FixedClock clock{runtime::toDate(QStringLiteral("21/11/2026 08:00"))};
};

// --- Backing up ---

using BackUp = Safekeeping;

TEST_F(BackUp, IsTheSameFile)
{
    addReading();
    const data::BackUp made = data::backUp(diary.path(), inFolder("copy.mdb"));
    EXPECT_EQ(made.path, inFolder("copy.mdb"));
    EXPECT_TRUE(made.damage.isEmpty());
    EXPECT_EQ(contentOf(inFolder("copy.mdb")), contentOf(diary.path()));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("copy.mdb"));
}

TEST_F(BackUp, CanBeMadeWhileTheDiaryIsOpen)
{
    const data::Database window(diary.path());
    addReading();
    static_cast<void>(data::backUp(diary.path(), inFolder("copy.mdb")));
    EXPECT_EQ(readingsIn(inFolder("copy.mdb")), 1);
}

TEST_F(BackUp, NeverOverwritesAFile)
{
    writeFile(inFolder("copy.mdb"), "precious");
    const auto error = errorOf([&] { static_cast<void>(data::backUp(diary.path(), inFolder("copy.mdb"))); });
    EXPECT_EQ(error.code(), ErrorNumber::FileAlreadyExists);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("copy.mdb"));
    EXPECT_EQ(contentOf(inFolder("copy.mdb")), "precious");
}

TEST_F(BackUp, NamesTheFolderThatIsNotThere)
{
    const auto error = errorOf([&] { static_cast<void>(data::backUp(diary.path(), inFolder("none/copy.mdb"))); });
    EXPECT_EQ(error.code(), ErrorNumber::CannotOpenFile);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("There is no folder"));
}

TEST_F(BackUp, NamesTheDiaryThatIsNotThere)
{
    const auto error = errorOf([&] { static_cast<void>(data::backUp(inFolder("no.mdb"), inFolder("copy.mdb"))); });
    EXPECT_EQ(error.code(), ErrorNumber::FileNotFound);
    EXPECT_THAT(namesIn(folder.path()), testing::IsEmpty());
}

TEST_F(BackUp, OfADamagedDiaryIsMadeAndSaysSo)
{
    addReading();
    damage(diary.path());
    const data::BackUp made = data::backUp(diary.path(), inFolder("copy.mdb"));
    EXPECT_FALSE(made.damage.isEmpty());
    EXPECT_EQ(contentOf(inFolder("copy.mdb")), contentOf(diary.path()));
}

TEST_F(BackUp, WithoutADestinationGoesBesideTheDiaryUnderTheDay)
{
    EXPECT_EQ(data::backUpToday(diary.path(), clock).path, besideDiary("backups/Nutrition 2026-11-21.mdb"));
    addReading();
    EXPECT_EQ(data::backUpToday(diary.path(), clock).path, besideDiary("backups/Nutrition 2026-11-21 2.mdb"));
    EXPECT_EQ(readingsIn(besideDiary("backups/Nutrition 2026-11-21.mdb")), 0);
    EXPECT_EQ(readingsIn(besideDiary("backups/Nutrition 2026-11-21 2.mdb")), 1);
}

// --- Restoring ---

/// A backup without readings of a diary with one.
class Restore : public Safekeeping
{
protected:
    Restore()
    {
        static_cast<void>(data::backUp(diary.path(), backup));
        addReading();
        present = contentOf(diary.path());
    }

    data::Restored restore() const { return data::restore(backup, diary.path(), clock); }
    std::vector<std::string> besideDiary() const { return namesIn(QFileInfo(diary.path()).absolutePath()); }
    using Safekeeping::besideDiary;

    QString backup = inFolder("backup.mdb");
    QByteArray present;
};

TEST_F(Restore, PutsACopyOfTheBackupInThePlaceOfTheDiary)
{
    const data::Restored restored = restore();
    EXPECT_EQ(contentOf(diary.path()), contentOf(backup));
    EXPECT_EQ(readingsIn(diary.path()), 0);
    EXPECT_EQ(restored.kept, besideDiary("backups/Nutrition 2026-11-21 before restoring.mdb"));
    EXPECT_FALSE(restored.wasDamaged);
    EXPECT_EQ(contentOf(restored.kept), present);
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition.mdb", "backups"));
}

TEST_F(Restore, CanBeTakenBack)
{
    const data::Restored first = restore();
    const data::Restored second = data::restore(first.kept, diary.path(), clock);
    EXPECT_EQ(contentOf(diary.path()), present);
    EXPECT_EQ(second.kept, besideDiary("backups/Nutrition 2026-11-21 before restoring 2.mdb"));
}

TEST_F(Restore, LeavesTheCopyOfTheDayAlone)
{
    static_cast<void>(data::backUpToday(diary.path(), clock));
    static_cast<void>(restore());
    EXPECT_THAT(namesIn(besideDiary("backups")),
                ElementsAre("Nutrition 2026-11-21 before restoring.mdb", "Nutrition 2026-11-21.mdb"));
}

TEST_F(Restore, OfADamagedBackupChangesNothing)
{
    damage(backup);
    const auto error = errorOf([&] { static_cast<void>(restore()); });
    EXPECT_EQ(error.code(), ErrorNumber::UnrecognisedFormat);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("The diary was left as it is."));
    EXPECT_EQ(contentOf(diary.path()), present);
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition.mdb"));
}

TEST_F(Restore, OfAFileThatIsNoDiaryChangesNothing)
{
    writeFile(backup, "a letter");
    EXPECT_EQ(errorOf([&] { static_cast<void>(restore()); }).code(), ErrorNumber::UnrecognisedFormat);
    QFile::remove(backup);
    EXPECT_EQ(errorOf([&] { static_cast<void>(restore()); }).code(), ErrorNumber::FileNotFound);
    EXPECT_EQ(contentOf(diary.path()), present);
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition.mdb"));
}

TEST_F(Restore, OfTheDiaryItselfIsRefused)
{
    const QString link = inFolder("link.mdb");
    ASSERT_TRUE(QFile::link(diary.path(), link));
    for (const QString& same : {diary.path(), link}) {
        const auto error = errorOf([&] { static_cast<void>(data::restore(same, diary.path(), clock)); });
        EXPECT_THAT(error.hint().toStdString(), HasSubstr("the diary itself"));
    }
}

TEST_F(Restore, MakesADiaryWhereThereIsNone)
{
    QFile::remove(diary.path());
    EXPECT_EQ(restore().kept, QString());
    EXPECT_EQ(contentOf(diary.path()), contentOf(backup));
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition.mdb"));
}

TEST_F(Restore, OfABackupThatMayOnlyBeReadMakesADiaryThatMayBeWritten)
{
    QFile::remove(diary.path());
    ASSERT_TRUE(QFile::setPermissions(backup, QFile::ReadOwner | QFile::ReadUser));
    static_cast<void>(restore());
    EXPECT_TRUE(QFile::permissions(diary.path()).testFlag(QFile::WriteOwner));
    EXPECT_TRUE(QFile::permissions(diary.path()).testFlag(QFile::ReadOwner));
}

TEST_F(Restore, LeavesTheRightsOfTheDiaryAsTheyWere)
{
    const QFile::Permissions shared = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser |
                                      QFile::ReadGroup | QFile::WriteGroup;
    ASSERT_TRUE(QFile::setPermissions(backup, QFile::ReadOwner | QFile::ReadUser | QFile::ReadOther));
    ASSERT_TRUE(QFile::setPermissions(diary.path(), shared));
    static_cast<void>(restore());
    EXPECT_EQ(QFile::permissions(diary.path()), shared);
    damage(diary.path());
    static_cast<void>(restore());
    EXPECT_EQ(QFile::permissions(diary.path()), shared) << "over a damaged one";
    writeFile(diary.path(), "not a diary any more");
    ASSERT_TRUE(QFile::setPermissions(diary.path(), shared));
    static_cast<void>(restore());
    EXPECT_EQ(QFile::permissions(diary.path()), shared) << "over one that cannot be opened";
}

TEST_F(Restore, MovesADiaryThatCannotBeOpenedAsideWithItsJournal)
{
    writeFile(diary.path(), "not a diary any more");
    writeFile(diary.path() + QStringLiteral("-journal"), "nor a journal");
    const data::Restored restored = restore();
    EXPECT_TRUE(restored.wasDamaged);
    EXPECT_EQ(restored.kept, besideDiary("Nutrition 2026-11-21 damaged.mdb"));
    EXPECT_EQ(contentOf(restored.kept), "not a diary any more");
    EXPECT_EQ(contentOf(restored.kept + QStringLiteral("-journal")), "nor a journal");
    EXPECT_EQ(contentOf(diary.path()), contentOf(backup));
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition 2026-11-21 damaged.mdb",
                                           "Nutrition 2026-11-21 damaged.mdb-journal", "Nutrition.mdb"));
}

TEST_F(Restore, NeverMeetsAJournalThatCannotBeUsed)
{
    writeFile(diary.path() + QStringLiteral("-journal"), "not a journal");
    ASSERT_THROW(static_cast<void>(readingsIn(diary.path())), runtime::RunTimeError);
    const data::Restored restored = restore();
    EXPECT_TRUE(restored.wasDamaged);
    EXPECT_EQ(contentOf(restored.kept), present);
    EXPECT_EQ(contentOf(restored.kept + QStringLiteral("-journal")), "not a journal");
    EXPECT_EQ(readingsIn(diary.path()), 0);
}

TEST_F(Restore, NeverMeetsAJournalWhoseDiaryIsGone)
{
    QFile::remove(diary.path());
    writeFile(diary.path() + QStringLiteral("-journal"), "left over");
    const data::Restored restored = restore();
    EXPECT_EQ(contentOf(restored.kept), "left over");
    EXPECT_EQ(readingsIn(diary.path()), 0);
}

TEST_F(Restore, KeepsADamagedDiaryByteForByteBesideTheNewOne)
{
    damage(diary.path());
    const QByteArray damaged = contentOf(diary.path());
    const data::Restored restored = restore();
    EXPECT_TRUE(restored.wasDamaged);
    EXPECT_EQ(restored.kept, besideDiary("Nutrition 2026-11-21 damaged.mdb"));
    EXPECT_EQ(contentOf(restored.kept), damaged);
    EXPECT_EQ(contentOf(diary.path()), contentOf(backup));
}

TEST_F(Restore, KeepsADiaryThatEndsInTheMiddleOfAPage)
{
    QFile file(diary.path());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("tail");
    file.close();
    const data::Restored restored = restore();
    EXPECT_TRUE(restored.wasDamaged);
    EXPECT_EQ(contentOf(restored.kept), present + "tail");
    EXPECT_EQ(contentOf(diary.path()), contentOf(backup));
}

TEST_F(Restore, WaitsForAProgramThatReads)
{
    data::Database window(diary.path());
    {
        const data::Database::Reading reading(window);
        EXPECT_EQ(errorOf([&] { static_cast<void>(restore()); }).code(), ErrorNumber::FileInUse);
        EXPECT_EQ(contentOf(diary.path()), present);
    }
    static_cast<void>(restore());
    EXPECT_EQ(readingsIn(diary.path()), 0);
}

TEST_F(Restore, IsNoticedByAWindowThatHadTheDiaryOpen)
{
    data::Database window(diary.path());
    data::Recordset readings = window.openRecordset(QStringLiteral("BloodSugarLevels"));
    static_cast<void>(restore());
    const auto error = errorOf([&] { readings.edit(); });
    EXPECT_EQ(error.code(), ErrorNumber::DiskError);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("replaced while it was open; open it again"));
    EXPECT_EQ(contentOf(diary.path()), contentOf(backup));
}

TEST_F(Restore, ThatCannotKeepThePresentDiaryChangesNothing)
{
    writeFile(besideDiary("backups"), "a file is in the way");
    EXPECT_EQ(errorOf([&] { static_cast<void>(restore()); }).code(), ErrorNumber::CannotOpenFile);
    EXPECT_EQ(contentOf(diary.path()), present);
    EXPECT_EQ(readingsIn(diary.path()), 1) << "and holds no lock";
}

TEST_F(Restore, OfAnotherProgramsFileChangesNothing)
{
    const QString other = inFolder("Stamps.mdb");
    static_cast<void>(jet::Database::create(jet::posixFileSystem(), other.toStdString(), jet::DateTime{46000}));
    const auto error = errorOf([&] { static_cast<void>(data::restore(other, diary.path(), clock)); });
    EXPECT_EQ(error.code(), ErrorNumber::UnrecognisedFormat);
    EXPECT_THAT(error.words().toStdString(), HasSubstr("Stamps.mdb' is no diary."));
    EXPECT_EQ(contentOf(diary.path()), present);
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition.mdb"));
}

TEST_F(Restore, ADiskThatIsFullChangesNothing)
{
    {
        const FileSizeLimit limit(present.size() / 2);
        EXPECT_THROW(static_cast<void>(restore()), runtime::RunTimeError);
    }
    EXPECT_EQ(contentOf(diary.path()), present);
    EXPECT_THAT(besideDiary(), ElementsAre("Nutrition.mdb", "backups"));
    EXPECT_THAT(namesIn(besideDiary("backups")), testing::IsEmpty());
}

// --- Compacting ---

class Compact : public Safekeeping
{
protected:
    Compact()
    {
        data::Database database(diary.path());
        data::Database::Batch batch(database);
        data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
        for (int i = 0; i < 500; ++i) {
            readings.addNew();
            readings.set(QStringLiteral("BloodSugerLevel"), 4 + 0.01 * i);
            readings.set(QStringLiteral("ReadingTime"), runtime::Date{37000.0 + i});
            readings.set(QStringLiteral("Comment"), QString(40, u'c'));
            readings.update();
        }
        database.execute(QStringLiteral("Delete * from BloodSugarLevels where BloodSugerLevel < 8.5"));
        batch.commit();
    }
};

TEST_F(Compact, GivesBackTheRoomOfWhatWasDeleted)
{
    const qint64 before = QFileInfo(diary.path()).size();
    const data::Compacted compacted = data::compact(diary.path());
    EXPECT_EQ(compacted.bytesBefore, before);
    EXPECT_EQ(compacted.bytesAfter, QFileInfo(diary.path()).size());
    EXPECT_LT(compacted.bytesAfter, before);
    EXPECT_EQ(readingsIn(diary.path()), 50) << "levels from 8.50 to 8.99";
    EXPECT_TRUE(data::Database(diary.path()).check().empty());
    EXPECT_EQ(data::Database(diary.path()).queries().size(), 5);
}

TEST_F(Compact, OfADamagedDiaryIsRefused)
{
    damage(diary.path());
    const QByteArray bytes = contentOf(diary.path());
    const auto error = errorOf([&] { static_cast<void>(data::compact(diary.path())); });
    EXPECT_EQ(error.code(), ErrorNumber::UnrecognisedFormat);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("damaged"));
    EXPECT_EQ(contentOf(diary.path()), bytes);
}

TEST_F(Compact, IsNoticedByAWindowThatHadTheDiaryOpen)
{
    data::Database window(diary.path());
    data::Recordset readings = window.openRecordset(QStringLiteral("BloodSugarLevels"));
    static_cast<void>(data::compact(diary.path()));
    EXPECT_EQ(errorOf([&] { readings.edit(); }).code(), ErrorNumber::DiskError);
    EXPECT_EQ(readingsIn(diary.path()), 50);
}

TEST_F(Compact, WaitsForAProgramThatReads)
{
    const QByteArray bytes = contentOf(diary.path());
    data::Database window(diary.path());
    const data::Database::Reading reading(window);
    EXPECT_EQ(errorOf([&] { static_cast<void>(data::compact(diary.path())); }).code(), ErrorNumber::FileInUse);
    EXPECT_EQ(contentOf(diary.path()), bytes);
}

} // namespace
