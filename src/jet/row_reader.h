// Rows of a table, read by address, in the order of entry or by keys.
#pragma once

#include "jet/stored_table.h"
#include "jet/table.h"

namespace jet {

// Each function reads under a lock of its own, or inside the caller's. What it returns holds the lock until it is
// destroyed.

[[nodiscard]] std::unique_ptr<RowCursor> scanRows(Pager& pager, StoredTable& table);
/// Throws IndexNotSupported for an index that cannot be searched, NoSuchObject for one that is not there.
[[nodiscard]] std::unique_ptr<RowCursor> rangeOfRows(Pager& pager, StoredTable& table, std::size_t realIndex,
                                                     const KeyRange& keys, Direction direction = Direction::Forwards);
/// Null when there is no row at the address.
[[nodiscard]] std::unique_ptr<Row> readRow(Pager& pager, StoredTable& table, RowPointer address);

/// The index of that position. Throws NoSuchObject.
[[nodiscard]] const TableIndex& indexAt(const LoadedTable& table, std::size_t realIndex);

} // namespace jet
