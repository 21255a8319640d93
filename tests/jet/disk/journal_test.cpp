// The journal's bytes, and what becomes of journals that are damaged or belong elsewhere.
#include "jet/disk/journal.h"
#include "jet/disk/pager_fixture.h"

#include <gmock/gmock.h>

namespace jet {
namespace {

using namespace test;

/// 64-bit FNV-1a begun with the salt, from its published definition.
std::uint64_t fnv(std::uint64_t salt, ByteView bytes)
{
    std::uint64_t hash = 14695981039346656037U ^ salt;
    for (const std::byte byte : bytes) {
        hash ^= static_cast<std::uint64_t>(byte);
        hash *= 1099511628211U;
    }
    return hash;
}

TEST(JournalHeader, HasTheBytesOfTheDocumentedLayout)
{
    JournalHeader header{.salt = 0x1122334455667788U, .pagesBefore = 3, .pagesAfter = 4, .recordCount = 2};
    header.firstPageAfter[0] = 0xA1;
    header.firstPageAfter[7] = 0xA8;
    Bytes expected(512);
    const std::string magic = "QuilJrnl";
    putBytes(expected, 0, std::as_bytes(std::span(magic)));
    expected[8] = std::byte{1};
    expected[13] = std::byte{0x10}; // 4096
    for (std::size_t i = 0; i < 8; ++i) {
        expected[16 + i] = static_cast<std::byte>(0x88 - 0x11 * i);
    }
    expected[24] = std::byte{3};
    expected[28] = std::byte{4};
    expected[32] = std::byte{2};
    expected[40] = std::byte{0xA1};
    expected[96] = std::byte{0xA8};
    putU64(expected, 504, fnv(header.salt, ByteView(expected).first(504)));
    EXPECT_EQ(header.encode(), expected);
    EXPECT_EQ(JournalHeader::decode(expected), header);
}

TEST(JournalRecord, HasTheBytesOfTheDocumentedLayout)
{
    Page content{};
    content.fill(std::byte{0x5C});
    Bytes record(JournalRecord::kSize);
    JournalRecord::encode(0x010203, content, 99, record);
    Bytes summed{std::byte{3}, std::byte{2}, std::byte{1}, std::byte{0},
                 std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0}};
    summed.insert(summed.end(), content.begin(), content.end());
    EXPECT_EQ(record.size(), 4112U);
    EXPECT_TRUE(std::ranges::equal(ByteView(record).first(8), ByteView(summed).first(8)));
    EXPECT_EQ(getU64(record, 8), fnv(99, summed));
    EXPECT_TRUE(std::ranges::equal(ByteView(record).subspan(16), content));

    const JournalRecord decoded = JournalRecord::decode(record, 99);
    EXPECT_EQ(decoded.page, 0x010203U);
    EXPECT_EQ(decoded.content, content);
}

TEST(JournalRecord, OfAnotherJournalDoesNotPass)
{
    Bytes record(JournalRecord::kSize);
    JournalRecord::encode(1, Page{}, 99, record);
    EXPECT_THAT([&] { static_cast<void>(JournalRecord::decode(record, 98)); }, throwsError(ErrorCode::JournalDamaged));
}

PageRef filledPage(int fill)
{
    auto page = std::make_shared<Page>();
    page->fill(static_cast<std::byte>(fill));
    return page;
}

/// A file of three pages 1 2 3 in the middle of a commit that makes it 11 2 13 14.
class InterruptedCommit : public testing::Test
{
protected:
    InterruptedCommit()
    {
        disk.setContent(kPath, kOld);
        Journal(disk, kPath)
            .write(3, 4,
                   std::vector<ChangedPage>{{.number = 0, .before = filledPage(1), .after = filledPage(11)},
                                            {.number = 2, .before = filledPage(3), .after = filledPage(13)},
                                            {.number = 3, .before = nullptr, .after = filledPage(14)}});
        journal = disk.content(kJournalPath);
        disk.setContent(kPath, kNew);
    }

    void setJournal(Bytes bytes)
    {
        journal = std::move(bytes);
        disk.setContent(kJournalPath, journal);
    }

    void open() { Pager(disk, kPath, OpenMode::ReadWrite, impatient()); }

    void expectOldState()
    {
        open();
        EXPECT_EQ(disk.content(kPath), kOld);
        EXPECT_FALSE(disk.exists(kJournalPath));
        EXPECT_FALSE(disk.exists(kUnfinishedPath));
    }

    void expectRefusal(const std::string& reason)
    {
        const auto before = disk.files();
        EXPECT_THAT([&] { open(); }, throwsError(ErrorCode::JournalDamaged, reason));
        EXPECT_EQ(disk.files(), before);
    }

    /// Puts another number into the header and makes its checksum right again.
    void patchHeader(std::size_t offset, std::uint32_t number)
    {
        Bytes bytes = journal;
        putU32(bytes, offset, number);
        putU64(bytes, 504, fnv(getU64(bytes, 16), ByteView(bytes).first(504)));
        setJournal(bytes);
    }

    const Bytes kOld = filledPages({1, 2, 3});
    const Bytes kNew = filledPages({11, 2, 13, 14});
    MemoryFileSystem disk;
    Bytes journal;
};

TEST_F(InterruptedCommit, IsTakenBackByTheNextOpen)
{
    expectOldState();
}

TEST_F(InterruptedCommit, HoldsHeaderAndOverwrittenPagesOnly)
{
    EXPECT_EQ(journal.size(), 512U + 2U * 4112U);
    EXPECT_FALSE(disk.exists(kUnfinishedPath));
}

TEST_F(InterruptedCommit, BytesPastTheLastRecordAreIgnored)
{
    Bytes longer = journal;
    longer.resize(longer.size() + 5000, std::byte{0x77});
    setJournal(longer);
    expectOldState();
}

TEST_F(InterruptedCommit, WithAJournalCutAtAnyByteIsTakenBackWhollyOrRefused)
{
    const Bytes whole = journal;
    Bytes withTail = whole;
    withTail.resize(whole.size() + 40, std::byte{0x77});
    for (std::size_t length = 0; length <= withTail.size(); ++length) {
        SCOPED_TRACE("journal of " + std::to_string(length) + " bytes");
        disk.setContent(kPath, kNew);
        setJournal(Bytes(withTail.begin(), withTail.begin() + static_cast<std::ptrdiff_t>(length)));
        if (length < whole.size()) {
            expectRefusal("both files were left as they are");
        } else {
            expectOldState();
        }
        if (HasFailure()) {
            break;
        }
    }
}

TEST_F(InterruptedCommit, WithAnyByteOfTheJournalChangedIsRefused)
{
    const Bytes whole = journal;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        SCOPED_TRACE("byte " + std::to_string(at));
        Bytes bytes = whole;
        bytes[at] ^= std::byte{0x10};
        setJournal(bytes);
        expectRefusal(kPath);
        if (HasFailure()) {
            break;
        }
    }
}

TEST_F(InterruptedCommit, ARefusalNamesBothFilesAndTheReason)
{
    setJournal({});
    expectRefusal(
        "The last change to Diary.mdb was interrupted, and its journal Diary.mdb-journal cannot be used to take "
        "it back: it ends inside its header; both files were left as they are");
}

TEST_F(InterruptedCommit, ARefusalLeavesNoLockBehind)
{
    setJournal({});
    EXPECT_ANY_THROW(open());
    disk.open(kPath, OpenMode::ReadWrite)->lock(LockLevel::Exclusive, std::chrono::milliseconds{0});
}

TEST_F(InterruptedCommit, AJournalOfAnotherLayoutIsRefused)
{
    patchHeader(8, 2);
    expectRefusal("another version");
    patchHeader(8, 1);
    patchHeader(12, 2048);
    expectRefusal("another version");
}

TEST_F(InterruptedCommit, AJournalThatContradictsItselfIsRefused)
{
    const Bytes whole = journal;
    patchHeader(28, 2); // fewer pages after than before
    expectRefusal("contradicts itself");
    setJournal(whole);
    patchHeader(28, 0x80001); // more than 2 GiB
    expectRefusal("contradicts itself");
    setJournal(whole);
    patchHeader(32, 4); // more records than pages
    expectRefusal("contradicts itself");
    setJournal(whole);
    patchHeader(32, 0); // page 0 missing
    expectRefusal("contradicts itself");
    setJournal(whole);
    patchHeader(32, 3); // one record more than there are
    expectRefusal("ends before its last record");
}

TEST_F(InterruptedCommit, RecordsOutOfOrderAreRefused)
{
    const Bytes whole = journal;
    const std::uint64_t salt = getU64(whole, 16);
    const auto withSecondRecord = [&](PageNumber page) {
        Bytes bytes = whole;
        JournalRecord::encode(page, *filledPage(3), salt, MutableBytes(bytes).subspan(512 + 4112));
        return bytes;
    };
    setJournal(withSecondRecord(0)); // twice
    expectRefusal("out of order");
    setJournal(withSecondRecord(3)); // past the old end
    expectRefusal("out of order");
    Bytes withoutFirst = whole;
    JournalRecord::encode(1, *filledPage(2), salt, MutableBytes(withoutFirst).subspan(512));
    setJournal(withoutFirst);
    expectRefusal("out of order");
}

TEST_F(InterruptedCommit, IsTakenBackWhicheverSectorsOfPage0WereWritten)
{
    const Bytes whole = journal;
    for (unsigned written = 0; written < 256; ++written) {
        SCOPED_TRACE("sectors " + std::to_string(written));
        Bytes content = kNew;
        for (std::size_t sector = 0; sector < kSectorsOfPage; ++sector) {
            const int fill = ((written >> sector) & 1U) != 0 ? 11 : 1;
            putBytes(content, sector * kSectorSize, Bytes(kSectorSize, static_cast<std::byte>(fill)));
        }
        disk.setContent(kPath, content);
        setJournal(whole);
        expectOldState();
    }
}

TEST_F(InterruptedCommit, IsTakenBackWhicheverSizeTheFileHad)
{
    const Bytes whole = journal;
    for (const std::size_t size : {3 * kPageSize, 3 * kPageSize + 512, 4 * kPageSize - 1, 4 * kPageSize}) {
        SCOPED_TRACE("size " + std::to_string(size));
        Bytes content = kNew;
        content.resize(size);
        disk.setContent(kPath, content);
        setJournal(whole);
        expectOldState();
    }
}

TEST_F(InterruptedCommit, AFileThatIsNeitherOldNorNewIsNotTouched)
{
    disk.setContent(kPath, filledPages({21, 22, 23}));
    expectRefusal("it belongs to another file, or the file was changed since");
}

TEST_F(InterruptedCommit, AFileThatAnotherProgramChangedSinceIsNotTouched)
{
    Bytes content = kNew;
    content[kCommitCount] = std::byte{0x55};
    disk.setContent(kPath, content);
    expectRefusal("it belongs to another file, or the file was changed since");
}

TEST_F(InterruptedCommit, AFileOfAnotherSizeIsNotTouched)
{
    disk.setContent(kPath, filledPages({11, 2}));
    expectRefusal("it belongs to a file of another size");
    disk.setContent(kPath, filledPages({11, 2, 13, 14, 15}));
    expectRefusal("it belongs to a file of another size");
    disk.setContent(kPath, {});
    expectRefusal("it belongs to a file of another size");
}

TEST_F(InterruptedCommit, CannotBeReadUntilItWasTakenBack)
{
    const auto before = disk.files();
    EXPECT_THAT([&] { Pager(disk, kPath, OpenMode::ReadOnly, impatient()); },
                throwsError(ErrorCode::ReadOnly, "open the file for writing once"));
    EXPECT_EQ(disk.files(), before);
    open();
    Pager reader(disk, kPath, OpenMode::ReadOnly, impatient());
    EXPECT_EQ(marks(reader), (std::vector{1, 2, 3}));
}

TEST_F(InterruptedCommit, OfANewFileLeavesItEmpty)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{512}, kPageSize, 2 * kPageSize}) {
        SCOPED_TRACE("size " + std::to_string(size));
        MemoryFileSystem fresh;
        fresh.setContent(kPath, {});
        Journal(fresh, kPath)
            .write(0, 2,
                   std::vector<ChangedPage>{{.number = 0, .before = nullptr, .after = filledPage(1)},
                                            {.number = 1, .before = nullptr, .after = filledPage(2)}});
        Bytes content = filledPages({1, 2});
        content.resize(size);
        fresh.setContent(kPath, content);
        Pager pager(fresh, kPath, OpenMode::ReadWrite, impatient());
        EXPECT_EQ(pager.pageCount(), 0U);
        EXPECT_EQ(fresh.content(kPath), Bytes{});
    }
}

TEST(Journal, WhatACrashLeftUnderTheUnfinishedNameChangesNothing)
{
    MemoryFileSystem disk;
    disk.setContent(kPath, filledPages({1, 2}));
    disk.setContent(kUnfinishedPath, Bytes(100, std::byte{9}));
    Pager pager(disk, kPath, OpenMode::ReadWrite, impatient());
    EXPECT_EQ(marks(pager), (std::vector{1, 2}));
    pager.begin();
    mark(pager, 1, 5);
    pager.commit();
    EXPECT_EQ(marks(pager), (std::vector{1, 5}));
    EXPECT_FALSE(disk.exists(kUnfinishedPath));
}

TEST(Journal, OfManyPagesIsReadInSeveralRuns)
{
    MemoryFileSystem disk;
    disk.setContent(kPath, filledPages(std::vector<int>(600, 1)));
    std::vector<ChangedPage> pages;
    for (PageNumber number = 0; number < 600; ++number) {
        pages.push_back({.number = number, .before = filledPage(1), .after = filledPage(2)});
    }
    Journal(disk, kPath).write(600, 600, pages);
    EXPECT_EQ(disk.content(kJournalPath).size(), 512U + 600U * 4112U);
    disk.setContent(kPath, filledPages(std::vector<int>(600, 2)));
    EXPECT_EQ(marksOfFile(disk), std::vector<int>(600, 1));
}

} // namespace
} // namespace jet
