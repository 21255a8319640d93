// A table on its way from one file to another.
#pragma once

#include "jet/catalogue.h"

#include <optional>
#include <vector>

namespace jet {

/// Where a table's definition is in the one file and in the other.
struct MovedTable {
    PageNumber from = 0;
    PageNumber to = 0;
};

/// The column that holds ids of objects in that table, when it is one of the system's that do.
[[nodiscard]] std::optional<std::uint16_t> idColumnOf(Catalogue& source, PageNumber table);

/// An id of an object as the other file has it: that of a table changes, others do not.
[[nodiscard]] std::int32_t carriedId(std::int32_t id, const std::vector<MovedTable>& tables);

/// The definition as of a table without rows and pages, for the other file.
[[nodiscard]] TableDefinition withoutPages(TableDefinition definition, const std::vector<MovedTable>& tables);

} // namespace jet
