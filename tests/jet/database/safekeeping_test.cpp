// Copies of a whole file, and files that take the place of others.
#include "jet/database/diary_content.h"
#include "jet/database/mdbtools.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/disk/pager.h"
#include "jet/support/disk_state.h"
#include "jet/support/error_matchers.h"
#include "jet/support/fault_file_system.h"
#include "jet/support/power_failure.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace jet {
namespace {

using namespace test;
using testing::AnyOf;
using testing::Eq;
using testing::IsEmpty;

const std::string kDiary = kDiaryPath;
const std::string kJournal = kDiary + "-journal";
const std::string kCopy = "/diary/copy.mdb";
const std::string kAside = "/diary/damaged.mdb";

void insertMeal(Database& diary)
{
    Table& meals = diary.table("Meals");
    meals.insert(values(meals, {{"When", DateTime{36905.25}}, {"Title", u"Soup"}}));
}

Bytes contentOfFile(FileSystem& disk, const std::string& path)
{
    const auto file = disk.open(path, OpenMode::ReadOnly);
    Bytes content(file->size());
    file->readAt(0, content);
    return content;
}

void makeFile(FileSystem& disk, const std::string& path, const Bytes& content)
{
    const auto file = disk.open(path, OpenMode::Create);
    file->writeAt(0, content);
}

std::string contentAt(FileSystem& disk, const std::string& path)
{
    return contentOf(*Database::open(disk, path));
}

/// A diary, and a copy of it from before its last meal.
class Safekeeping : public testing::Test
{
protected:
    Safekeeping()
    {
        const auto diary = createSmallDiary(disk);
        fillSmallDiary(*diary);
        before = contentOf(*diary);
        diary->copyTo(kCopy);
        insertMeal(*diary);
        now = contentOf(*diary);
    }

    void prepare(FileSystem& other) const
    {
        for (const auto& [path, content] : disk.files()) {
            makeFile(other, path, content);
        }
    }

    MemoryFileSystem disk;
    std::string before;
    std::string now;
};

// --- Copies ---

using Copy = Safekeeping;

TEST_F(Copy, HoldsTheSameBytes)
{
    Database::open(disk, kDiary)->copyTo("/diary/second.mdb");
    EXPECT_EQ(disk.content("/diary/second.mdb"), disk.content(kDiary));
    EXPECT_EQ(contentAt(disk, "/diary/second.mdb"), now);
    EXPECT_EQ(contentAt(disk, kCopy), before);
    EXPECT_EQ(disk.files().size(), 3U) << "nothing else is left behind";
}

TEST_F(Copy, IsAsSoundAsTheFile)
{
    Bytes bytes = disk.content(kDiary);
    std::fill(bytes.end() - kPageSize, bytes.end(), std::byte{0x55});
    disk.setContent(kDiary, bytes);
    const auto diary = Database::open(disk, kDiary);
    const std::size_t faults = diary->check().size();
    EXPECT_GT(faults, 0U);
    diary->copyTo("/diary/second.mdb");
    EXPECT_EQ(Database::open(disk, "/diary/second.mdb")->check().size(), faults);
}

TEST_F(Copy, KeepsAnIncompletePageAtTheEnd)
{
    Bytes bytes = disk.content(kDiary);
    bytes.resize(bytes.size() + 100, std::byte{7});
    disk.setContent(kDiary, bytes);
    Database::open(disk, kDiary)->copyTo("/diary/second.mdb");
    EXPECT_EQ(disk.content("/diary/second.mdb"), bytes);
}

TEST_F(Copy, NeverTakesThePlaceOfAFile)
{
    const auto diary = Database::open(disk, kDiary);
    EXPECT_THAT([&] { diary->copyTo(kCopy); }, throwsError(ErrorCode::FileExists));
    EXPECT_EQ(contentAt(disk, kCopy), before);
    EXPECT_THAT([&] { diary->copyTo(kDiary); }, throwsError(ErrorCode::FileExists));
}

TEST_F(Copy, NeverMeetsTheJournalOfAnotherFile)
{
    makeFile(disk, "/diary/second.mdb-journal", Bytes(10));
    EXPECT_THAT([&] { Database::open(disk, kDiary)->copyTo("/diary/second.mdb"); },
                throwsError(ErrorCode::JournalDamaged));
}

TEST_F(Copy, IsOfWhatIsOnTheDisk)
{
    const auto diary = Database::open(disk, kDiary);
    diary->begin();
    insertMeal(*diary);
    EXPECT_THAT([&] { diary->copyTo("/diary/second.mdb"); }, throwsError(ErrorCode::InvalidArgument));
    diary->rollback();
    EXPECT_FALSE(disk.exists("/diary/second.mdb"));
    EXPECT_FALSE(disk.exists("/diary/second.mdb-unfinished"));
}

TEST_F(Copy, CanBeMadeWhileOthersReadAndWhileOneIsAboutToChange)
{
    const auto reader = Database::open(disk, kDiary);
    const auto writer = Database::open(disk, kDiary);
    reader->beginRead();
    writer->begin();
    insertMeal(*writer);
    Database::open(disk, kDiary)->copyTo("/diary/second.mdb");
    writer->rollback();
    reader->endRead();
    EXPECT_EQ(contentAt(disk, "/diary/second.mdb"), now);
}

TEST_F(Copy, ReplacesTheRemainsOfAnAttemptThatWasCutShort)
{
    makeFile(disk, "/diary/second.mdb-unfinished", Bytes(99));
    makeFile(disk, "/diary/second.mdb-unfinished-journal", Bytes(99));
    Database::open(disk, kDiary)->copyTo("/diary/second.mdb");
    EXPECT_EQ(disk.files().size(), 3U);
}

TEST_F(Copy, DoesNotDisturbAnotherProgramThatMakesTheSame)
{
    makeFile(disk, "/diary/second.mdb-unfinished", Bytes(99));
    const auto other = disk.open("/diary/second.mdb-unfinished", OpenMode::ReadWrite);
    other->lock(LockLevel::Exclusive, std::chrono::milliseconds{0});
    EXPECT_THAT([&] { Database::open(disk, kDiary)->copyTo("/diary/second.mdb"); }, throwsError(ErrorCode::Locked));
    EXPECT_EQ(disk.content("/diary/second.mdb-unfinished"), Bytes(99));
}

TEST_F(Copy, IsThereWholeOrNotAtAllWhereverThePowerFails)
{
    const std::size_t states = forEachPowerFailure({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = [](FileSystem& other) { Database::open(other, kDiary)->copyTo("/diary/second.mdb"); },
        .check =
            [this](FileSystem& other, bool finished) {
                EXPECT_EQ(contentOfFile(other, kDiary), disk.content(kDiary));
                if (finished || other.exists("/diary/second.mdb")) {
                    EXPECT_EQ(contentOfFile(other, "/diary/second.mdb"), disk.content(kDiary));
                }
                Database::open(other, kDiary)->copyTo("/diary/third.mdb"); // the remains are in nobody's way
            },
    });
    EXPECT_GT(states, 15U);
}

TEST_F(Copy, IsThereWholeOrNotAtAllWhicheverCallFails)
{
    const std::size_t faults = forEachFault({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = [](FileSystem& other) { Database::open(other, kDiary)->copyTo("/diary/second.mdb"); },
        .check =
            [this](FileSystem& other, bool finished) {
                EXPECT_EQ(contentOfFile(other, kDiary), disk.content(kDiary));
                if (finished || other.exists("/diary/second.mdb")) {
                    EXPECT_EQ(contentOfFile(other, "/diary/second.mdb"), disk.content(kDiary));
                }
            },
    });
    EXPECT_GT(faults, 20U);
}

TEST_F(Copy, LeavesNothingBehindOnADiskThatIsFull)
{
    const std::size_t faults = forEachFault({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = [](FileSystem& other) { Database::open(other, kDiary)->copyTo("/diary/second.mdb"); },
        .check =
            [](FileSystem& other, bool finished) {
                EXPECT_EQ(other.exists("/diary/second.mdb"), finished);
                EXPECT_FALSE(other.exists("/diary/second.mdb-unfinished"));
            },
        .call = test::Call::Write,
        .code = ErrorCode::DiskFull,
    });
    EXPECT_GT(faults, 0U);
}

TEST(CopyOnDisk, CanBeUsedByThoseWhoMayUseTheFile)
{
    const TemporaryFolder folder;
    const auto diary = createSmallDiary(posixFileSystem(), folder.path("a.mdb"));
    ASSERT_EQ(::chmod(folder.path("a.mdb").c_str(), 0640), 0);
    diary->copyTo(folder.path("b.mdb"));
    struct stat found = {};
    ASSERT_EQ(::stat(folder.path("b.mdb").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, 0640U);
}

// --- A copy in the place of the file ---

using Replacement = Safekeeping;

void replaceByCopy(FileSystem& disk)
{
    const auto copy = Database::open(disk, kCopy, OpenMode::ReadOnly);
    const auto diary = Database::open(disk, kDiary);
    diary->begin();
    diary->replaceByCopyOf(*copy);
}

TEST_F(Replacement, HoldsTheSameBytesAsTheCopy)
{
    replaceByCopy(disk);
    EXPECT_EQ(disk.content(kDiary), disk.content(kCopy));
    EXPECT_EQ(disk.files().size(), 2U);
}

TEST_F(Replacement, IsRefusedAfterAChange)
{
    const auto copy = Database::open(disk, kCopy);
    const auto diary = Database::open(disk, kDiary);
    diary->begin();
    insertMeal(*diary);
    EXPECT_THAT([&] { diary->replaceByCopyOf(*copy); }, throwsError(ErrorCode::InvalidArgument));
    diary->rollback();
    EXPECT_THAT([&] { diary->replaceByCopyOf(*copy); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_EQ(contentAt(disk, kDiary), now);
}

TEST_F(Replacement, WaitsForReadersAndThenGivesUp)
{
    const auto reader = Database::open(disk, kDiary);
    reader->beginRead();
    EXPECT_THAT([&] { replaceByCopy(disk); }, throwsError(ErrorCode::Locked));
    reader->endRead();
    EXPECT_EQ(contentAt(disk, kDiary), now);
    EXPECT_EQ(disk.files().size(), 2U);
}

TEST_F(Replacement, ThatMayNotOutlastALossOfPowerSaysThatItIsInPlace)
{
    test::FaultFileSystem faulty(disk);
    faulty.set({.at = 1, .call = test::Call::SyncFolder, .code = ErrorCode::DiskFull});
    EXPECT_THAT([&] { replaceByCopy(faulty); }, throwsError(ErrorCode::Io, "is in place"));
    EXPECT_TRUE(faulty.hasFailed());
    EXPECT_EQ(disk.content(kDiary), disk.content(kCopy));
}

TEST_F(Replacement, IsNoticedByConnectionsToTheOldFile)
{
    const auto browser = Database::open(disk, kDiary);
    EXPECT_EQ(contentOf(*browser), now);
    replaceByCopy(disk);
    EXPECT_THAT([&] { static_cast<void>(contentOf(*browser)); }, throwsError(ErrorCode::Replaced, "replaced"));
    EXPECT_THAT([&] { insertMeal(*browser); }, throwsError(ErrorCode::Replaced, "open it again"));
    EXPECT_EQ(contentAt(disk, kDiary), before) << "no change of the old file reaches the new one";
}

TEST_F(Replacement, IsTheOldOrTheNewFileWhereverThePowerFails)
{
    const std::size_t states = forEachPowerFailure({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = replaceByCopy,
        .check =
            [this](FileSystem& other, bool finished) {
                EXPECT_FALSE(other.exists(kJournal));
                EXPECT_THAT(contentOfFile(other, kDiary), AnyOf(Eq(disk.content(kDiary)), Eq(disk.content(kCopy))));
                EXPECT_EQ(contentOfFile(other, kCopy), disk.content(kCopy));
                if (finished) {
                    EXPECT_EQ(contentAt(other, kDiary), before);
                }
            },
    });
    EXPECT_GT(states, 15U);
}

TEST_F(Replacement, IsTheOldOrTheNewFileWhicheverCallFails)
{
    forEachFault({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = replaceByCopy,
        .check =
            [this](FileSystem& other, bool finished) {
                EXPECT_FALSE(other.exists(kJournal));
                EXPECT_THAT(contentAt(other, kDiary),
                            finished ? AnyOf(Eq(before), Eq(before)) : AnyOf(Eq(now), Eq(before)));
            },
    });
}

/// The diary with the journal of a commit that the power failed in.
Files filesWithJournal(const MemoryFileSystem& disk)
{
    RecordingFileSystem recorded(disk.files());
    insertMeal(*Database::open(recorded, kDiary));
    DiskState state(recorded.start());
    for (const Event& event : recorded.events()) {
        state.apply(event);
        Files files = state.seen();
        if (files.contains(kJournal) && files.at(kDiary) != disk.content(kDiary)) {
            return files;
        }
    }
    ADD_FAILURE() << "at no time a journal is beside a file that was written to";
    return {};
}

TEST_F(Replacement, NeverMeetsTheJournalOfTheOldFile)
{
    const Files files = filesWithJournal(disk);
    const std::size_t states = forEachPowerFailure({
        .prepare =
            [&files](FileSystem& other) {
                for (const auto& [path, content] : files) {
                    makeFile(other, path, content);
                }
            },
        .body = replaceByCopy,
        .check =
            [this](FileSystem& other, bool) {
                if (contentOfFile(other, kDiary) == disk.content(kCopy)) {
                    EXPECT_FALSE(other.exists(kJournal));
                }
                EXPECT_THAT(contentAt(other, kDiary), AnyOf(Eq(now), Eq(before)));
                EXPECT_THAT(Database::open(other, kDiary)->check(), IsEmpty());
            },
    });
    EXPECT_GT(states, 35U);
}

/// Adds a meal and dies at that call.
void insertMealAndDie(FileSystem& disk, std::size_t call)
{
    FaultFileSystem dying(disk);
    dying.set({.at = call, .lasting = true});
    EXPECT_THROW(insertMeal(*Database::open(dying, kDiary)), Error);
}

/// The call at which a program that adds a meal has taken its journal's name away, but not durably.
std::size_t callAfterTheJournal(const MemoryFileSystem& disk)
{
    constexpr std::size_t kMost = 1000;
    for (std::size_t call = 0; call < kMost; ++call) {
        MemoryFileSystem other;
        other.setContent(kDiary, disk.content(kDiary));
        insertMealAndDie(other, call);
        if (other.content(kDiary) != disk.content(kDiary) && !other.exists(kJournal)) {
            return call;
        }
    }
    ADD_FAILURE() << "at no call the meal is there and the journal gone";
    return 0;
}

TEST_F(Replacement, NeverMeetsAJournalThatWasNotGoneForGood)
{
    const std::size_t death = callAfterTheJournal(disk);
    const std::size_t states = forEachPowerFailure({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body =
            [death](FileSystem& other) {
                insertMealAndDie(other, death);
                replaceByCopy(other);
            },
        .check =
            [this](FileSystem& other, bool finished) {
                if (contentOfFile(other, kDiary) == disk.content(kCopy)) {
                    EXPECT_FALSE(other.exists(kJournal));
                }
                EXPECT_FALSE(finished && contentAt(other, kDiary) != before);
                EXPECT_THAT(Database::open(other, kDiary)->check(), IsEmpty());
            },
    });
    EXPECT_GT(states, 40U);
}

TEST(ReplacementOnDisk, IsNoticedByAnotherProcess)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("Nutrition.mdb");
    const auto diary = createSmallDiary(posixFileSystem(), path);
    diary->copyTo(folder.path("copy.mdb"));
    insertMeal(*diary);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        try {
            const auto copy = Database::open(posixFileSystem(), folder.path("copy.mdb"), OpenMode::ReadOnly);
            const auto own = Database::open(posixFileSystem(), path);
            own->begin();
            own->replaceByCopyOf(*copy);
        } catch (const Error&) {
            ::_exit(1);
        }
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    EXPECT_THAT([&] { insertMeal(*diary); }, throwsError(ErrorCode::Replaced, "replaced"));
    const auto again = Database::open(posixFileSystem(), path);
    EXPECT_EQ(again->table("Meals").rowCount(), 0U);
    insertMeal(*again);
    EXPECT_EQ(again->table("Meals").rowCount(), 1U);
}

TEST(ReplacementOnDisk, ThroughALinkReplacesTheFileAndKeepsTheLink)
{
    const TemporaryFolder folder;
    const auto diary = createSmallDiary(posixFileSystem(), folder.path("real.mdb"));
    diary->copyTo(folder.path("copy.mdb"));
    insertMeal(*diary);
    std::filesystem::create_symlink(folder.path("real.mdb"), folder.path("link.mdb"));
    const auto copy = Database::open(posixFileSystem(), folder.path("copy.mdb"));
    const auto linked = Database::open(posixFileSystem(), folder.path("link.mdb"));
    linked->begin();
    linked->replaceByCopyOf(*copy);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.mdb")));
    EXPECT_EQ(Database::open(posixFileSystem(), folder.path("real.mdb"))->table("Meals").rowCount(), 0U);
}

// --- A copy where a file is that cannot be opened ---

class UnusableFile : public Safekeeping
{
protected:
    UnusableFile()
    {
        wreck = disk.content(kDiary);
        std::fill(wreck.begin(), wreck.begin() + kPageSize, std::byte{0x11});
        disk.setContent(kDiary, wreck);
    }

    static void copyOver(FileSystem& disk)
    {
        Database::open(disk, kCopy, OpenMode::ReadOnly)->copyOver(kDiary, kAside);
    }

    /// The old pair is whole under one name, and a new file has no journal.
    void expectWhole(FileSystem& other)
    {
        const bool inPlace = other.exists(kDiary) && contentOfFile(other, kDiary) == wreck;
        const std::string at = inPlace ? kDiary : kAside;
        ASSERT_TRUE(other.exists(at));
        ASSERT_TRUE(other.exists(at + "-journal"));
        EXPECT_EQ(contentOfFile(other, at), wreck);
        EXPECT_EQ(contentOfFile(other, at + "-journal"), journal);
        if (!inPlace && other.exists(kDiary)) {
            EXPECT_FALSE(other.exists(kJournal));
            EXPECT_EQ(contentAt(other, kDiary), before);
        }
    }

    Bytes wreck;
    Bytes journal = Bytes(700, std::byte{0x22});
};

TEST_F(UnusableFile, IsMovedAsideWithItsJournal)
{
    disk.setContent(kJournal, journal);
    copyOver(disk);
    EXPECT_EQ(contentAt(disk, kDiary), before);
    EXPECT_EQ(disk.content(kAside), wreck);
    EXPECT_EQ(disk.content(kAside + "-journal"), journal);
    EXPECT_EQ(disk.files().size(), 4U);
}

TEST_F(UnusableFile, MayHaveNoJournal)
{
    copyOver(disk);
    EXPECT_EQ(disk.content(kAside), wreck);
    EXPECT_EQ(disk.files().size(), 3U);
}

TEST_F(UnusableFile, ThatIsGoneAltogetherMayHaveLeftAJournal)
{
    disk.remove(kDiary);
    disk.setContent(kJournal, journal);
    copyOver(disk);
    EXPECT_EQ(contentAt(disk, kDiary), before);
    EXPECT_EQ(disk.content(kAside + "-journal"), journal);
    EXPECT_FALSE(disk.exists(kAside));
}

TEST_F(UnusableFile, StaysWhereTheNameAsideIsTaken)
{
    for (const std::string& taken : {kAside, kAside + "-journal"}) {
        disk.setContent(taken, Bytes(5));
        EXPECT_THROW(copyOver(disk), Error);
        EXPECT_EQ(disk.content(kDiary), wreck);
        disk.remove(taken);
    }
}

TEST_F(UnusableFile, StaysWhileAnotherProgramHasIt)
{
    const auto other = disk.open(kDiary, OpenMode::ReadOnly);
    other->lock(LockLevel::Shared, std::chrono::milliseconds{0});
    EXPECT_THAT([&] { copyOver(disk); }, throwsError(ErrorCode::Locked));
    EXPECT_EQ(disk.content(kDiary), wreck);
    EXPECT_EQ(disk.files().size(), 2U);
}

TEST_F(UnusableFile, IsWholeUnderOneOfItsNamesWhereverThePowerFails)
{
    disk.setContent(kJournal, journal);
    const std::size_t states = forEachPowerFailure({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = copyOver,
        .check =
            [this](FileSystem& other, bool finished) {
                expectWhole(other);
                if (finished) {
                    EXPECT_EQ(contentAt(other, kDiary), before);
                }
            },
    });
    EXPECT_GT(states, 30U);
}

TEST_F(UnusableFile, IsWholeUnderOneOfItsNamesWhicheverCallFails)
{
    disk.setContent(kJournal, journal);
    forEachFault({
        .prepare = [this](FileSystem& other) { prepare(other); },
        .body = copyOver,
        .check = [this](FileSystem& other, bool) { expectWhole(other); },
    });
}

} // namespace
} // namespace jet
