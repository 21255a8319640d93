// The structural check of a whole file.
#pragma once

#include "jet/database.h"
#include "jet/disk/pager.h"

#include <vector>

namespace jet {

/// Faults after which the check gives up: what has so many is beyond telling one from another.
inline constexpr std::size_t kMaximumFaults = 1000;

/// What Database::check() says. Takes a read of its own. Damaged content ends up in the list and is never thrown; an
/// I/O error is thrown. Needs memory for some bits a row and no more, whatever the file holds.
[[nodiscard]] std::vector<Fault> checkFile(Pager& pager);

} // namespace jet
