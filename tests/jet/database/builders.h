// Descriptions of tables in few words.
#pragma once

#include "jet/database.h"

#include <string>
#include <utility>
#include <vector>

namespace jet::test {

[[nodiscard]] inline ColumnSpec column(std::string name, ColumnType type, std::uint16_t characters = 0)
{
    ColumnSpec spec;
    spec.name = std::move(name);
    spec.type = type;
    spec.characters = characters;
    return spec;
}

[[nodiscard]] inline ColumnSpec counter(std::string name)
{
    ColumnSpec spec = column(std::move(name), ColumnType::Long);
    spec.autoNumber = true;
    return spec;
}

[[nodiscard]] inline IndexSpec index(std::string name, std::vector<IndexSpec::Key> keys)
{
    IndexSpec spec;
    spec.name = std::move(name);
    spec.keys = std::move(keys);
    return spec;
}

[[nodiscard]] inline IndexSpec primaryKey(std::vector<IndexSpec::Key> keys)
{
    IndexSpec spec = index("PrimaryKey", std::move(keys));
    spec.primaryKey = true;
    return spec;
}

[[nodiscard]] inline IndexSpec uniqueIndex(std::string name, std::vector<IndexSpec::Key> keys)
{
    IndexSpec spec = index(std::move(name), std::move(keys));
    spec.unique = true;
    return spec;
}

/// Enforced, on one pair of columns.
[[nodiscard]] inline Relationship relationship(std::string name, std::string fromTable, std::string fromColumn,
                                               std::string toTable, std::string toColumn)
{
    Relationship spec;
    spec.name = std::move(name);
    spec.referencingTable = std::move(fromTable);
    spec.referencedTable = std::move(toTable);
    spec.columns = {{std::move(fromColumn), std::move(toColumn)}};
    spec.enforced = true;
    return spec;
}

/// All rows, one a line: values of the columns with blanks between, null as "-".
[[nodiscard]] std::string listed(const Table& table);
[[nodiscard]] std::string listed(RowCursor& cursor, const TableDefinition& definition);

/// What check() found, one fault a line; "" for a sound file.
[[nodiscard]] std::string faultsOf(Database& database);

} // namespace jet::test
