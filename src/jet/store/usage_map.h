// Sets of pages that are kept in the file (FORMAT.md, "Usage maps and allocation").
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/row_pointer.h"

#include <vector>

namespace jet {

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
