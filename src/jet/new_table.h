// Tables from their description (FORMAT.md, "Creating a file").
#pragma once

#include "jet/format/table_definition.h"
#include "jet/schema.h"

#include <span>

namespace jet {

/// A definition without pages. Throws InvalidArgument, NoSuchObject (a key column that is not there) or ObjectExists (a
/// name twice) for a description that the format cannot hold.
[[nodiscard]] TableDefinition definitionOf(const TableSpec& spec);

/// How many usage maps a table has.
[[nodiscard]] std::size_t mapsNeededBy(const TableDefinition& definition);
/// Gives the definition at that page its maps and an empty root for each index. Requires a transaction.
void attachMaps(Pager& pager, PageNumber page, TableDefinition& definition, std::span<const RowPointer> maps);

/// Writes the definition with empty maps and indexes and returns its first page. Requires a transaction.
[[nodiscard]] PageNumber storeNewTable(Pager& pager, TableDefinition definition);

} // namespace jet
