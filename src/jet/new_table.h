// Tables from their description (FORMAT.md, "Creating a file").
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/table_definition.h"
#include "jet/schema.h"

#include <span>

namespace jet {

/// A definition without pages. Throws InvalidArgument, NoSuchObject (a key column that is not there) or ObjectExists (a
/// name twice) for a description that the format cannot hold.
[[nodiscard]] TableDefinition definitionOf(const TableSpec& spec);

/// Writes the definition with empty maps and indexes and returns its first page. Requires a transaction.
[[nodiscard]] PageNumber storeNewTable(Pager& pager, TableDefinition definition);
/// The same for several tables: all their definitions first, then the page of their maps, then the roots of indexes.
[[nodiscard]] std::vector<PageNumber> storeNewTables(Pager& pager, std::span<TableDefinition> definitions);

} // namespace jet
