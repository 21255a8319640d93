// Which pages are free, and sets of pages kept in the file (FORMAT.md, "Usage maps and allocation").
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
    /// False for what the map does not tell of: a page in the file counts as used unless the map says that it is free.
    [[nodiscard]] bool isFree(PageNumber page) const;

    /// For a new file that has nothing but its pages 0 and 1: makes page 1 the map page, with both in use. Pages that
    /// are then allocated follow in order from 2.
    static void initialize(Pager& pager);

private:
    Pager* pager_;
};

/// Makes that many empty maps, on map pages of their own. Requires a transaction.
[[nodiscard]] std::vector<RowPointer> createUsageMaps(Pager& pager, std::size_t count);

/// A set of pages, kept in one row of a map page. Reading requires a read, changing a transaction. Throws Corrupt for a
/// map that contradicts the format.
class UsageMap
{
public:
    UsageMap(Pager& pager, RowPointer where) : pager_(&pager), where_(where) {}

    [[nodiscard]] bool contains(PageNumber page) const;
    /// The members in ascending order. Throws Corrupt for a map that names pages past the end of the file.
    [[nodiscard]] std::vector<PageNumber> pages() const;
    /// The highest member, or 0. Costs the same whatever the number of members.
    [[nodiscard]] PageNumber last() const;
    /// The lowest member above the page, or 0. Throws Corrupt when it is past the end of the file.
    [[nodiscard]] PageNumber next(PageNumber page) const;
    /// The highest member below the page, or 0.
    [[nodiscard]] PageNumber previous(PageNumber page) const;
    /// The bitmap pages that the map itself takes; they are in no map.
    [[nodiscard]] std::vector<PageNumber> bitmapPages() const;
    void add(PageNumber page);
    void remove(PageNumber page);

private:
    Pager* pager_;
    RowPointer where_;
};

} // namespace jet
