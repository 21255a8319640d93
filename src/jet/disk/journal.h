// The rollback journal: what a file's pages held before a commit overwrites them, kept beside the file until the commit
// is durable.
//
// Layout, numbers least significant byte first:
//
//   offset  size  header, one disk sector
//   0       8     "QuilJrnl"
//   8       4     version of this layout, 1
//   12      4     size of a page, 4096
//   16      8     salt, random for each journal
//   24      4     pages of the file before the commit
//   28      4     pages of the file after the commit
//   32      4     records that follow
//   36      4     zero
//   40      64    checksums of the eight 512-byte sectors of the page 0 that the commit writes
//   104     400   zero
//   504     8     checksum of bytes 0 to 503
//
//   then for each page that the commit overwrites, by ascending number (page 0 is always among them):
//   0       4     page number
//   4       4     zero
//   8       8     checksum of the number and the content
//   16      4096  content before the commit
//
// Checksums are 64-bit FNV-1a, begun with the salt, so a record that an older journal left on the disk does not pass.
//
// Two names. A journal is written and synced as PATH-journal-unfinished and then renamed to PATH-journal. So a file of
// the second name was complete on the disk before anything was written to the database: whatever is wrong with it is
// damage, never a crash while it was written, and it is refused. A file of the first name is such a crash's remains;
// nothing depends on it, and the next journal replaces it. Bytes past the counted records are ignored.
//
// A journal is retired by the same rename backwards, made durable by syncing the folder, and then removed. Until the
// folder is synced the commit can thus still be undone.
//
// Which file it belongs to. A commit always changes page 0 (the pager counts commits there), and a disk writes whole
// sectors. So each sector of the file's page 0 is the one in record 0 or the one whose checksum the header holds, also
// when the power went while page 0 was being written; and the file's size lies between the two page counts. A file for
// which that does not hold is another one, or was changed since: rolling back would mix two states, and is refused.
#pragma once

#include "jet/disk/file.h"
#include "jet/disk/page.h"

#include <array>
#include <span>
#include <string>

namespace jet {

/// A page that a commit writes.
struct ChangedPage {
    PageNumber number = 0;
    PageRef before; ///< null for a page past the old end of the file
    PageRef after;
};

/// What a disk writes whole or not at all, in bytes: no drive in use has smaller sectors, and larger ones are made of
/// these.
inline constexpr std::size_t kSectorSize = 512;
inline constexpr std::size_t kSectorsOfPage = kPageSize / kSectorSize;
using SectorChecksums = std::array<std::uint64_t, kSectorsOfPage>;

struct JournalHeader {
    static constexpr std::size_t kSize = kSectorSize;

    std::uint64_t salt = 0;
    PageNumber pagesBefore = 0;
    PageNumber pagesAfter = 0;
    std::uint32_t recordCount = 0;
    SectorChecksums firstPageAfter{};

    [[nodiscard]] Bytes encode() const;
    /// Throws JournalDamaged.
    [[nodiscard]] static JournalHeader decode(ByteView bytes);
    bool operator==(const JournalHeader&) const = default;
};

struct JournalRecord {
    static constexpr std::size_t kPrefixSize = 4 + 4 + 8;
    static constexpr std::size_t kSize = kPrefixSize + kPageSize;

    PageNumber page = 0;
    Page content{};

    static void encode(PageNumber page, const Page& content, std::uint64_t salt, MutableBytes to);
    /// Throws JournalDamaged.
    [[nodiscard]] static JournalRecord decode(ByteView bytes, std::uint64_t salt);
};

[[nodiscard]] SectorChecksums sectorChecksums(const Page& page, std::uint64_t salt);

/// The journal of one file. The caller holds the file's exclusive lock in every call that writes.
class Journal
{
public:
    /// The path is that of the database, with links resolved.
    Journal(FileSystem& fileSystem, std::string path);

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] const std::string& unfinishedPath() const { return unfinishedPath_; }

    /// A journal that stands there while no one holds the exclusive lock belongs to a commit that did not finish.
    [[nodiscard]] bool isThere() const { return fileSystem_->exists(path_); }

    /// Makes the journal durable: two syncs, of the journal and of the folder. The pages ascend by number, page 0
    /// first. When it throws, the journal may be there or not; the file has not been written to either way.
    void write(PageNumber pagesBefore, PageNumber pagesAfter, std::span<const ChangedPage> pages);

    /// Ends the journal's life durably: one sync, of the folder. When it throws, the journal is there as before, or
    /// else (the rename back failed too) gone.
    void retire();

    /// Gives the file the pages and the size it had before the commit, makes that durable and retires the journal.
    /// May be broken off at any point and done again. Throws JournalDamaged before the first change to the file.
    void rollBack(File& file);

    /// Removes what a failed write() left. Never throws: nothing depends on it.
    void discardUnfinished() noexcept;

private:
    [[nodiscard]] JournalHeader readHeader(File& journal) const;
    template <typename Visit>
    void forEachRecord(File& journal, const JournalHeader& header, Visit visit) const;
    void requireBelongsTo(File& file, const JournalHeader& header, const Page& firstPageBefore) const;
    [[noreturn]] void refuse(const std::string& reason) const;

    FileSystem* fileSystem_;
    std::string filePath_;
    std::string path_;
    std::string unfinishedPath_;
};

} // namespace jet
