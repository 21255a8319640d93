// The address of a row, as the file stores it in four bytes: the slot in one, the page in three (FORMAT.md,
// "Conventions").
#pragma once

#include "jet/disk/bytes.h"

#include <compare>
#include <cstdint>

namespace jet {

/// Where a row is: its page and its slot there. A row keeps its address for life, also when its data moves.
struct RowPointer {
    PageNumber page = 0;
    std::uint8_t row = 0;
    auto operator<=>(const RowPointer&) const = default;
};

inline constexpr std::size_t kRowPointerSize = 4;

[[nodiscard]] inline RowPointer getRowPointer(ByteView bytes, std::size_t offset)
{
    return RowPointer{.page = getU24(bytes, offset + 1), .row = getU8(bytes, offset)};
}

inline void putRowPointer(MutableBytes bytes, std::size_t offset, RowPointer pointer)
{
    putU8(bytes, offset, pointer.row);
    putU24(bytes, offset + 1, pointer.page);
}

} // namespace jet
