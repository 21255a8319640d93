// Table definitions to and from their byte strings (FORMAT.md, "Table definitions").
#pragma once

#include "jet/format/table_definition.h"

namespace jet {

/// Bytes at the start of each page of a definition: mark, unused bytes, next page.
inline constexpr std::size_t kDefinitionPageHeader = 8;

/// The whole definition from its byte string (page headers of continuation pages already taken out). Throws Corrupt.
[[nodiscard]] TableDefinition decodeTableDefinition(ByteView bytes);
/// The byte string, the header of its first page left zero.
[[nodiscard]] Bytes encodeTableDefinition(const TableDefinition& definition);

// What the first page of a definition is enough for.

/// The length of the whole byte string.
[[nodiscard]] std::size_t tableDefinitionLength(ByteView firstPage);
/// Writes rowCount, lastAutoNumber and the indexes' distinctKeys alone. Throws InvalidArgument, the page unchanged,
/// when the page's definition has another number of indexes.
void putTableCounters(MutableBytes firstPage, const TableDefinition& definition);

} // namespace jet
