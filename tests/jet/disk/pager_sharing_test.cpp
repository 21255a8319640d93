// Several connections to one file.
#include "jet/disk/journal.h"
#include "jet/disk/pager_fixture.h"
#include "jet/support/forwarding_file_system.h"
#include "jet/support/temporary_folder.h"

#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace jet {
namespace {

using namespace test;
using std::chrono::milliseconds;

class TwoConnections : public testing::Test
{
protected:
    TwoConnections() { disk.setContent(kPath, filledPages({1, 2, 3})); }

    Pager open(OpenMode mode = OpenMode::ReadWrite) { return Pager(disk, kPath, mode, impatient()); }

    static void change(Pager& pager, PageNumber page, int value)
    {
        pager.begin();
        mark(pager, page, value);
        pager.commit();
    }

    MemoryFileSystem disk;
};

TEST_F(TwoConnections, ACommitOfOneIsSeenByTheOther)
{
    Pager one = open();
    Pager two = open(OpenMode::ReadOnly);
    EXPECT_EQ(marks(two), (std::vector{1, 2, 3}));
    const std::uint64_t generation = two.generation();
    one.begin();
    mark(one, 1, 77);
    appendMarked(one, 78);
    one.commit();
    EXPECT_EQ(marks(two), (std::vector{1, 77, 3, 78}));
    EXPECT_EQ(two.pageCount(), 4U);
    EXPECT_GT(two.generation(), generation);
}

TEST_F(TwoConnections, OnesOwnCommitKeepsTheCache)
{
    Pager one = open();
    const std::uint64_t generation = one.generation();
    change(one, 1, 77);
    change(one, 2, 78);
    EXPECT_EQ(marks(one), (std::vector{1, 77, 78}));
    EXPECT_EQ(one.generation(), generation);
}

/// A file whose size and time never change, as on a system with a coarse clock.
class TimelessFileSystem final : public ForwardingFileSystem
{
    class TimelessFile final : public ForwardingFile
    {
    public:
        using ForwardingFile::ForwardingFile;
        FileStamp stamp() override { return {.size = ForwardingFile::stamp().size, .changedNanoseconds = 1}; }
    };

public:
    using ForwardingFileSystem::ForwardingFileSystem;
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override
    {
        return std::make_unique<TimelessFile>(ForwardingFileSystem::open(path, mode));
    }
};

TEST_F(TwoConnections, ACommitThatKeepsSizeAndTimeIsSeenByItsCount)
{
    TimelessFileSystem timeless(disk);
    Pager one(timeless, kPath, OpenMode::ReadWrite, impatient());
    Pager two(timeless, kPath, OpenMode::ReadWrite, impatient());
    EXPECT_EQ(markOf(two, 1), 2);
    for (int value = 50; value < 60; ++value) {
        change(one, 1, value);
        EXPECT_EQ(markOf(two, 1), value);
    }
}

TEST_F(TwoConnections, AChangeByAProgramThatCountsNothingIsSeenByTheTime)
{
    Pager pager = open();
    EXPECT_EQ(markOf(pager, 1), 2);
    disk.setContent(kPath, filledPages({1, 9, 3}));
    EXPECT_EQ(markOf(pager, 1), 9);
}

TEST_F(TwoConnections, AReaderSeesOneStateUntilItEnds)
{
    Pager one = open();
    Pager two = open();
    {
        const ReadGuard guard(two);
        EXPECT_EQ(markOf(two, 1), 2);
        one.begin();
        mark(one, 1, 77);
        EXPECT_THAT([&] { one.commit(); }, throwsError(ErrorCode::Locked, "in use"));
        EXPECT_FALSE(one.inTransaction()) << "a commit that fails has rolled back";
        EXPECT_EQ(markOf(two, 1), 2);
    }
    EXPECT_EQ(disk.content(kPath), filledPages({1, 2, 3}));
    EXPECT_FALSE(disk.exists(kUnfinishedPath));
    change(one, 1, 78);
    EXPECT_EQ(markOf(two, 1), 78);
}

TEST_F(TwoConnections, OnlyOneAtATimeIsInATransaction)
{
    Pager one = open();
    Pager two = open();
    one.begin();
    mark(one, 1, 77);
    EXPECT_THAT([&] { two.begin(); }, throwsError(ErrorCode::Locked));
    EXPECT_FALSE(two.inTransaction());
    EXPECT_EQ(marks(two), (std::vector{1, 2, 3})) << "reading goes on";
    one.commit();
    two.begin();
    EXPECT_EQ(markOf(two, 1), 77) << "a transaction begins with what is there";
    mark(two, 1, 78);
    two.commit();
    EXPECT_EQ(marks(one), (std::vector{1, 78, 3}));
}

TEST_F(TwoConnections, AConnectionThatReadsCanBeginToo)
{
    Pager one = open();
    Pager two = open();
    one.begin();
    {
        const ReadGuard guard(two);
        EXPECT_THAT([&] { two.begin(); }, throwsError(ErrorCode::Locked));
        one.rollback();
        two.begin();
        mark(two, 1, 77);
        two.commit();
        EXPECT_EQ(markOf(two, 1), 77);
    }
    EXPECT_EQ(markOf(one, 1), 77);
}

TEST_F(TwoConnections, WhileOneHoldsTheFileForItselfTheOtherCannotEvenOpenIt)
{
    const std::unique_ptr<File> holder = disk.open(kPath, OpenMode::ReadWrite);
    holder->lock(LockLevel::Exclusive, milliseconds{0});
    EXPECT_THAT([&] { open(); }, throwsError(ErrorCode::Locked, kPath));
}

TEST_F(TwoConnections, AFileThatWasReplacedIsNotUsedAnyMore)
{
    Pager pager = open();
    disk.setContent("new", filledPages({7, 8}));
    disk.rename("new", kPath);
    EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Replaced, "moved, removed or replaced"));
    EXPECT_THAT([&] { pager.beginRead(); }, throwsError(ErrorCode::Replaced, "moved, removed or replaced"));
    EXPECT_EQ(disk.content(kPath), filledPages({7, 8}));
    EXPECT_EQ(marksOfFile(disk), (std::vector{7, 8}));
}

PageRef filledPage(int fill)
{
    auto page = std::make_shared<Page>();
    page->fill(static_cast<std::byte>(fill));
    return page;
}

class TwoConnectionsAndACrash : public TwoConnections
{
protected:
    /// What a third connection leaves that crashes while it writes.
    void crashOfAnother()
    {
        Journal(disk, kPath)
            .write(3, 3,
                   std::vector<ChangedPage>{{.number = 0, .before = filledPage(1), .after = filledPage(9)},
                                            {.number = 1, .before = filledPage(2), .after = filledPage(9)}});
        disk.setContent(kPath, filledPages({9, 9, 3}));
    }
};

TEST_F(TwoConnectionsAndACrash, TheNextReadTakesTheBrokenCommitBack)
{
    Pager pager = open();
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
    crashOfAnother();
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
    EXPECT_FALSE(disk.exists(kJournalPath));
}

TEST_F(TwoConnectionsAndACrash, TheNextTransactionTakesTheBrokenCommitBack)
{
    Pager pager = open();
    crashOfAnother();
    change(pager, 2, 77);
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 2, 77}));
}

TEST_F(TwoConnectionsAndACrash, AConnectionForReadingSaysThatItCannotTakeItBack)
{
    Pager reader = open(OpenMode::ReadOnly);
    crashOfAnother();
    EXPECT_THAT([&] { reader.beginRead(); }, throwsError(ErrorCode::ReadOnly, "interrupted"));
    Pager writer = open();
    EXPECT_EQ(marks(reader), (std::vector{1, 2, 3}));
}

/// Lets something happen just before a lock is asked for.
class MomentFileSystem final : public ForwardingFileSystem
{
    class MomentFile final : public ForwardingFile
    {
    public:
        MomentFile(std::unique_ptr<File> file, MomentFileSystem& moments)
            : ForwardingFile(std::move(file)), moments_(&moments)
        {
        }
        void lock(LockLevel level, milliseconds patience) override
        {
            if (level == moments_->level) {
                if (const auto happen = std::exchange(moments_->happen, nullptr)) {
                    happen();
                }
            }
            ForwardingFile::lock(level, patience);
        }

    private:
        MomentFileSystem* moments_;
    };

public:
    using ForwardingFileSystem::ForwardingFileSystem;
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override
    {
        return std::make_unique<MomentFile>(ForwardingFileSystem::open(path, mode), *this);
    }

    LockLevel level = LockLevel::Exclusive;
    std::function<void()> happen;
};

TEST_F(TwoConnectionsAndACrash, OneMayBeQuickerToTakeItBack)
{
    MomentFileSystem moments(disk);
    Pager slow(moments, kPath, OpenMode::ReadWrite, impatient());
    crashOfAnother();
    // Between seeing the journal and locking the file, another one repairs the file and goes on changing it.
    moments.happen = [&] {
        Pager quick = open();
        change(quick, 1, 77);
    };
    EXPECT_EQ(marks(slow), (std::vector{1, 77, 3}));
}

TEST_F(TwoConnectionsAndACrash, OneMayBeQuickerAndReplaceTheFileToo)
{
    MomentFileSystem moments(disk);
    Pager slow(moments, kPath, OpenMode::ReadWrite, impatient());
    crashOfAnother();
    moments.happen = [&] {
        EXPECT_EQ(marksOfFile(disk), (std::vector{1, 2, 3}));
        disk.setContent("new", filledPages({7, 8}));
        disk.rename("new", kPath);
    };
    EXPECT_THAT([&] { slow.beginRead(); }, throwsError(ErrorCode::Replaced, "moved, removed or replaced"));
    EXPECT_EQ(marksOfFile(disk), (std::vector{7, 8}));
}

TEST_F(TwoConnectionsAndACrash, WhileAReaderIsThereItCannotBeTakenBackYet)
{
    Pager pager = open();
    const std::unique_ptr<File> reader = disk.open(kPath, OpenMode::ReadOnly);
    reader->lock(LockLevel::Shared, milliseconds{0});
    crashOfAnother();
    EXPECT_THAT([&] { pager.beginRead(); }, throwsError(ErrorCode::Locked));
    EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Locked));
    reader->lock(LockLevel::None, milliseconds{0});
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
}

// --- Real files ---

class RealPager : public testing::Test
{
protected:
    RealPager()
    {
        const auto file = posixFileSystem().open(path, OpenMode::Create);
        file->writeAt(0, filledPages({1, 2, 3}));
    }

    TemporaryFolder folder;
    std::string path = folder.path(kPath);
};

TEST_F(RealPager, ChangesARealFile)
{
    {
        Pager pager(posixFileSystem(), path, OpenMode::ReadWrite);
        pager.begin();
        mark(pager, 1, 77);
        appendMarked(pager, 78);
        pager.commit();
    }
    Pager pager(posixFileSystem(), path, OpenMode::ReadOnly);
    EXPECT_EQ(marks(pager), (std::vector{1, 77, 3, 78}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(std::filesystem::path(path).parent_path()), {}), 1);
}

TEST_F(RealPager, AFileOf2GiBGrowsNoMore)
{
    // All but the first pages are a hole, which takes no room on the disk.
    std::filesystem::resize_file(path, std::uint64_t{kMaxPageCount} * kPageSize);
    Pager pager(posixFileSystem(), path, OpenMode::ReadWrite, impatient());
    pager.begin();
    EXPECT_THAT([&] { static_cast<void>(pager.append()); }, throwsError(ErrorCode::Overflow, "2 GiB"));
    mark(pager, kMaxPageCount - 1, 7);
    pager.commit();
    EXPECT_EQ(markOf(pager, kMaxPageCount - 1), 7);
    EXPECT_EQ(markOf(pager, 2), 3);
}

TEST_F(RealPager, AProcessThatIsKilledWhileItCommitsLeavesTheOldState)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
        const auto file = posixFileSystem().open(path, OpenMode::ReadWrite);
        file->lock(LockLevel::Exclusive, milliseconds{0});
        Journal(posixFileSystem(), path)
            .write(3, 3, std::vector<ChangedPage>{{.number = 0, .before = filledPage(1), .after = filledPage(9)}});
        file->writeAt(0, *filledPage(9));
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    struct stat rights = {};
    ASSERT_EQ(::stat((path + "-journal").c_str(), &rights), 0);
    EXPECT_EQ(rights.st_mode & 0777U, 0640U) << "the journal can be read by those who can read the diary";
    Pager pager(posixFileSystem(), path, OpenMode::ReadWrite, impatient());
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
}

TEST_F(RealPager, AFileOpenedThroughALinkHasItsJournalBesideTheFile)
{
    const std::string link = folder.path("link.mdb");
    std::filesystem::create_symlink(path, link);
    Journal(posixFileSystem(), path)
        .write(3, 3, std::vector<ChangedPage>{{.number = 0, .before = filledPage(1), .after = filledPage(9)}});
    Pager pager(posixFileSystem(), link, OpenMode::ReadWrite, impatient());
    EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
}

} // namespace
} // namespace jet
