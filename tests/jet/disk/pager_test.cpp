// Reading and changing pages through one connection.
#include "jet/disk/pager_fixture.h"
#include "jet/support/fault_file_system.h"
#include "jet/support/journal_referee_file_system.h"

namespace jet {
namespace {

using namespace test;

class PagerTest : public testing::Test
{
protected:
    PagerTest() { disk.setContent(kPath, filledPages({1, 2, 3})); }

    Pager open(OpenMode mode = OpenMode::ReadWrite, std::size_t cachedPages = 2048)
    {
        return Pager(referee, kPath, mode, impatient(cachedPages));
    }

    MemoryFileSystem disk;
    JournalRefereeFileSystem referee{disk, kPath};
};

TEST_F(PagerTest, ReadsThePagesOfAFile)
{
    Pager pager = open();
    EXPECT_EQ(pager.pageCount(), 3U);
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
    EXPECT_EQ(pager.path(), kPath);
    EXPECT_FALSE(pager.isReadOnly());
}

TEST_F(PagerTest, ACommittedChangeIsSeenByTheNextConnection)
{
    {
        Pager pager = open();
        pager.begin();
        mark(pager, 1, 77);
        pager.commit();
        EXPECT_EQ(marks(pager), (std::vector{1, 77, 3}));
    }
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 77, 3}));
    EXPECT_EQ(referee.watchedChanges(), 1U); // pages 0 and 1 in one write
}

TEST_F(PagerTest, ATransactionSeesItsOwnChanges)
{
    Pager pager = open();
    pager.begin();
    EXPECT_TRUE(pager.inTransaction());
    mark(pager, 1, 77);
    EXPECT_EQ(appendMarked(pager, 78), 3U);
    EXPECT_EQ(pager.pageCount(), 4U);
    EXPECT_EQ(marks(pager), (std::vector{1, 77, 3, 78}));
    EXPECT_EQ(disk.content(kPath), filledPages({1, 2, 3})) << "nothing reaches the file before commit";
    pager.commit();
    EXPECT_FALSE(pager.inTransaction());
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 77, 3, 78}));
}

TEST_F(PagerTest, ANewPageIsAllZero)
{
    Pager pager = open();
    pager.begin();
    const PageNumber page = pager.append();
    EXPECT_EQ(*pager.read(page), Page{});
}

TEST_F(PagerTest, ARolledBackChangeIsGone)
{
    Pager pager = open();
    pager.begin();
    mark(pager, 1, 77);
    appendMarked(pager, 78);
    pager.rollback();
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
    EXPECT_EQ(disk.content(kPath), filledPages({1, 2, 3}));
    EXPECT_FALSE(pager.inTransaction());
}

TEST_F(PagerTest, ATransactionThatIsDestroyedIsRolledBack)
{
    {
        Pager pager = open();
        pager.begin();
        mark(pager, 1, 77);
    }
    EXPECT_EQ(disk.content(kPath), filledPages({1, 2, 3}));
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 2, 3}));
}

TEST_F(PagerTest, RollingBackWithoutATransactionDoesNothing)
{
    Pager pager = open();
    pager.rollback();
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
}

TEST_F(PagerTest, TheGenerationRisesWithARollbackOfChangesOnly)
{
    Pager pager = open();
    const std::uint64_t start = pager.generation();
    pager.begin();
    pager.rollback();
    pager.begin();
    mark(pager, 1, 77);
    pager.commit();
    EXPECT_EQ(markOf(pager, 1), 77);
    EXPECT_EQ(pager.generation(), start);
    pager.begin();
    mark(pager, 1, 78);
    pager.rollback();
    EXPECT_GT(pager.generation(), start);
}

TEST_F(PagerTest, APageThatSomebodyHoldsNeverChanges)
{
    Pager pager = open();
    pager.begin();
    const PageRef before = pager.read(1);
    mark(pager, 1, 77);
    const PageRef between = pager.read(1);
    mark(pager, 1, 78);
    EXPECT_EQ((*before)[kMark], std::byte{2});
    EXPECT_EQ((*between)[kMark], std::byte{77});
    EXPECT_EQ((*pager.read(1))[kMark], std::byte{78});
    pager.commit();
    EXPECT_EQ((*before)[kMark], std::byte{2});
    EXPECT_EQ((*between)[kMark], std::byte{77});
}

TEST_F(PagerTest, ChangingTheSamePageAgainChangesItInPlace)
{
    Pager pager = open();
    pager.begin();
    Page* first = &pager.modify(1);
    EXPECT_EQ(first, &pager.modify(1));
}

TEST_F(PagerTest, APagePastTheEndIsCorrupt)
{
    Pager pager = open();
    pager.begin();
    EXPECT_THAT([&] { static_cast<void>(pager.read(3)); }, throwsError(ErrorCode::Corrupt, "has 3 pages (page 3)"));
    EXPECT_THAT([&] { static_cast<void>(pager.read(0xFFFFFFFF)); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { static_cast<void>(pager.modify(3)); }, throwsError(ErrorCode::Corrupt));
    try {
        static_cast<void>(pager.read(3));
    } catch (const Error& error) {
        EXPECT_EQ(error.page(), PageNumber{3});
    }
}

TEST_F(PagerTest, CallsOutOfTurnAreRefused)
{
    Pager pager = open();
    EXPECT_THAT([&] { static_cast<void>(pager.read(0)); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { static_cast<void>(pager.modify(0)); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { static_cast<void>(pager.append()); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { pager.commit(); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { static_cast<void>(pager.savepoint()); }, throwsError(ErrorCode::InvalidArgument));
    pager.begin();
    EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { pager.rollbackTo(0); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { pager.release(0); }, throwsError(ErrorCode::InvalidArgument));
}

TEST_F(PagerTest, AReadMayGoOnBeforeDuringAndAfterATransaction)
{
    Pager pager = open();
    pager.beginRead();
    pager.beginRead();
    pager.begin();
    mark(pager, 1, 77);
    pager.endRead();
    pager.commit();
    EXPECT_EQ((*pager.read(1))[kMark], std::byte{77});
    pager.begin();
    pager.endRead();
    mark(pager, 1, 78);
    pager.commit();
    EXPECT_THAT([&] { static_cast<void>(pager.read(1)); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_EQ(markOf(pager, 1), 78);
}

TEST_F(PagerTest, AnEmptyFileHasNoPagesAndTakesSome)
{
    disk.setContent(kPath, {});
    Pager pager = open();
    EXPECT_EQ(pager.pageCount(), 0U);
    pager.begin();
    appendMarked(pager, 7);
    appendMarked(pager, 8);
    pager.commit();
    EXPECT_EQ(marksOfFile(disk), (std::vector{7, 8}));
}

TEST_F(PagerTest, ANewFileIsMadeByCreate)
{
    MemoryFileSystem empty;
    {
        Pager pager(empty, kPath, OpenMode::Create, impatient());
        EXPECT_EQ(pager.pageCount(), 0U);
        pager.begin();
        appendMarked(pager, 7);
        pager.commit();
    }
    EXPECT_EQ(marksOfFile(empty), (std::vector{7}));
    EXPECT_THAT([&] { Pager(empty, kPath, OpenMode::Create); }, throwsError(ErrorCode::FileExists));
}

TEST_F(PagerTest, AFileOpenedForReadingTakesNoTransaction)
{
    Pager pager = open(OpenMode::ReadOnly);
    EXPECT_TRUE(pager.isReadOnly());
    EXPECT_EQ(marks(pager), (std::vector{1, 2, 3}));
    EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::ReadOnly, kPath));
    EXPECT_FALSE(pager.inTransaction());
}

TEST_F(PagerTest, AFileThatIsNotThereIsNotFound)
{
    EXPECT_THAT([&] { Pager(disk, "other.mdb", OpenMode::ReadWrite); }, throwsError(ErrorCode::FileNotFound));
}

TEST_F(PagerTest, AFileThatEndsInsideAPageIsReadAndNotWritten)
{
    Bytes content = filledPages({1, 2, 3});
    content.resize(2 * kPageSize + 100);
    disk.setContent(kPath, content);
    Pager pager = open();
    EXPECT_EQ(marks(pager), (std::vector{1, 2}));
    EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Corrupt, "ends in the middle of a page"));
    {
        const ReadGuard guard(pager);
        EXPECT_THAT([&] { pager.begin(); }, throwsError(ErrorCode::Corrupt, "ends in the middle of a page"));
        EXPECT_EQ((*pager.read(1))[kMark], std::byte{2});
    }
    EXPECT_EQ(disk.content(kPath), content);
    disk.open(kPath, OpenMode::ReadWrite)->lock(LockLevel::Exclusive, std::chrono::milliseconds{0});
}

// --- What a commit writes ---

TEST_F(PagerTest, ACommitCountsUpInPage0AndLeavesTheSecondByteOfThePairAlone)
{
    Pager pager = open();
    pager.begin();
    mark(pager, 2, 77);
    pager.commit();
    Bytes expected = filledPages({1, 2, 3});
    expected[kCommitCount] = std::byte{2};
    expected[2 * kPageSize + kMark] = std::byte{77};
    EXPECT_EQ(disk.content(kPath), expected);
}

TEST_F(PagerTest, TheCommitCountSkipsZero)
{
    Bytes content = filledPages({1, 2});
    content[kCommitCount] = std::byte{0xFF};
    content[kCommitCount + 1] = std::byte{0};
    disk.setContent(kPath, content);
    Pager pager = open();
    pager.begin();
    mark(pager, 1, 77);
    pager.commit();
    EXPECT_EQ(disk.content(kPath)[kCommitCount], std::byte{1});
    EXPECT_EQ(disk.content(kPath)[kCommitCount + 1], std::byte{0});
}

TEST_F(PagerTest, ATransactionCannotUndoTheCommitCount)
{
    Pager pager = open();
    pager.begin();
    pager.modify(0)[kCommitCount] = std::byte{0};
    pager.commit();
    EXPECT_EQ(disk.content(kPath)[kCommitCount], std::byte{2});
}

TEST_F(PagerTest, TheCommitThatMakesPage0WritesItAsItIs)
{
    disk.setContent(kPath, {});
    Pager pager = open();
    pager.begin();
    static_cast<void>(pager.append());
    pager.modify(0).fill(std::byte{1});
    pager.commit();
    EXPECT_EQ(disk.content(kPath), filledPages({1}));
}

class CountingFile final : public ForwardingFile
{
public:
    CountingFile(std::unique_ptr<File> file, std::vector<std::string>& log, std::string name)
        : ForwardingFile(std::move(file)), log_(&log), name_(std::move(name))
    {
    }
    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        log_->push_back("write " + name_ + " " + std::to_string(offset) + "+" + std::to_string(bytes.size()));
        ForwardingFile::writeAt(offset, bytes);
    }
    void readAt(std::uint64_t offset, MutableBytes buffer) override
    {
        log_->push_back("read " + name_ + " " + std::to_string(offset) + "+" + std::to_string(buffer.size()));
        ForwardingFile::readAt(offset, buffer);
    }
    void sync() override
    {
        log_->push_back("sync " + name_);
        ForwardingFile::sync();
    }

private:
    std::vector<std::string>* log_;
    std::string name_;
};

/// Writes down what is done to the files.
class LoggingFileSystem final : public ForwardingFileSystem
{
public:
    using ForwardingFileSystem::ForwardingFileSystem;
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override
    {
        return std::make_unique<CountingFile>(ForwardingFileSystem::open(path, mode), log, "file");
    }
    std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override
    {
        log.push_back("create " + path);
        return std::make_unique<CountingFile>(ForwardingFileSystem::createLike(path, model), log, "journal");
    }
    void remove(const std::string& path) override
    {
        log.push_back("remove " + path);
        ForwardingFileSystem::remove(path);
    }
    void rename(const std::string& from, const std::string& to) override
    {
        log.push_back("rename to " + to);
        ForwardingFileSystem::rename(from, to);
    }
    void syncFolderOf(const std::string& path) override
    {
        log.push_back("sync folder");
        ForwardingFileSystem::syncFolderOf(path);
    }

    std::vector<std::string> log;
};

TEST_F(PagerTest, ASmallCommitTakesFourSyncsAndNoNeedlessWrites)
{
    disk.setContent(kPath, filledPages({1, 2, 3, 4, 5}));
    LoggingFileSystem logging(disk);
    Pager pager(logging, kPath, OpenMode::ReadWrite, impatient());
    pager.begin();
    mark(pager, 2, 77);
    mark(pager, 3, 78);
    logging.log.clear();
    pager.commit();
    EXPECT_THAT(logging.log,
                testing::ElementsAre("read file 0+4096", // page 0, for the count
                                     "create " + kUnfinishedPath, "write journal 0+12848", "sync journal",
                                     "rename to " + kJournalPath, "sync folder", "write file 0+4096",
                                     "write file 8192+8192", "sync file", "rename to " + kUnfinishedPath, "sync folder",
                                     "remove " + kUnfinishedPath, "read file 3584+512"));
}

TEST_F(PagerTest, ACommitThatChangedNothingDoesNoIo)
{
    LoggingFileSystem logging(disk);
    Pager pager(logging, kPath, OpenMode::ReadWrite, impatient());
    pager.begin();
    mark(pager, 1, 77);
    mark(pager, 1, 2); // as it was
    logging.log.clear();
    pager.commit();
    EXPECT_THAT(logging.log, testing::IsEmpty());
    pager.begin();
    logging.log.clear();
    pager.commit();
    EXPECT_THAT(logging.log, testing::IsEmpty());
}

TEST_F(PagerTest, OpeningReadsOnlyTheCommitPairs)
{
    disk.setContent(kPath, filledPages(std::vector<int>(200, 1)));
    LoggingFileSystem logging(disk);
    const Pager pager(logging, kPath, OpenMode::ReadWrite, impatient());
    EXPECT_THAT(logging.log, testing::ElementsAre("read file 3584+512"));
}

TEST_F(PagerTest, ACachedPageIsNotReadAgain)
{
    LoggingFileSystem logging(disk);
    Pager pager(logging, kPath, OpenMode::ReadWrite, impatient());
    const ReadGuard guard(pager);
    const PageRef page = pager.read(1);
    logging.log.clear();
    EXPECT_EQ(pager.read(1), page);
    EXPECT_THAT(logging.log, testing::IsEmpty());
}

TEST_F(PagerTest, PagesInOrderAreReadSeveralAtATime)
{
    std::vector<int> fills;
    for (int page = 0; page < 40; ++page) {
        fills.push_back(page + 1);
    }
    disk.setContent(kPath, filledPages(fills));
    LoggingFileSystem logging(disk);
    Pager pager(logging, kPath, OpenMode::ReadWrite, impatient());
    logging.log.clear();
    EXPECT_EQ(marks(pager), fills);
    // From the first page on, as a scan begins there; the commit pairs are looked at when the lock is taken.
    EXPECT_THAT(logging.log, testing::ElementsAre("read file 3584+512", "read file 0+65536", "read file 65536+65536",
                                                  "read file 131072+32768"));
}

TEST_F(PagerTest, APageOutOfOrderIsReadAlone)
{
    disk.setContent(kPath, filledPages(std::vector<int>(40, 1)));
    LoggingFileSystem logging(disk);
    Pager pager(logging, kPath, OpenMode::ReadWrite, impatient());
    const ReadGuard guard(pager);
    logging.log.clear();
    static_cast<void>(pager.read(30));
    static_cast<void>(pager.read(7));
    EXPECT_THAT(logging.log, testing::ElementsAre("read file 122880+4096", "read file 28672+4096"));
}

TEST_F(PagerTest, AGrowingCommitIsWrittenWhole)
{
    Pager pager = open();
    pager.begin();
    std::vector<int> expected{1, 2, 3};
    for (int page = 0; page < 700; ++page) {
        expected.push_back(page % 251);
        appendMarked(pager, page % 251);
    }
    pager.commit();
    EXPECT_EQ(marks(pager), expected);
    EXPECT_EQ(marksOfFile(disk), expected);
}

// --- A cache that is too small ---

class TinyCache : public PagerTest, public testing::WithParamInterface<std::size_t>
{
};

TEST_P(TinyCache, ChangesNothingButTheSpeed)
{
    std::vector<int> expected;
    for (int page = 0; page < 60; ++page) {
        expected.push_back(page + 1);
    }
    disk.setContent(kPath, filledPages(expected));
    Pager pager = open(OpenMode::ReadWrite, GetParam());
    EXPECT_EQ(marks(pager), expected);
    pager.begin();
    for (std::size_t step = 0; step < 30; ++step) {
        const std::size_t page = (step * 17) % 60;
        expected[page] = static_cast<int>(100 + step);
        mark(pager, static_cast<PageNumber>(page), expected[page]);
    }
    EXPECT_EQ(marks(pager), expected);
    pager.commit();
    EXPECT_EQ(marks(pager), expected);
    EXPECT_EQ(marksOfFile(disk), expected);
}

INSTANTIATE_TEST_SUITE_P(Pages, TinyCache, testing::Values(1, 2, 3, 8, 33));

// --- Savepoints ---

class Savepoints : public PagerTest
{
protected:
    Savepoints() { pager.begin(); }

    void expectMarks(const std::vector<int>& expected)
    {
        EXPECT_EQ(marks(pager), expected);
        EXPECT_EQ(pager.pageCount(), expected.size());
    }

    Pager pager = open();
};

TEST_F(Savepoints, TakeBackWhatCameAfterThem)
{
    mark(pager, 1, 20);
    const Pager::Savepoint savepoint = pager.savepoint();
    mark(pager, 1, 21);
    mark(pager, 2, 31);
    appendMarked(pager, 41);
    pager.rollbackTo(savepoint);
    expectMarks({1, 20, 3});
    pager.commit();
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 20, 3}));
}

TEST_F(Savepoints, StayUsableAfterGoingBackToThem)
{
    const Pager::Savepoint savepoint = pager.savepoint();
    for (int value = 50; value < 53; ++value) {
        mark(pager, 1, value);
        pager.rollbackTo(savepoint);
        expectMarks({1, 2, 3});
    }
}

TEST_F(Savepoints, NestLikeBrackets)
{
    const Pager::Savepoint outer = pager.savepoint();
    mark(pager, 0, 11);
    appendMarked(pager, 41);
    const Pager::Savepoint inner = pager.savepoint();
    mark(pager, 0, 12);
    mark(pager, 1, 22);
    mark(pager, 3, 42);
    appendMarked(pager, 51);
    pager.rollbackTo(inner);
    expectMarks({11, 2, 3, 41});
    pager.rollbackTo(outer);
    expectMarks({1, 2, 3});
    EXPECT_THAT([&] { pager.rollbackTo(inner); }, throwsError(ErrorCode::InvalidArgument));
}

TEST_F(Savepoints, GoingBackToTheOuterOneTakesTheInnerAlong)
{
    const Pager::Savepoint outer = pager.savepoint();
    mark(pager, 1, 21);
    static_cast<void>(pager.savepoint());
    mark(pager, 1, 22);
    mark(pager, 2, 32);
    pager.rollbackTo(outer);
    expectMarks({1, 2, 3});
}

TEST_F(Savepoints, ReleasingKeepsTheChangesAndTheOuterSavepointStillTakesThemBack)
{
    const Pager::Savepoint outer = pager.savepoint();
    mark(pager, 1, 21);
    const Pager::Savepoint inner = pager.savepoint();
    mark(pager, 1, 22);
    mark(pager, 2, 32);
    appendMarked(pager, 42);
    pager.release(inner);
    expectMarks({1, 22, 32, 42});
    pager.rollbackTo(outer);
    expectMarks({1, 2, 3});
}

TEST_F(Savepoints, ReleasingTheOutermostKeepsEverything)
{
    const Pager::Savepoint outer = pager.savepoint();
    mark(pager, 1, 21);
    static_cast<void>(pager.savepoint());
    mark(pager, 1, 22);
    pager.release(outer);
    EXPECT_THAT([&] { pager.rollbackTo(outer); }, throwsError(ErrorCode::InvalidArgument));
    expectMarks({1, 22, 3});
    pager.commit();
    EXPECT_EQ(marksOfFile(disk), (std::vector{1, 22, 3}));
}

TEST_F(Savepoints, APageAppendedAgainAfterGoingBackIsNew)
{
    const Pager::Savepoint savepoint = pager.savepoint();
    appendMarked(pager, 41);
    pager.rollbackTo(savepoint);
    EXPECT_EQ(pager.append(), 3U);
    expectMarks({1, 2, 3, 0});
}

TEST_F(Savepoints, RaiseTheGenerationOnlyWhenSomethingIsTakenBack)
{
    const Pager::Savepoint savepoint = pager.savepoint();
    const std::uint64_t start = pager.generation();
    pager.rollbackTo(savepoint);
    EXPECT_EQ(pager.generation(), start);
    mark(pager, 1, 21);
    pager.rollbackTo(savepoint);
    EXPECT_GT(pager.generation(), start);
}

TEST_F(Savepoints, EndWithTheTransaction)
{
    static_cast<void>(pager.savepoint());
    pager.commit();
    pager.begin();
    EXPECT_THAT([&] { pager.rollbackTo(0); }, throwsError(ErrorCode::InvalidArgument));
}

} // namespace
} // namespace jet
