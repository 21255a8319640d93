// What a file holds as one text, for comparing states before and after; and how long tests with chance shall run.
#pragma once

#include "jet/database.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace jet {

/// For the messages of failing tests.
inline void PrintTo(const Fault& fault, std::ostream* out)
{
    *out << "page " << fault.page << ": " << fault.text << (fault.kind == Fault::Kind::Leftover ? " (leftover)" : "");
}

} // namespace jet

namespace jet::test {

/// All rows of all user tables, the saved queries' SQL and the names of relationships.
[[nodiscard]] std::string contentOf(Database& database);

/// The variable QUILLON_TEST_SEEDS when it is set, for longer runs by hand; else the number that every run affords.
[[nodiscard]] std::uint64_t seedCount(std::uint64_t usual);

} // namespace jet::test
