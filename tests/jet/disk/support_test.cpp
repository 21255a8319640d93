// The file systems of the tests do what they promise: otherwise tests that use them could not fail.
#include "jet/disk/journal.h"
#include "jet/disk/pager_fixture.h"
#include "jet/support/fault_file_system.h"
#include "jet/support/journal_referee_file_system.h"

#include <gtest/gtest-spi.h>

namespace jet {
namespace {

using namespace test;

Bytes content(int fill)
{
    return Bytes(kPageSize, static_cast<std::byte>(fill));
}

TEST(FaultFileSystem, FailsOnceOrFromThenOn)
{
    MemoryFileSystem memory;
    FaultFileSystem disk(memory);
    disk.set({.at = 1, .lasting = false, .call = Call::Exists, .code = ErrorCode::DiskFull});
    EXPECT_FALSE(disk.exists("a"));
    EXPECT_THAT([&] { static_cast<void>(disk.exists("a")); }, throwsError(ErrorCode::DiskFull));
    EXPECT_FALSE(disk.exists("a"));
    disk.set({.at = 0, .lasting = true});
    EXPECT_ANY_THROW(static_cast<void>(disk.exists("a")));
    EXPECT_ANY_THROW(static_cast<void>(disk.exists("a")));
    disk.heal();
    EXPECT_FALSE(disk.exists("a"));
}

TEST(FaultFileSystem, AWriteThatFailsHasWrittenHalf)
{
    MemoryFileSystem memory;
    memory.setContent("a", {});
    FaultFileSystem disk(memory);
    const auto file = disk.open("a", OpenMode::ReadWrite);
    disk.set({.at = 0});
    EXPECT_ANY_THROW(file->writeAt(0, content(1)));
    EXPECT_EQ(memory.content("a").size(), kPageSize / 2);
}

class Referee : public testing::Test
{
protected:
    Referee() { disk.setContent(kPath, filledPages({1, 2, 3})); }

    std::unique_ptr<File> openLocked()
    {
        std::unique_ptr<File> file = referee.open(kPath, OpenMode::ReadWrite);
        file->lock(LockLevel::Exclusive, std::chrono::milliseconds{0});
        return file;
    }

    void writeJournal()
    {
        const auto before = std::make_shared<Page>();
        const auto after = std::make_shared<Page>();
        before->fill(std::byte{1});
        Journal(referee, kPath).write(3, 4, std::vector<ChangedPage>{{.number = 0, .before = before, .after = after}});
    }

    MemoryFileSystem disk;
    JournalRefereeFileSystem referee{disk, kPath};
};

TEST_F(Referee, LetsAProperCommitPass)
{
    const auto file = openLocked();
    writeJournal();
    file->writeAt(0, content(9));
    file->writeAt(3 * kPageSize, content(9));
    file->sync();
    referee.remove(kJournalPath);
    EXPECT_EQ(referee.watchedChanges(), 2U);
}

TEST_F(Referee, ObjectsToAWriteWithoutAJournal)
{
    const auto file = openLocked();
    EXPECT_NONFATAL_FAILURE(file->writeAt(0, content(9)), "without a durable journal");
}

TEST_F(Referee, ObjectsToAPageThatIsNotInTheJournal)
{
    const auto file = openLocked();
    writeJournal();
    EXPECT_NONFATAL_FAILURE(file->writeAt(kPageSize, content(9)), "page 1 is overwritten and not in the journal");
}

TEST_F(Referee, ObjectsToAWriteWithoutTheLock)
{
    const auto file = referee.open(kPath, OpenMode::ReadWrite);
    writeJournal();
    EXPECT_NONFATAL_FAILURE(file->writeAt(0, content(9)), "without the exclusive lock");
}

TEST_F(Referee, ObjectsToAJournalThatGoesTooEarly)
{
    const auto file = openLocked();
    writeJournal();
    file->writeAt(0, content(9));
    EXPECT_NONFATAL_FAILURE(referee.remove(kJournalPath), "before the file is synced");
}

TEST_F(Referee, ObjectsToAJournalThatHoldsAnotherPage)
{
    disk.setContent(kPath, filledPages({5, 2, 3}));
    EXPECT_NONFATAL_FAILURE(writeJournal(), "does not hold page 0 as it is");
}

} // namespace
} // namespace jet
