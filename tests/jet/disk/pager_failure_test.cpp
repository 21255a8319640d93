// Loss of power and failing calls: afterwards the file is as before the transaction or as after it, never between.
#include "jet/disk/journal.h"
#include "jet/disk/pager_fixture.h"
#include "jet/support/fault_file_system.h"
#include "jet/support/journal_referee_file_system.h"
#include "jet/support/power_failure.h"

namespace jet {
namespace {

using namespace test;
using testing::AnyOf;
using testing::Eq;

/// A kind of commit, and the marks of all pages before and after it.
struct Commit {
    std::string name;
    std::vector<int> before;
    std::vector<int> after;
    std::function<void(Pager&)> change;
};

void PrintTo(const Commit& commit, std::ostream* out)
{
    *out << commit.name;
}

std::vector<int> numbered(int count)
{
    std::vector<int> numbers;
    for (int i = 1; i <= count; ++i) {
        numbers.push_back(i);
    }
    return numbers;
}

const std::vector<Commit> kCommits{
    {.name = "OnePage", .before = {1, 2, 3}, .after = {1, 2, 33}, .change = [](Pager& pager) { mark(pager, 2, 33); }},
    {.name = "Page0Alone", .before = {1, 2}, .after = {11, 2}, .change = [](Pager& pager) { mark(pager, 0, 11); }},
    {.name = "ScatteredPages",
     .before = numbered(9),
     .after = {1, 22, 3, 4, 55, 66, 7, 8, 99},
     .change =
         [](Pager& pager) {
             for (const PageNumber page : {8U, 1U, 4U, 5U}) {
                 mark(pager, page, static_cast<int>((page + 1) * 11));
             }
         }},
    {.name = "GrowingFile",
     .before = {1, 2},
     .after = {1, 22, 33, 44},
     .change =
         [](Pager& pager) {
             mark(pager, 1, 22);
             appendMarked(pager, 33);
             appendMarked(pager, 44);
         }},
    {.name = "FirstPages",
     .before = {},
     .after = {7, 8},
     .change =
         [](Pager& pager) {
             appendMarked(pager, 7);
             appendMarked(pager, 8);
         }},
    {.name = "PartTakenBack",
     .before = {1, 2, 3},
     .after = {1, 22, 3},
     .change =
         [](Pager& pager) {
             mark(pager, 1, 22);
             const Pager::Savepoint savepoint = pager.savepoint();
             mark(pager, 2, 33);
             appendMarked(pager, 44);
             pager.rollbackTo(savepoint);
         }},
};

class EveryCommit : public testing::TestWithParam<Commit>
{
protected:
    static std::function<void(FileSystem&)> prepare()
    {
        return [](FileSystem& disk) { makeFile(disk, filledPages(GetParam().before)); };
    }

    /// Opens the file, commits, and has the referee watch.
    static void commit(FileSystem& disk)
    {
        JournalRefereeFileSystem referee(disk, kPath);
        Pager pager(referee, kPath, OpenMode::ReadWrite, impatient());
        pager.begin();
        GetParam().change(pager);
        pager.commit();
    }

    static void expectOldOrNew(FileSystem& disk, bool finished)
    {
        const std::vector<int> found = marksOfFile(disk);
        if (finished) {
            EXPECT_EQ(found, GetParam().after) << "a commit that returned is durable";
        } else {
            EXPECT_THAT(found, AnyOf(Eq(GetParam().before), Eq(GetParam().after)));
        }
        // The pages are right in every byte, not only where the mark is.
        Bytes expected = filledPages(found);
        const std::unique_ptr<File> file = disk.open(kPath, OpenMode::ReadOnly);
        Bytes content(static_cast<std::size_t>(file->size()));
        file->readAt(0, content);
        ASSERT_EQ(content.size(), expected.size());
        std::vector<PageNumber> changed;
        for (PageNumber page = 0; page < found.size(); ++page) {
            const bool isNew = page >= GetParam().before.size() || found[page] != GetParam().before[page];
            const int fill = page < GetParam().before.size() ? GetParam().before[page] : 0;
            Bytes whole(kPageSize, static_cast<std::byte>(fill));
            if (isNew) {
                whole[kMark] = static_cast<std::byte>(found[page]);
            }
            if (page == 0 && !GetParam().before.empty()) {
                const bool isAfter = found == GetParam().after;
                whole[kCommitCount] = static_cast<std::byte>(fill + (isAfter ? 1 : 0));
            }
            EXPECT_TRUE(
                std::equal(whole.begin(), whole.end(), content.begin() + static_cast<std::ptrdiff_t>(pageOffset(page))))
                << "page " << page;
        }
        EXPECT_FALSE(disk.exists(kJournalPath));
        // And the next change works.
        Pager pager(disk, kPath, OpenMode::ReadWrite, impatient());
        pager.begin();
        const PageNumber page = appendMarked(pager, 99);
        pager.commit();
        EXPECT_EQ(markOf(pager, page), 99);
        EXPECT_FALSE(disk.exists(kUnfinishedPath));
    }

    static void recover(FileSystem& disk)
    {
        JournalRefereeFileSystem referee(disk, kPath);
        const Pager pager(referee, kPath, OpenMode::ReadWrite, impatient());
    }
};

INSTANTIATE_TEST_SUITE_P(Pager, EveryCommit, testing::ValuesIn(kCommits),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(EveryCommit, SurvivesALossOfPowerAtEveryCallOfItAndOfTheRecovery)
{
    const std::size_t checked =
        forEachPowerFailure({.prepare = prepare(), .body = commit, .recover = recover, .check = expectOldOrNew});
    EXPECT_GT(checked, 120U);
}

TEST_P(EveryCommit, SurvivesAFailureOfEveryCall)
{
    const std::size_t faults = forEachFault({.prepare = prepare(), .body = commit, .check = expectOldOrNew});
    EXPECT_GT(faults, 30U);
}

TEST_P(EveryCommit, SurvivesAFullDiskAtEveryWrite)
{
    const std::size_t faults = forEachFault({.prepare = prepare(),
                                             .body = commit,
                                             .check = expectOldOrNew,
                                             .call = Call::Write,
                                             .code = ErrorCode::DiskFull});
    EXPECT_GE(faults, 4U);
}

TEST_P(EveryCommit, OfAConnectionThatLivesOnIsTakenBackAtOnceOrTheConnectionSaysSo)
{
    std::size_t faults = 0;
    for (const bool lasting : {false, true}) {
        for (std::size_t at = 0;; ++at) {
            SCOPED_TRACE("call " + std::to_string(at) + (lasting ? " and all after it" : ""));
            MemoryFileSystem disk;
            prepare()(disk);
            FaultFileSystem faulty(disk);
            JournalRefereeFileSystem referee(faulty, kPath);
            Pager pager(referee, kPath, OpenMode::ReadWrite, impatient());
            EXPECT_EQ(marks(pager), GetParam().before);
            const ReadGuard reading(pager); // also goes on through the failure
            pager.begin();
            GetParam().change(pager);
            faulty.set({.at = at, .lasting = lasting});
            bool finished = true;
            bool failedForGood = false;
            try {
                pager.commit();
            } catch (const Error& error) {
                finished = false;
                failedForGood = std::string(error.what()).find("could not be taken back") != std::string::npos;
            }
            const bool struck = faulty.hasFailed();
            faulty.heal();
            EXPECT_FALSE(pager.inTransaction());
            if (failedForGood) {
                EXPECT_THAT([&] { pager.beginRead(); }, throwsError(ErrorCode::Io, "open the file again"));
                EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Io, "open the file again"));
                EXPECT_THAT([&] { static_cast<void>(pager.read(0)); },
                            throwsError(ErrorCode::Io, "open the file again"));
                pager.rollback();
                expectOldOrNew(disk, false); // and nothing of ours is in the way of those who repair it
            } else {
                EXPECT_EQ(marks(pager), finished ? GetParam().after : GetParam().before);
                pager.begin();
                const PageNumber page = appendMarked(pager, 88);
                pager.commit();
                EXPECT_EQ(markOf(pager, page), 88);
            }
            if (!struck || HasFailure()) {
                EXPECT_TRUE(HasFailure() || finished);
                break;
            }
            ++faults;
        }
    }
    EXPECT_GT(faults, 20U);
}

TEST(FailedCommit, WhoseEndIsNotDurableIsTakenBack)
{
    MemoryFileSystem disk;
    disk.setContent(kPath, filledPages({1, 2}));
    FaultFileSystem faulty(disk);
    Pager pager(faulty, kPath, OpenMode::ReadWrite, impatient());
    pager.begin();
    mark(pager, 1, 22);
    faulty.set({.at = 1, .call = Call::SyncFolder}); // the one that makes the journal's going durable
    EXPECT_THAT([&] { pager.commit(); }, throwsError(ErrorCode::Io));
    EXPECT_TRUE(faulty.hasFailed());
    EXPECT_EQ(disk.content(kPath), filledPages({1, 2}));
    EXPECT_EQ(marks(pager), (std::vector{1, 2}));
}

/// The disk is full from the first write to the file on.
class FullDisk final : public ForwardingFileSystem
{
    class DiaryFile final : public ForwardingFile
    {
    public:
        using ForwardingFile::ForwardingFile;
        void writeAt(std::uint64_t /*offset*/, ByteView /*bytes*/) override
        {
            throw Error(ErrorCode::DiskFull, "No space is left");
        }
    };

public:
    using ForwardingFileSystem::ForwardingFileSystem;
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override
    {
        std::unique_ptr<File> file = ForwardingFileSystem::open(path, mode);
        return path == kPath ? std::make_unique<DiaryFile>(std::move(file)) : std::move(file);
    }
};

TEST(FailedCommit, ThatCannotBeTakenBackIsNoFullDisk)
{
    // Where the disk is full nothing of a change is kept. Here it is not known what is.
    MemoryFileSystem disk;
    disk.setContent(kPath, filledPages({1, 2}));
    FullDisk full(disk);
    Pager pager(full, kPath, OpenMode::ReadWrite, impatient());
    pager.begin();
    mark(pager, 1, 22);
    EXPECT_THAT([&] { pager.commit(); }, throwsError(ErrorCode::Io, "No space is left. What was written"));
    EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Io, "open the file again"));
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 2}));
}

/// Fails when the journal's going is made durable, and again when the journal is to have its name back.
class NoWayBack final : public ForwardingFileSystem
{
public:
    using ForwardingFileSystem::ForwardingFileSystem;
    void syncFolderOf(const std::string& path) override
    {
        if (!exists(kJournalPath)) {
            throw Error(ErrorCode::Io, "The folder cannot be synced");
        }
        ForwardingFileSystem::syncFolderOf(path);
    }
    void rename(const std::string& from, const std::string& to) override
    {
        if (to == kJournalPath && ++comings_ > 1) {
            throw Error(ErrorCode::Io, "The journal cannot be renamed");
        }
        ForwardingFileSystem::rename(from, to);
    }

private:
    int comings_ = 0;
};

TEST(FailedCommit, WithoutItsJournalIsNotTakenForUndone)
{
    MemoryFileSystem disk;
    disk.setContent(kPath, filledPages({1, 2}));
    NoWayBack noWayBack(disk);
    Pager pager(noWayBack, kPath, OpenMode::ReadWrite, impatient());
    pager.begin();
    mark(pager, 1, 22);
    EXPECT_THAT([&] { pager.commit(); }, throwsError(ErrorCode::Io, "could not be taken back"));
    EXPECT_THAT([&] { pager.beginRead(); }, throwsError(ErrorCode::Io, "open the file again"));
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 22})) << "the file is whole all the same";
}

class EveryRecovery : public testing::Test
{
protected:
    static PageRef filledPage(int fill)
    {
        auto page = std::make_shared<Page>();
        page->fill(static_cast<std::byte>(fill));
        return page;
    }

    static void prepare(FileSystem& disk)
    {
        makeFile(disk, filledPages({1, 2, 3}));
        leaveBrokenCommit(disk);
    }

    static void leaveBrokenCommit(FileSystem& disk)
    {
        Journal(disk, kPath)
            .write(3, 4,
                   std::vector<ChangedPage>{{.number = 0, .before = filledPage(1), .after = filledPage(11)},
                                            {.number = 1, .before = filledPage(2), .after = filledPage(12)},
                                            {.number = 3, .before = nullptr, .after = filledPage(14)}});
        disk.open(kPath, OpenMode::ReadWrite)->writeAt(0, filledPages({11, 12, 3, 14}));
    }

    static void expectOld(FileSystem& disk, bool /*finished*/)
    {
        EXPECT_EQ(marksOfFile(disk), (std::vector{1, 2, 3}));
        EXPECT_FALSE(disk.exists(kJournalPath));
    }
};

TEST_F(EveryRecovery, IsDoneAgainAfterAFailureOfEveryCall)
{
    const std::size_t faults =
        forEachFault({.prepare = prepare,
                      .body =
                          [](FileSystem& disk) {
                              JournalRefereeFileSystem referee(disk, kPath);
                              const Pager pager(referee, kPath, OpenMode::ReadWrite, impatient());
                          },
                      .check = expectOld});
    EXPECT_GT(faults, 20U);
}

TEST_F(EveryRecovery, ThatFailsForAConnectionSucceedsAtItsNextCall)
{
    for (std::size_t at = 0;; ++at) {
        SCOPED_TRACE("call " + std::to_string(at));
        MemoryFileSystem disk;
        disk.setContent(kPath, filledPages({1, 2, 3}));
        FaultFileSystem faulty(disk);
        JournalRefereeFileSystem referee(faulty, kPath);
        Pager pager(referee, kPath, OpenMode::ReadWrite, impatient());
        leaveBrokenCommit(disk);
        faulty.set({.at = at});
        try {
            pager.beginRead();
            pager.endRead();
        } catch (const Error& error) {
            EXPECT_TRUE(faulty.hasFailed()) << error.what();
        }
        const bool struck = faulty.hasFailed();
        faulty.heal();
        EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
        EXPECT_FALSE(disk.exists(kJournalPath));
        if (!struck || HasFailure()) {
            EXPECT_GT(at, 10U);
            break;
        }
    }
}

} // namespace
} // namespace jet
