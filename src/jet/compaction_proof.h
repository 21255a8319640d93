// Whether a compacted file holds what the file does that it was made from.
#pragma once

#include "jet/carried_table.h"

namespace jet {

/// Throws Corrupt unless the one file holds what the other does, both ways: header, definitions and rows, each in the
/// same order. Requires a read of both.
void requireCarriedOver(Catalogue& source, Pager& target, const std::vector<MovedTable>& tables);

} // namespace jet
