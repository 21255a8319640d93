// A usage map of either kind as stretches of bits; shared by UsageMap and PageAllocator alone.
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/row_pointer.h"
#include "jet/format/usage_map_codec.h"

#include <optional>

namespace jet {

/// Bits for the pages from `firstPage` on.
struct MapStretch {
    PageRef page; ///< keeps the bits
    std::int64_t firstPage = 0;
    ByteView bits;

    [[nodiscard]] bool covers(PageNumber number) const
    {
        return number >= firstPage && static_cast<std::uint64_t>(number - firstPage) < bits.size() * 8;
    }
    [[nodiscard]] bool contains(PageNumber number) const
    {
        return covers(number) && BitView(bits).test(static_cast<std::size_t>(number - firstPage));
    }
    /// The lowest member at or above the page, which may be a number that no page has.
    [[nodiscard]] std::optional<std::int64_t> firstFrom(std::int64_t number) const;
    /// The highest member below the page.
    [[nodiscard]] std::optional<std::int64_t> lastBefore(std::int64_t number) const;
};

/// The map as it is now; a later change of the map does not show.
class MapReader
{
public:
    /// Throws Corrupt when there is no usage map at the address.
    MapReader(Pager& pager, RowPointer where);

    [[nodiscard]] const UsageMapRow& row() const { return row_; }
    [[nodiscard]] bool isInline() const { return row_.kind == UsageMapRow::Kind::Inline; }

    /// An inline map has one stretch; a reference map one for each bitmap page that the file's size allows.
    [[nodiscard]] std::size_t stretchCount() const { return stretches_; }
    /// Nothing where a reference map names no bitmap page. A number that no page has counts as none: original files
    /// hold such leftovers. Throws Corrupt when the page is there and is no bitmap.
    [[nodiscard]] std::optional<MapStretch> stretch(std::size_t index) const;
    /// The one whose range holds the page.
    [[nodiscard]] std::size_t stretchOf(PageNumber page) const { return isInline() ? 0 : page / kPagesPerBitmap; }

private:
    Pager* pager_;
    PageRef page_;
    UsageMapRow row_;
    std::size_t stretches_ = 0;
};

/// Sets or clears the page's bit where the map has one; false where it has none.
bool changeMapBit(Pager& pager, RowPointer where, PageNumber page, bool member);
/// The map's row for changing in place; good until the next call of the pager.
[[nodiscard]] MutableBytes modifyMapRow(Pager& pager, RowPointer where);

} // namespace jet
