// The pages that a transaction has changed, with what they were before, and savepoints among the changes.
#pragma once

#include "jet/disk/journal.h"
#include "jet/disk/page.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace jet {

/// Pages are copied on write: a page that a reader or a savepoint still holds is never changed, its successor is.
class PageChanges
{
public:
    /// Starts over for a file of that many pages.
    void reset(PageNumber pageCount);

    [[nodiscard]] PageNumber pageCount() const { return pageCount_; }
    [[nodiscard]] PageNumber pageCountBefore() const { return pageCountBefore_; }
    [[nodiscard]] bool empty() const { return pages_.empty(); }

    /// The page as changed so far, or null when it is as in the file.
    [[nodiscard]] PageRef find(PageNumber number) const;
    [[nodiscard]] bool contains(PageNumber number) const { return pages_.contains(number); }
    /// A page that was changed before, for changing again.
    [[nodiscard]] Page& modify(PageNumber number);
    /// A page that was not, for changing; `before` is what the file holds.
    [[nodiscard]] Page& modifyFirst(PageNumber number, PageRef before);
    [[nodiscard]] PageNumber append();

    [[nodiscard]] std::size_t savepoint();
    /// False when nothing was changed since. The savepoint stays; those after it are gone.
    bool rollbackTo(std::size_t savepoint);
    void release(std::size_t savepoint);
    [[nodiscard]] std::size_t savepointCount() const { return savepoints_.size(); }

    /// The pages whose bytes differ from the file's, by ascending number.
    [[nodiscard]] std::vector<ChangedPage> collect() const;

private:
    struct Entry {
        PageRef before;
        std::shared_ptr<Page> now;
    };
    struct Savepoint {
        PageNumber pageCount = 0;
        /// What each page that was changed since was then; null for one that had not been changed.
        std::unordered_map<PageNumber, std::shared_ptr<Page>> pages;
    };

    void remember(PageNumber number, std::shared_ptr<Page> page);

    PageNumber pageCountBefore_ = 0;
    PageNumber pageCount_ = 0;
    std::unordered_map<PageNumber, Entry> pages_;
    std::vector<Savepoint> savepoints_;
};

} // namespace jet
