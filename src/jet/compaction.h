// What a file holds, written to a fresh one.
//
// Carried over byte for byte: the header page, all rows of all tables in the order of a scan, long values, the
// definitions of columns and indexes, the counters of auto-numbers. So also saved queries, relationships, properties,
// accounts and rights, which are rows of the system's tables. What changes: where tables begin, and therefore the ids
// of tables wherever one stands. What is left behind: free pages and room inside pages, and what deleted columns left.
#pragma once

#include "jet/catalogue.h"

#include <vector>

namespace jet {

/// Where a table's definition is in the one file and in the other.
struct MovedTable {
    PageNumber from = 0;
    PageNumber to = 0;
};

/// All tables of the file, the system's four first. Throws ReadOnly or IndexNotSupported, naming it, for what cannot be
/// carried over: forms, reports, modules, linked tables and whatever else is not known, an index that cannot be kept
/// up.
[[nodiscard]] std::vector<MovedTable> tablesToCarryOver(Catalogue& source);

/// Fills the empty file. Requires a read of the source. Sets MovedTable::to.
void carryOver(Catalogue& source, Pager& target, std::vector<MovedTable>& tables);

/// Throws Corrupt unless the one file holds what the other does, both ways: header, definitions and rows, each in the
/// same order. Requires a read of both.
void requireCarriedOver(Catalogue& source, Pager& target, const std::vector<MovedTable>& tables);

} // namespace jet
