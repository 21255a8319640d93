// What a file holds, written to a fresh one.
//
// Carried over byte for byte: the header page, all rows of all tables in the order of a scan, long values, the
// definitions of columns and indexes, the counters of auto-numbers. So also saved queries, relationships, properties,
// accounts and rights, which are rows of the system's tables. What changes: where tables begin, and therefore the ids
// of tables wherever one stands. What is left behind: free pages and room inside pages, and what deleted columns left.
#pragma once

#include "jet/carried_table.h"

namespace jet {

/// All tables of the file, the system's four first. Throws ReadOnly or IndexNotSupported, naming it, for what cannot be
/// carried over: forms, reports, modules, linked tables and whatever else is not known, an index that cannot be kept
/// up.
[[nodiscard]] std::vector<MovedTable> tablesToCarryOver(Catalogue& source);

/// Fills the empty file. Requires a read of the source. Sets MovedTable::to.
void carryOver(Catalogue& source, Pager& target, std::vector<MovedTable>& tables);

} // namespace jet
