// Single entries of index pages (FORMAT.md, "Index pages").
#pragma once

#include "jet/format/row_pointer.h"

namespace jet {

// What stands behind the key, in bytes: in a leaf the row, in a node the row and the child.
inline constexpr std::size_t kIndexEntryRowSize = 4;
inline constexpr std::size_t kIndexEntryChildSize = 4;

/// A leaf's entry: key, page and row, the page most significant byte first.
[[nodiscard]] Bytes makeLeafEntry(ByteView key, RowPointer row);
/// A node's entry for the child whose last leaf entry this is.
[[nodiscard]] Bytes makeNodeEntry(ByteView lastLeafEntry, PageNumber child);
/// The two parts of a node's entry.
[[nodiscard]] ByteView leafEntryOf(ByteView nodeEntry);
[[nodiscard]] PageNumber childOf(ByteView nodeEntry);

} // namespace jet
