// Which pages are free, and sets of pages kept in the file (FORMAT.md, "Usage maps").
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/table_definition.h"

#include <vector>

namespace jet {

/// The global map. All functions require a transaction, isFree a read.
class PageAllocator
{
public:
    explicit PageAllocator(Pager& pager);

    /// The lowest free page above `after`, or a new one at the end of the file. All zero; its old content is gone.
    [[nodiscard]] PageNumber allocate(PageNumber after = 0);
    /// Gives the page back: marks its type as freed and the page as free. It must be in no other map any more.
    void free(PageNumber page);
    [[nodiscard]] bool isFree(PageNumber page) const;

private:
    Pager* pager_;
};

/// A set of pages, kept in one row of a map page.
class UsageMap
{
public:
    UsageMap(Pager& pager, RowPointer where) : pager_(&pager), where_(where) {}

    [[nodiscard]] bool contains(PageNumber page) const;
    /// The members in ascending order. Throws Corrupt for a map that names pages past the end of the file.
    [[nodiscard]] std::vector<PageNumber> pages() const;
    /// The highest member, or 0.
    [[nodiscard]] PageNumber last() const;
    void add(PageNumber page);
    void remove(PageNumber page);

private:
    Pager* pager_;
    RowPointer where_;
};

} // namespace jet
