// Sets of pages as bits: in a row of a map page, or on bitmap pages that the row names (FORMAT.md, "Usage maps and
// allocation").
#pragma once

#include "jet/disk/bytes.h"
#include "jet/disk/page.h"

#include <cstdint>
#include <optional>

namespace jet {

/// A run of bits, least significant first in each byte.
class BitView
{
public:
    explicit BitView(ByteView bytes) : bytes_(bytes) {}

    [[nodiscard]] std::size_t size() const { return bytes_.size() * 8; }
    [[nodiscard]] bool test(std::size_t bit) const;
    /// The first set bit at or after `from`.
    [[nodiscard]] std::optional<std::size_t> firstFrom(std::size_t from) const;
    /// The last set bit before `end`.
    [[nodiscard]] std::optional<std::size_t> lastBefore(std::size_t end) const;

private:
    ByteView bytes_;
};

void setBit(MutableBytes bytes, std::size_t bit, bool on);

/// The row of a usage map.
struct UsageMapRow {
    enum class Kind : std::uint8_t { Inline = 0, Reference = 1 };

    static constexpr std::size_t kInlineHeader = 5;    ///< kind and start page
    static constexpr std::size_t kReferenceHeader = 1; ///< kind
    static constexpr std::size_t kUsualSize = 69;      ///< of a new map: 512 pages, or 17 bitmap pages

    Kind kind = Kind::Inline;
    ByteView row;

    /// Throws Corrupt for a kind unknown and a row too short for its kind.
    [[nodiscard]] static UsageMapRow decode(ByteView row);

    // Inline
    [[nodiscard]] std::int64_t startPage() const; ///< as stored; anything at all in odd files
    [[nodiscard]] ByteView bits() const { return row.subspan(kInlineHeader); }
    // Reference
    [[nodiscard]] std::size_t pointerCount() const { return (row.size() - kReferenceHeader) / 4; }
    [[nodiscard]] PageNumber pointer(std::size_t index) const; ///< 0: none; anything at all in odd files
};

/// Makes the row an inline map without members. The length stays.
void initializeInlineMap(MutableBytes row, PageNumber startPage);
/// Makes the row a reference map without bitmap pages.
void initializeReferenceMap(MutableBytes row);
void putBitmapPointer(MutableBytes row, std::size_t index, PageNumber page);

/// Pages of which one bitmap page tells.
inline constexpr std::size_t kPagesPerBitmap = (kPageSize - 4) * 8;

[[nodiscard]] bool isBitmapPage(ByteView page);
/// An empty set.
void initializeBitmapPage(MutableBytes page);
[[nodiscard]] inline ByteView bitmapOf(ByteView page)
{
    return slice(page, 4, kPageSize - 4);
}
[[nodiscard]] inline MutableBytes bitmapOf(MutableBytes page)
{
    return slice(page, 4, kPageSize - 4);
}

} // namespace jet
