#include "jet/disk/pager.h"

#include "jet/disk/unfinished_file.h"

#include <cassert>
#include <utility>

namespace jet {

Pager::Pager(FileSystem& fileSystem, std::string path, OpenMode mode, PagerOptions options)
    : fileSystem_(&fileSystem), path_(std::move(path)), patience_(options.patience),
      file_(fileSystem.open(path_, mode)), resolvedPath_(fileSystem.resolve(path_)),
      journal_(fileSystem, resolvedPath_), pages_(*file_, path_, options.cachedPages)
{
    beginRead();
    endRead();
}

void Pager::beginRead()
{
    requireNotFailed();
    if (state_ == State::Idle) {
        takeLock(LockLevel::Shared);
        state_ = State::Reading;
    }
    ++readDepth_;
    checkState();
}

void Pager::endRead() noexcept
{
    assert(readDepth_ > 0);
    --readDepth_;
    if (readDepth_ == 0 && state_ == State::Reading) {
        settle();
    }
    checkState();
}

PageRef Pager::read(PageNumber number)
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
    return pages_.read(number);
}

void Pager::begin()
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
    if (pages_.endsInsidePage()) {
        settle();
        throw Error(ErrorCode::Corrupt, pages_.count(),
                    "The file " + path_ + " ends in the middle of a page, so it is not written to");
    }
    changes_.reset(pages_.count());
    state_ = State::Changing;
    checkState();
}

Page& Pager::modify(PageNumber number)
{
    requireTransaction();
    requireInFile(number);
    return changes_.contains(number) ? changes_.modify(number) : changes_.modifyFirst(number, pages_.read(number));
}

PageNumber Pager::append()
{
    requireTransaction();
    if (changes_.pageCount() >= kMaxPageCount) {
        throw Error(ErrorCode::Overflow, "The file " + path_ + " has reached its greatest size, 2 GiB");
    }
    return changes_.append();
}

void Pager::commit()
{
    requireTransaction();
    checkState();
    std::vector<ChangedPage> changed = changes_.collect();
    if (!changed.empty()) {
        bool fileTouched = false;
        try {
            countCommit(changed);
            file_->lock(LockLevel::Exclusive, patience_);
            journal_.write(changes_.pageCountBefore(), changes_.pageCount(), changed);
            fileTouched = true;
            pages_.write(changed);
            file_->sync();
            journal_.retire();
        } catch (const Error& error) {
            if (undoCommit(fileTouched)) {
                throw;
            }
            // Io whatever the cause: the words for a full disk say that nothing was kept.
            throw Error(ErrorCode::Io, std::string(error.what()) + ". What was written of the change could not be "
                                                                   "taken back; open the file again to repair it");
        } catch (...) {
            undoCommit(fileTouched);
            throw;
        }
        pages_.accept(changed, changes_.pageCount()); // durable: nothing may fail the commit any more
    }
    changes_.reset(pages_.count());
    settle();
    checkState();
}

void Pager::rollback() noexcept
{
    if (!inTransaction()) {
        return;
    }
    if (!changes_.empty()) {
        ++generation_;
    }
    changes_.reset(pages_.count());
    settle();
    checkState();
}

Pager::Savepoint Pager::savepoint()
{
    requireTransaction();
    return changes_.savepoint();
}

void Pager::rollbackTo(Savepoint savepoint)
{
    requireSavepoint(savepoint);
    if (changes_.rollbackTo(savepoint)) {
        ++generation_;
    }
}

void Pager::release(Savepoint savepoint)
{
    requireSavepoint(savepoint);
    changes_.release(savepoint);
}

void Pager::copyTo(UnfinishedFile& copy)
{
    requireNotFailed();
    if (state_ == State::Idle || !changes_.empty()) {
        throw Error(ErrorCode::InvalidArgument, "A file is copied as it is on the disk, within a read");
    }
    copy.copyFrom(*file_, resolvedPath_);
}

void Pager::replaceBy(const std::string& path)
{
    requireTransaction();
    if (!changes_.empty()) {
        throw Error(ErrorCode::InvalidArgument, "A file that is to be replaced was changed");
    }
    try {
        file_->lock(LockLevel::Exclusive, patience_);
        // A journal that went not yet durably must not come back beside the other file.
        fileSystem_->syncFolderOf(resolvedPath_);
        renameDurably(*fileSystem_, path, resolvedPath_);
    } catch (...) {
        rollback();
        throw;
    }
    rollback();
}

// --- What must hold of the caller ---

void Pager::requireNotFailed() const
{
    if (state_ == State::Failed) {
        throw Error(ErrorCode::Io,
                    "A change to " + path_ + " failed and could not be taken back; open the file again to repair it");
    }
}

void Pager::requireTransaction() const
{
    requireNotFailed();
    if (!inTransaction()) {
        throw Error(ErrorCode::InvalidArgument, "A change was made outside any transaction");
    }
}

void Pager::requireSavepoint(Savepoint savepoint) const
{
    requireTransaction();
    if (savepoint >= changes_.savepointCount()) {
        throw Error(ErrorCode::InvalidArgument, "The savepoint is not there any more");
    }
}

void Pager::requireInPlace() const
{
    if (!file_->isInPlace()) {
        throw Error(ErrorCode::Replaced,
                    "The file " + path_ + " was moved, removed or replaced while it was open; open it again");
    }
}

void Pager::requireInFile(PageNumber number) const
{
    if (number >= pageCount()) {
        throw Error(ErrorCode::Corrupt, number,
                    "A page was asked for that lies past the end of " + path_ + ", which has " +
                        std::to_string(pageCount()) + " pages");
    }
}

// --- Locks, and what is trusted under them ---

/// From no lock to Shared or Reserved, with the file repaired and the cache valid. On failure no lock is held.
void Pager::takeLock(LockLevel level)
{
    file_->lock(level, patience_);
    try {
        requireInPlace();
        if (journal_.isThere()) {
            recover(level);
        }
        if (pages_.refresh()) {
            ++generation_;
        }
    } catch (...) {
        settle();
        throw;
    }
}

/// Rolls back a hot journal and holds the level again.
void Pager::recover(LockLevel level)
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
    requireInPlace(); // while no lock was held, another may have repaired the file and replaced it
    if (journal_.isThere()) {
        journal_.rollBack(*file_);
    }
    file_->lock(level, patience_);
}

/// Back to what the reads in progress call for. A lock that the system does not take back now goes with the next
/// change of level or with the file.
void Pager::settle() noexcept
{
    state_ = readDepth_ > 0 ? State::Reading : State::Idle;
    releaseDownTo(readDepth_ > 0 ? LockLevel::Shared : LockLevel::None);
}

void Pager::releaseDownTo(LockLevel level) noexcept
{
    try {
        file_->lock(level, patience_);
    } catch (...) {
        return;
    }
}

// --- Commit ---

/// Adds the counted page 0 to the pages of the commit.
void Pager::countCommit(std::vector<ChangedPage>& changed)
{
    if (changes_.pageCountBefore() == 0) {
        return;
    }
    if (changed.front().number != 0) {
        const PageRef first = pages_.read(0);
        changed.insert(changed.begin(), ChangedPage{.number = 0, .before = first, .after = first});
    }
    ChangedPage& first = changed.front();
    first.after = withCommitCounted(*first.before, *first.after);
}

/// The file as before the transaction, and the transaction gone. False when that failed: the pager is Failed.
bool Pager::undoCommit(bool fileTouched) noexcept
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
        pages_.forget();
        state_ = State::Failed;
        releaseDownTo(LockLevel::None);
        return false;
    }
    journal_.discardUnfinished();
    rollback();
    return true;
}

/// The table of states in pager.h.
void Pager::checkState() const
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
        assert(changes_.pageCountBefore() == pages_.count());
        assert(changes_.pageCount() >= pages_.count());
        break;
    case State::Failed:
        assert(pages_.areForgotten());
        break;
    }
    assert(inTransaction() || (changes_.empty() && changes_.savepointCount() == 0));
#endif
}

} // namespace jet
