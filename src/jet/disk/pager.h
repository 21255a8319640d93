// Pages of a file, changed in transactions that are atomic and durable.
//
// Invariants
//   1. A page of the file is overwritten only while the journal beside the file holds, durably, what it was before.
//   2. The file is synced before its journal is retired, and commit() returns only after the retirement is durable.
//   3. The file is written in whole pages, and only under the exclusive lock; the journal too.
//   4. A journal that is there while nobody holds the exclusive lock belongs to a commit that did not finish. It is
//      rolled back before any page is used, which restores the pages and the size.
//   5. Pages of the cache equal those of the file whenever a lock is held. Pages that were handed out never change.
//   6. Each commit changes the first commit pair of page 0 (FORMAT.md, "The file and its header page"), so that other
//      connections notice it even where size and time of the file stay the same. The commit that makes page 0 is the
//      exception: before it there was nothing to have cached.
//   7. After a failed commit that could not be taken back nothing is trusted any more: the pager stays Failed.
//
// States, the lock each holds, and what may be trusted in it
//   Idle      none       nothing: cache and page count are as of the last lock, and are checked when the next is taken
//   Reading   shared     cache, page count and file agree
//   Changing  reserved   as Reading; besides, the changed pages in memory. The file is as before the transaction
//   Failed    none       nothing; the next one to open the file finds the journal and rolls back
//
//   Idle -> Reading by beginRead, back by the last endRead. Idle or Reading -> Changing by begin, back by commit or
//   rollback. Within commit the lock is exclusive. Any state -> Failed by commit alone.
//
// What a commit costs: four syncs (journal; folder, for the journal's name; file; folder, for the name's going), one
// write a MiB of journal and one a run of adjacent pages. A commit that changed no byte does no I/O at all.
#pragma once

#include "jet/disk/file_pages.h"
#include "jet/disk/journal.h"
#include "jet/disk/page_changes.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace jet {

class UnfinishedFile;

struct PagerOptions {
    /// How long to wait for a lock that another program holds before giving up with Locked.
    std::chrono::milliseconds patience{2000};
    /// How many unchanged pages to keep in memory: 8 MiB, more than a diary of ten years takes.
    std::size_t cachedPages = 2048;
};

/// To be used by one thread at a time.
class Pager
{
public:
    static constexpr std::chrono::milliseconds kPatience = PagerOptions{}.patience;

    /// Opens an existing file, or with Create makes an empty one; rolls back a hot journal. Checks no content: that the
    /// file is a database is for the layer above to see. Throws what FileSystem::open does, Locked, JournalDamaged, and
    /// ReadOnly where a hot journal is found and the file is opened for reading only.
    Pager(FileSystem& fileSystem, std::string path, OpenMode mode, PagerOptions options = {});
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;
    /// Writes nothing: a transaction in progress is forgotten.
    ~Pager() = default;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] bool isReadOnly() const { return file_->isReadOnly(); }
    /// With the pages that the transaction in progress has appended; what a foreign program left of a page at the end
    /// of the file does not count.
    [[nodiscard]] PageNumber pageCount() const { return inTransaction() ? changes_.pageCount() : pages_.count(); }
    /// Rises whenever cached pages were dropped because another program changed the file, or a change was rolled back:
    /// whatever was decoded from pages before is then stale.
    [[nodiscard]] std::uint64_t generation() const { return generation_; }

    // Reading. Between beginRead and endRead (they nest) the file does not change under the reader.
    void beginRead();
    void endRead() noexcept;
    /// Requires a read or a transaction in progress. Throws Corrupt for a page past the end.
    [[nodiscard]] PageRef read(PageNumber page);

    // Changing: one transaction at a time. Nothing reaches the file before commit.

    /// Takes the reserved lock. Throws ReadOnly, Locked, and Corrupt where the file ends in the middle of a page.
    void begin();
    [[nodiscard]] bool inTransaction() const { return state_ == State::Changing; }
    /// The page for changing in place; the reference is good until the next call of any function of the pager.
    [[nodiscard]] Page& modify(PageNumber page);
    /// A new page, all zero, at the end of the file. Throws Overflow at 2 GiB.
    [[nodiscard]] PageNumber append();
    /// Durable when it returns; when it throws, the transaction is rolled back, in the file too. Only where that failed
    /// as well does the message say so: the code is Io then, and the pager is Failed.
    void commit();
    /// Does nothing when no transaction is in progress.
    void rollback() noexcept;

    // Part of a transaction that can be taken back on its own. Savepoints nest like brackets, and end with the
    // transaction.
    using Savepoint = std::size_t;
    [[nodiscard]] Savepoint savepoint();
    /// Takes back what was changed since. The savepoint stays and can be used again; those made after it are gone.
    void rollbackTo(Savepoint savepoint);
    /// Forgets the savepoint and those made after it; the changes stay.
    void release(Savepoint savepoint);

    // The file as a whole. Both require a transaction that has changed nothing yet, the first may do with a read.

    /// Fills a file in the making with the bytes of this one as they are, part of a page at their end included.
    void copyTo(UnfinishedFile& copy);
    /// Puts a finished and durable file, in the same folder, in the place of this one, while no other connection has
    /// it; ends the transaction. Durable when it returns. When it throws, the one or the other file is there, whole;
    /// the message says so where it is the new one. From then on this pager and all others that have the old file say
    /// that it was replaced.
    void replaceBy(const std::string& path);
    /// The path with links resolved: the name that replaceBy() gives.
    [[nodiscard]] const std::string& resolvedPath() const { return resolvedPath_; }

private:
    enum class State { Idle, Reading, Changing, Failed };

    void requireNotFailed() const;
    void requireTransaction() const;
    void requireSavepoint(Savepoint savepoint) const;
    void requireInFile(PageNumber page) const;
    void requireInPlace() const;

    void takeLock(LockLevel level);
    void recover(LockLevel level);
    void settle() noexcept;
    void releaseDownTo(LockLevel level) noexcept;

    void countCommit(std::vector<ChangedPage>& changed);
    bool undoCommit(bool fileTouched) noexcept;
    void checkState() const;

    FileSystem* fileSystem_;
    std::string path_;
    std::chrono::milliseconds patience_;
    std::unique_ptr<File> file_;
    std::string resolvedPath_;
    Journal journal_;

    State state_ = State::Idle;
    std::size_t readDepth_ = 0; ///< in every state, Failed included, so that guards can end
    std::uint64_t generation_ = 0;
    FilePages pages_;
    PageChanges changes_;
};

/// Holds a read for as long as it lives.
class ReadGuard
{
public:
    explicit ReadGuard(Pager& pager) : pager_(&pager) { pager.beginRead(); }
    ReadGuard(const ReadGuard&) = delete;
    ReadGuard& operator=(const ReadGuard&) = delete;
    ReadGuard(ReadGuard&& other) noexcept : pager_(other.pager_) { other.pager_ = nullptr; }
    ReadGuard& operator=(ReadGuard&&) = delete;
    ~ReadGuard()
    {
        if (pager_ != nullptr) {
            pager_->endRead();
        }
    }

private:
    Pager* pager_;
};

} // namespace jet
