// A copy of the diary for each day on which it is changed.
#include "data/before_change.h"
#include "data/safekeeping/dated_copies.h"
#include "data/safekeeping/files.h"
#include "jet/database.h"
#include "runtime/conversions.h"
#include "support/file_size_limit.h"
#include "support/test_diary.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <latch>
#include <mutex>
#include <thread>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class DatedCopies : public testing::Test
{
protected:
    void today(const char* day) { clock.set(runtime::toDate(QString::fromLatin1(day))); }
    void addReading() { diary.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1); }
    QString folder() const { return QFileInfo(diary.path()).dir().filePath(QStringLiteral("backups")); }
    QString copy(const char* name) const { return QDir(folder()).filePath(QString::fromLatin1(name)); }

    TestDiary diary;
    runtime::FixedClock clock{runtime::toDate(QStringLiteral("21/11/2026 08:00"))};
    std::vector<std::string> told;
    data::DatedCopies copies{clock, [this](const QString& words) { told.push_back(words.toStdString()); }};
    data::BeforeChange hook{[this](const QString& path) { copies.beforeChange(path); }};
};

TEST_F(DatedCopies, TheFirstChangeOfADayMakesACopyOfTheStateBeforeIt)
{
    const QByteArray before = contentOf(diary.path());
    addReading();
    EXPECT_THAT(namesIn(folder()), ElementsAre("Nutrition 2026-11-21.mdb"));
    EXPECT_EQ(contentOf(copy("Nutrition 2026-11-21.mdb")), before);
    EXPECT_EQ(readingsIn(diary.path()), 1);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(DatedCopies, TheSecondChangeMakesNone)
{
    addReading();
    const QByteArray first = contentOf(copy("Nutrition 2026-11-21.mdb"));
    today("21/11/2026 23:59");
    addReading();
    EXPECT_THAT(namesIn(folder()), SizeIs(1));
    EXPECT_EQ(contentOf(copy("Nutrition 2026-11-21.mdb")), first);
}

TEST_F(DatedCopies, TheSecondChangeDoesNotEvenLook)
{
    addReading();
    ASSERT_TRUE(QFile::remove(copy("Nutrition 2026-11-21.mdb")));
    addReading();
    EXPECT_THAT(namesIn(folder()), IsEmpty());
}

TEST_F(DatedCopies, TheFirstChangeOfTheNextDayMakesAnother)
{
    addReading();
    today("22/11/2026 00:00");
    addReading();
    EXPECT_THAT(namesIn(folder()), ElementsAre("Nutrition 2026-11-21.mdb", "Nutrition 2026-11-22.mdb"));
    EXPECT_EQ(readingsIn(copy("Nutrition 2026-11-21.mdb")), 0);
    EXPECT_EQ(readingsIn(copy("Nutrition 2026-11-22.mdb")), 1);
}

TEST_F(DatedCopies, FifteenDaysLeaveTheNewestFourteen)
{
    for (int day = 16; day <= 30; ++day) {
        today(QStringLiteral("%1/11/2026").arg(day).toLatin1().constData());
        addReading();
    }
    const std::vector<std::string> names = namesIn(folder());
    ASSERT_THAT(names, SizeIs(14));
    EXPECT_EQ(names.front(), "Nutrition 2026-11-17.mdb");
    EXPECT_EQ(names.back(), "Nutrition 2026-11-30.mdb");
}

TEST_F(DatedCopies, OnlyFilesOfExactlySuchANameAreEverRemoved)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    const std::vector<const char*> others{
        "Nutrition 2001-01-01 2.mdb",       "Nutrition 2001-01-01.mdb.old",    "My Nutrition 2001-01-01.mdb",
        "Nutrition 2001-01-01 damaged.mdb", "nutrition 2001-01-01.mdb",        "Nutrition 2001-13-01.mdb",
        "Nutrition 2001-02-30.mdb",         "Nutrition 2001-1-1.mdb",          "Nutrition 2001-01-01xmdb",
        "Nutrition 2001-01-01.mdb\n",       "Nutrition 2001-01-01.mdb-journal"};
    for (const char* other : others) {
        writeFile(copy(other), "x");
    }
    ASSERT_TRUE(QDir(folder()).mkdir(QStringLiteral("Nutrition 2001-01-02.mdb")));
    writeFile(copy("Nutrition 2001-01-03.mdb"), "x");
    for (int day = 1; day <= 14; ++day) {
        writeFile(copy(QStringLiteral("Nutrition 2026-10-%1.mdb").arg(day, 2, 10, QLatin1Char('0')).toLatin1()), "x");
    }
    addReading();
    const std::vector<std::string> names = namesIn(folder());
    for (const char* other : others) {
        EXPECT_THAT(names, Contains(other));
    }
    EXPECT_THAT(names, Contains("Nutrition 2001-01-02.mdb"));
    EXPECT_THAT(names, Not(Contains("Nutrition 2001-01-03.mdb")));
    EXPECT_THAT(names, Not(Contains("Nutrition 2026-10-01.mdb")));
    EXPECT_THAT(names, Contains("Nutrition 2026-10-02.mdb"));
    EXPECT_THAT(names, Contains("Nutrition 2026-11-21.mdb"));
}

TEST_F(DatedCopies, TodaysCopyStaysAlsoWhereOthersAreDatedLater)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    for (int day = 1; day <= 14; ++day) {
        writeFile(copy(QStringLiteral("Nutrition 2030-10-%1.mdb").arg(day, 2, 10, QLatin1Char('0')).toLatin1()), "x");
    }
    addReading();
    EXPECT_THAT(namesIn(folder()), Contains("Nutrition 2026-11-21.mdb"));
}

TEST_F(DatedCopies, ACopyOfTheDayIsNotMadeAgainByAnotherRunOfTheProgram)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    writeFile(copy("Nutrition 2026-11-21.mdb"), "made this morning");
    addReading();
    EXPECT_EQ(contentOf(copy("Nutrition 2026-11-21.mdb")), "made this morning");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(DatedCopies, EachDiaryHasItsOwn)
{
    const TestDiary other;
    addReading();
    data::Database(other.path()).execute(QStringLiteral("Delete * from BloodSugarLevels"));
    EXPECT_THAT(namesIn(QFileInfo(other.path()).dir().filePath(QStringLiteral("backups"))),
                ElementsAre("Nutrition 2026-11-21.mdb"));
}

TEST_F(DatedCopies, AreBesideTheFileThatALinkLeadsTo)
{
    const QTemporaryDir elsewhere;
    const QString link = elsewhere.filePath(QStringLiteral("link.mdb"));
    ASSERT_TRUE(QFile::link(diary.path(), link));
    data::Database(link).execute(QStringLiteral("Delete * from BloodSugarLevels"));
    EXPECT_THAT(namesIn(folder()), ElementsAre("Nutrition 2026-11-21.mdb"));
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("link.mdb"));
}

/// What so many programs are told that are about to make a diary's first change of the day at the same moment.
std::vector<std::string> toldToProgramsAtOnce(int count, const QString& diary, const runtime::Clock& clock)
{
    std::vector<std::string> told;
    std::mutex mutex;
    std::latch start(count);
    {
        std::vector<std::jthread> programs;
        for (int i = 0; i < count; ++i) {
            programs.emplace_back([&] {
                data::DatedCopies copies(clock, [&](const QString& words) {
                    const std::lock_guard guard(mutex);
                    told.push_back(words.toStdString());
                });
                start.arrive_and_wait();
                copies.beforeChange(diary);
            });
        }
    }
    return told;
}

TEST_F(DatedCopies, ProgramsThatChangeADiaryAtTheSameMomentMakeOneBetweenThemAndAreToldNothing)
{
    for (int round = 0; round < 40; ++round) {
        EXPECT_THAT(toldToProgramsAtOnce(4, diary.path(), clock), IsEmpty());
        ASSERT_THAT(namesIn(folder()), ElementsAre("Nutrition 2026-11-21.mdb"));
        ASSERT_TRUE(QDir(folder()).removeRecursively());
    }
}

TEST_F(DatedCopies, OneThatAnotherProgramMadeWhileThisOneWaitedInVainIsNoFault)
{
    const auto other = jet::Database::open(jet::posixFileSystem(), diary.path().toStdString());
    other->begin();
    std::jthread waiting([this] { copies.beforeChange(diary.path()); });
    while (!QFileInfo::exists(folder())) { // else it finds the copy at once
        std::this_thread::yield();
    }
    other->copyTo(copy("Nutrition 2026-11-21.mdb").toStdString());
    waiting.join(); // its patience is over
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(DatedCopies, WhatAKilledCopyLeftOnAnotherDayIsCleared)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    writeFile(copy("Nutrition 2026-11-19.mdb-unfinished"), "half a copy");
    writeFile(copy("Nutrition 2026-11-21.mdb-unfinished"), "half a copy");
    writeFile(copy("My Nutrition 2026-11-19.mdb-unfinished"), "another diary's");
    addReading();
    EXPECT_THAT(namesIn(folder()), ElementsAre("My Nutrition 2026-11-19.mdb-unfinished", "Nutrition 2026-11-21.mdb"));
    EXPECT_THAT(told, IsEmpty());
}

// --- Every kind of change ---

TEST_F(DatedCopies, ReadingMakesNone)
{
    data::Database database(diary.path());
    static_cast<void>(database.openRecordset(QStringLiteral("BloodSugarLevels")).recordCount());
    static_cast<void>(database.check());
    EXPECT_FALSE(QFileInfo::exists(folder()));
}

TEST_F(DatedCopies, ADeleteMakesOne)
{
    data::Database(diary.path()).execute(QStringLiteral("Delete * from BloodSugarLevels"));
    EXPECT_THAT(namesIn(folder()), SizeIs(1));
}

TEST_F(DatedCopies, AnEditMakesOne)
{
    addReading();
    today("22/11/2026");
    data::Database database(diary.path());
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    readings.edit();
    readings.set(QStringLiteral("BloodSugerLevel"), 7.5);
    EXPECT_THAT(namesIn(folder()), SizeIs(1));
    readings.update();
    EXPECT_THAT(namesIn(folder()), SizeIs(2));
    EXPECT_EQ(data::Database(copy("Nutrition 2026-11-22.mdb"))
                  .openRecordset(QStringLiteral("BloodSugarLevels"))
                  .value(QStringLiteral("BloodSugerLevel")),
              runtime::Value(5.6));
}

TEST_F(DatedCopies, ABatchMakesOneBeforeItBegins)
{
    int calls = 0;
    {
        data::Database database(diary.path());
        const data::BeforeChange counting{[&calls](const QString&) { ++calls; }};
        data::Database::Batch batch(database);
        EXPECT_EQ(calls, 1);
        database.execute(QStringLiteral("Delete * from BloodSugarLevels"));
        batch.commit();
        EXPECT_EQ(calls, 1);
    }
    EXPECT_FALSE(QFileInfo::exists(folder())) << "the inner call was made instead of the outer";
    addReading();
    EXPECT_EQ(calls, 1) << "the inner call is gone with its object";
    EXPECT_THAT(namesIn(folder()), SizeIs(1));
}

TEST_F(DatedCopies, AChangeWithinAReadMakesOne)
{
    data::Database database(diary.path());
    const data::Database::Reading reading(database);
    database.execute(QStringLiteral("Delete * from BloodSugarLevels"));
    EXPECT_THAT(namesIn(folder()), SizeIs(1));
    EXPECT_THAT(told, IsEmpty());
}

// --- When it fails ---

TEST_F(DatedCopies, AFolderThatCannotBeWrittenIsToldOnceADayAndTheEntryIsStored)
{
    writeFile(folder(), "a file is in the way");
    addReading();
    addReading();
    EXPECT_EQ(readingsIn(diary.path()), 2);
    ASSERT_THAT(told, SizeIs(1));
    EXPECT_THAT(told.front(), HasSubstr("This keeps no entry from being stored."));
    EXPECT_THAT(told.front(), HasSubstr("backups"));
    today("22/11/2026");
    addReading();
    EXPECT_THAT(told, SizeIs(2));
    EXPECT_EQ(readingsIn(diary.path()), 3);
}

TEST_F(DatedCopies, ADiskThatFillsWhileCopyingLeavesNoHalfCopy)
{
    {
        const FileSizeLimit limit(contentOf(diary.path()).size() / 2);
        copies.beforeChange(diary.path());
    }
    EXPECT_THAT(namesIn(folder()), IsEmpty());
    EXPECT_THAT(told, SizeIs(1));
    addReading();
    EXPECT_EQ(readingsIn(diary.path()), 1);
}

TEST_F(DatedCopies, ADamagedDiaryIsToldAndNoOlderCopyRemovedForIt)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    for (int day = 1; day <= 14; ++day) {
        writeFile(copy(QStringLiteral("Nutrition 2026-10-%1.mdb").arg(day, 2, 10, QLatin1Char('0')).toLatin1()), "x");
    }
    addReading();
    today("22/11/2026");
    QByteArray bytes = contentOf(diary.path());
    bytes.replace(bytes.size() - 4096, 4096, QByteArray(4096, 'U'));
    writeFile(diary.path(), bytes);
    ASSERT_FALSE(data::Database(diary.path()).check().empty());
    copies.beforeChange(diary.path());
    ASSERT_THAT(told, SizeIs(1));
    EXPECT_THAT(told.front(), HasSubstr("damaged"));
    EXPECT_THAT(namesIn(folder()), SizeIs(15)) << "14 after the sound day, and the damaged one";
    EXPECT_EQ(contentOf(copy("Nutrition 2026-11-22.mdb")), bytes);
}

} // namespace
