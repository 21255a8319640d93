#include "jet/disk/pager.h"

#include "jet/disk/file_version.h"
#include "jet/disk/journal.h"
#include "jet/disk/page_cache.h"
#include "jet/disk/page_changes.h"
#include "jet/disk/unfinished_file.h"

#include <algorithm>
#include <cassert>
#include <optional>
#include <span>
#include <utility>

namespace jet {

namespace {

// When pages are asked for one after the other, this many are fetched at once.
constexpr std::size_t kPagesReadAhead = 16;

// Adjacent pages go out in one write up to this many.
constexpr std::size_t kPagesInWrite = 256;

void writePages(File& file, std::span<const ChangedPage> pages)
{
    Bytes run;
    while (!pages.empty()) {
        std::size_t count = 0;
        run.clear();
        do {
            run.insert(run.end(), pages[count].after->begin(), pages[count].after->end());
            ++count;
        } while (count < std::min(pages.size(), kPagesInWrite) && pages[count].number == pages[count - 1].number + 1);
        file.writeAt(pageOffset(pages.front().number), run);
        pages = pages.subspan(count);
    }
}

} // namespace

class Pager::Implementation
{
public:
    Implementation(FileSystem& fileSystem, std::string path, OpenMode mode, PagerOptions options)
        : fileSystem_(&fileSystem), path_(std::move(path)), patience_(options.patience),
          file_(fileSystem.open(path_, mode)), resolvedPath_(fileSystem.resolve(path_)),
          journal_(fileSystem, resolvedPath_), cache_(options.cachedPages)
    {
        beginRead();
        endRead();
    }

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] const std::string& resolvedPath() const { return resolvedPath_; }
    [[nodiscard]] bool isReadOnly() const { return file_->isReadOnly(); }
    [[nodiscard]] PageNumber pageCount() const { return inTransaction() ? changes_.pageCount() : filePages_; }
    [[nodiscard]] std::uint64_t generation() const { return generation_; }
    [[nodiscard]] bool inTransaction() const { return state_ == State::Changing; }

    void beginRead()
    {
        requireNotFailed();
        if (state_ == State::Idle) {
            takeLock(LockLevel::Shared);
            state_ = State::Reading;
        }
        ++readDepth_;
        checkState();
    }

    void endRead() noexcept
    {
        assert(readDepth_ > 0);
        --readDepth_;
        if (readDepth_ == 0 && state_ == State::Reading) {
            settle();
        }
        checkState();
    }

    PageRef read(PageNumber number)
    {
        requireNotFailed();
        if (state_ == State::Idle) {
            throw Error(ErrorCode::InvalidArgument, "A page was asked for outside any read or transaction");
        }
        requireInFile(number);
        if (inTransaction()) {
            if (PageRef changed = changes_.find(number)) {
                return changed;
            }
        }
        return readUnchanged(number);
    }

    void begin()
    {
        requireNotFailed();
        if (isReadOnly()) {
            throw Error(ErrorCode::ReadOnly, "The file " + path_ + " was opened for reading only");
        }
        if (inTransaction()) {
            throw Error(ErrorCode::InvalidArgument, "A transaction is in progress already");
        }
        if (readDepth_ == 0) {
            takeLock(LockLevel::Reserved);
        } else {
            file_->lock(LockLevel::Reserved, patience_); // the shared lock has kept the file as it was checked
        }
        if (endsInsidePage_) {
            settle();
            throw Error(ErrorCode::Corrupt, filePages_,
                        "The file " + path_ + " ends in the middle of a page, so it is not written to");
        }
        changes_.reset(filePages_);
        state_ = State::Changing;
        checkState();
    }

    Page& modify(PageNumber number)
    {
        requireTransaction();
        requireInFile(number);
        return changes_.contains(number) ? changes_.modify(number)
                                         : changes_.modifyFirst(number, readUnchanged(number));
    }

    PageNumber append()
    {
        requireTransaction();
        if (changes_.pageCount() >= kMaxPageCount) {
            throw Error(ErrorCode::Overflow, "The file " + path_ + " has reached its greatest size, 2 GiB");
        }
        return changes_.append();
    }

    void commit()
    {
        requireTransaction();
        checkState();
        std::vector<ChangedPage> pages = changes_.collect();
        if (!pages.empty()) {
            bool fileTouched = false;
            try {
                countCommit(pages);
                file_->lock(LockLevel::Exclusive, patience_);
                journal_.write(changes_.pageCountBefore(), changes_.pageCount(), pages);
                fileTouched = true;
                writePages(*file_, pages);
                file_->sync();
                journal_.retire();
            } catch (const Error& error) {
                if (undoCommit(fileTouched)) {
                    throw;
                }
                throw Error(error.code(), std::string(error.what()) + ". What was written of the change could not be "
                                                                      "taken back; open the file again to repair it");
            } catch (...) {
                undoCommit(fileTouched);
                throw;
            }
            acceptCommitted(pages);
        }
        changes_.reset(filePages_);
        settle();
        checkState();
    }

    void rollback() noexcept
    {
        if (!inTransaction()) {
            return;
        }
        if (!changes_.empty()) {
            ++generation_;
        }
        changes_.reset(filePages_);
        settle();
        checkState();
    }

    Savepoint savepoint()
    {
        requireTransaction();
        return changes_.savepoint();
    }

    void rollbackTo(Savepoint savepoint)
    {
        requireSavepoint(savepoint);
        if (changes_.rollbackTo(savepoint)) {
            ++generation_;
        }
    }

    void release(Savepoint savepoint)
    {
        requireSavepoint(savepoint);
        changes_.release(savepoint);
    }

    void copyTo(UnfinishedFile& copy)
    {
        requireNotFailed();
        if (state_ == State::Idle || !changes_.empty()) {
            throw Error(ErrorCode::InvalidArgument, "A file is copied as it is on the disk, within a read");
        }
        copy.copyFrom(*file_, resolvedPath_);
    }

    void replaceBy(const std::string& path)
    {
        requireTransaction();
        if (!changes_.empty()) {
            throw Error(ErrorCode::InvalidArgument, "A file that is to be replaced was changed");
        }
        try {
            file_->lock(LockLevel::Exclusive, patience_);
            // A journal that went not yet durably must not come back beside the other file.
            fileSystem_->syncFolderOf(resolvedPath_);
            fileSystem_->rename(path, resolvedPath_);
            fileSystem_->syncFolderOf(resolvedPath_);
        } catch (...) {
            rollback();
            throw;
        }
        rollback();
    }

private:
    enum class State { Idle, Reading, Changing, Failed };

    // --- What must hold of the caller ---

    void requireNotFailed() const
    {
        if (state_ == State::Failed) {
            throw Error(ErrorCode::Io, "A change to " + path_ +
                                           " failed and could not be taken back; open the file again to repair it");
        }
    }

    void requireTransaction() const
    {
        requireNotFailed();
        if (!inTransaction()) {
            throw Error(ErrorCode::InvalidArgument, "A change was made outside any transaction");
        }
    }

    void requireSavepoint(Savepoint savepoint) const
    {
        requireTransaction();
        if (savepoint >= changes_.savepointCount()) {
            throw Error(ErrorCode::InvalidArgument, "The savepoint is not there any more");
        }
    }

    void requireInFile(PageNumber number) const
    {
        if (number >= pageCount()) {
            throw Error(ErrorCode::Corrupt, number,
                        "A page was asked for that lies past the end of " + path_ + ", which has " +
                            std::to_string(pageCount()) + " pages");
        }
    }

    // --- Locks, and what is trusted under them ---

    /// From no lock to Shared or Reserved, with the file repaired and the cache valid. On failure no lock is held.
    void takeLock(LockLevel level)
    {
        file_->lock(level, patience_);
        try {
            if (!file_->isInPlace()) {
                throw Error(ErrorCode::Io,
                            "The file " + path_ + " was moved, removed or replaced while it was open; open it again");
            }
            if (journal_.isThere()) {
                recover(level);
            }
            checkVersion();
        } catch (...) {
            settle();
            throw;
        }
    }

    /// Rolls back a hot journal and holds the level again.
    void recover(LockLevel level)
    {
        if (isReadOnly()) {
            throw Error(ErrorCode::ReadOnly, "The last change to " + path_ +
                                                 " was interrupted and must be taken back first; open the file for "
                                                 "writing once");
        }
        // Two that found the journal at the same time would wait for each other's shared lock for ever. Whoever holds
        // the reserved lock may go up straight, all others let go of theirs.
        if (level == LockLevel::Shared) {
            file_->lock(LockLevel::None, patience_);
        }
        file_->lock(LockLevel::Exclusive, patience_);
        if (journal_.isThere()) {
            journal_.rollBack(*file_);
        }
        file_->lock(level, patience_);
    }

    void checkVersion()
    {
        const FileVersion found = FileVersion::of(*file_);
        if (found.stamp.size > pageOffset(kMaxPageCount)) {
            throw Error(ErrorCode::Corrupt, "The file " + path_ + " is larger than the 2 GiB that the format allows");
        }
        if (version_ == found) {
            return;
        }
        cache_.clear();
        ++generation_;
        filePages_ = static_cast<PageNumber>(found.stamp.size / kPageSize);
        endsInsidePage_ = found.stamp.size % kPageSize != 0;
        version_ = found;
    }

    /// Back to what the reads in progress call for. A lock that the system does not take back now goes with the next
    /// change of level or with the file.
    void settle() noexcept
    {
        state_ = readDepth_ > 0 ? State::Reading : State::Idle;
        releaseDownTo(readDepth_ > 0 ? LockLevel::Shared : LockLevel::None);
    }

    void releaseDownTo(LockLevel level) noexcept
    {
        try {
            file_->lock(level, patience_);
        } catch (...) {
            return;
        }
    }

    // --- Pages ---

    PageRef readUnchanged(PageNumber number)
    {
        if (PageRef cached = cache_.find(number)) {
            return cached;
        }
        std::size_t count = 1;
        if (number == sequentialNext_) {
            count = std::min<std::size_t>({kPagesReadAhead, filePages_ - number, cache_.capacity() / 2 + 1});
        }
        readBuffer_.resize(count * kPageSize);
        file_->readAt(pageOffset(number), readBuffer_);
        sequentialNext_ = number + static_cast<PageNumber>(count);
        // Backwards, so that the page that was asked for is the last to be pushed out.
        PageRef asked;
        for (std::size_t i = count; i-- > 0;) {
            const PageNumber at = number + static_cast<PageNumber>(i);
            if (i > 0 && cache_.contains(at)) {
                continue;
            }
            auto page = std::make_shared<Page>();
            putBytes(*page, 0, slice(ByteView(readBuffer_), i * kPageSize, kPageSize));
            asked = page;
            cache_.put(at, std::move(page));
        }
        return asked;
    }

    // --- Commit ---

    /// Adds the counted page 0 to the pages of the commit.
    void countCommit(std::vector<ChangedPage>& pages)
    {
        if (changes_.pageCountBefore() == 0) {
            return;
        }
        if (pages.front().number != 0) {
            const PageRef first = readUnchanged(0);
            pages.insert(pages.begin(), ChangedPage{.number = 0, .before = first, .after = first});
        }
        ChangedPage& first = pages.front();
        first.after = withCommitCounted(*first.before, *first.after);
    }

    /// The file as before the transaction, and the transaction gone. False when that failed: the pager is Failed.
    bool undoCommit(bool fileTouched) noexcept
    {
        bool undone = false;
        try {
            if (journal_.isThere()) {
                journal_.rollBack(*file_);
                undone = true;
            } else {
                undone = !fileTouched;
            }
        } catch (...) {
            undone = false;
        }
        if (!undone) {
            changes_.reset(0);
            cache_.clear();
            state_ = State::Failed;
            releaseDownTo(LockLevel::None);
            return false;
        }
        journal_.discardUnfinished();
        rollback();
        return true;
    }

    /// The commit is durable: nothing may fail it any more.
    void acceptCommitted(const std::vector<ChangedPage>& pages) noexcept
    {
        filePages_ = changes_.pageCount();
        try {
            for (const ChangedPage& page : pages) {
                cache_.put(page.number, page.after);
            }
            version_ = FileVersion::of(*file_);
        } catch (...) {
            cache_.clear();
            version_.reset();
        }
    }

    /// The table of states in pager.h.
    void checkState() const
    {
#ifndef NDEBUG
        switch (state_) {
        case State::Idle:
            assert(readDepth_ == 0);
            break;
        case State::Reading:
            assert(readDepth_ > 0);
            break;
        case State::Changing:
            assert(!isReadOnly());
            assert(changes_.pageCountBefore() == filePages_);
            assert(changes_.pageCount() >= filePages_);
            break;
        case State::Failed:
            assert(cache_.size() == 0);
            break;
        }
        assert(cache_.size() <= cache_.capacity());
        assert(inTransaction() || (changes_.empty() && changes_.savepointCount() == 0));
#endif
    }

    FileSystem* fileSystem_;
    std::string path_;
    std::chrono::milliseconds patience_;
    std::unique_ptr<File> file_;
    std::string resolvedPath_;
    Journal journal_;

    State state_ = State::Idle;
    std::size_t readDepth_ = 0;          ///< in every state, Failed included, so that guards can end
    std::optional<FileVersion> version_; ///< of the file that cache_ and filePages_ stand for; empty: of none
    PageNumber filePages_ = 0;           ///< whole pages in the file
    bool endsInsidePage_ = false;        ///< a foreign program left part of a page after them
    std::uint64_t generation_ = 0;
    PageCache cache_;
    PageChanges changes_;
    PageNumber sequentialNext_ = 0; ///< asking for this page next counts as going on in order
    Bytes readBuffer_;
};

Pager::Pager(FileSystem& fileSystem, std::string path, OpenMode mode, PagerOptions options)
    : implementation_(std::make_unique<Implementation>(fileSystem, std::move(path), mode, options))
{
}

Pager::~Pager() = default;

const std::string& Pager::path() const
{
    return implementation_->path();
}
bool Pager::isReadOnly() const
{
    return implementation_->isReadOnly();
}
PageNumber Pager::pageCount() const
{
    return implementation_->pageCount();
}
std::uint64_t Pager::generation() const
{
    return implementation_->generation();
}
void Pager::beginRead()
{
    implementation_->beginRead();
}
void Pager::endRead() noexcept
{
    implementation_->endRead();
}
PageRef Pager::read(PageNumber page)
{
    return implementation_->read(page);
}
void Pager::begin()
{
    implementation_->begin();
}
bool Pager::inTransaction() const
{
    return implementation_->inTransaction();
}
Page& Pager::modify(PageNumber page)
{
    return implementation_->modify(page);
}
PageNumber Pager::append()
{
    return implementation_->append();
}
void Pager::commit()
{
    implementation_->commit();
}
void Pager::rollback() noexcept
{
    implementation_->rollback();
}
Pager::Savepoint Pager::savepoint()
{
    return implementation_->savepoint();
}
void Pager::rollbackTo(Savepoint savepoint)
{
    implementation_->rollbackTo(savepoint);
}
void Pager::release(Savepoint savepoint)
{
    implementation_->release(savepoint);
}
void Pager::copyTo(UnfinishedFile& copy)
{
    implementation_->copyTo(copy);
}
void Pager::replaceBy(const std::string& path)
{
    implementation_->replaceBy(path);
}
const std::string& Pager::resolvedPath() const
{
    return implementation_->resolvedPath();
}

} // namespace jet
