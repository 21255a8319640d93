// A table of the file as a virtual table of SQLite, for reading.
#pragma once

#include "data/engine/index_plan.h"
#include "data/engine/pending_error.h"
#include "data/language/catalogue.h"
#include "jet/table.h"

#include <sqlite3.h>

#include <vector>

namespace data {

/// What the module knows of its table; must live as long as the connection.
struct TableBinding {
    /// The definition is copied: a table whose definition changes needs a new binding.
    TableBinding(jet::Table& source, PendingError& errors);

    jet::Table& table;
    PendingError& pending;
    std::vector<jet::Column> columns; ///< as people see them; c0, c1 ... of the virtual table
    std::vector<SearchableIndex> indexes;
};

/// Makes the table known under the name, with the columns that SourceTable promises. Its row ids are the rows'
/// addresses. Returns SQLite's code.
int registerTable(sqlite3* connection, const QString& name, TableBinding& binding);

/// A row's address as SQLite's row id, rising in the order of entry.
[[nodiscard]] constexpr qint64 rowIdOf(jet::RowPointer address)
{
    return (qint64{address.page} << 8) | address.row;
}

[[nodiscard]] constexpr jet::RowPointer addressOf(qint64 rowId)
{
    return {static_cast<jet::PageNumber>(rowId >> 8), static_cast<std::uint8_t>(rowId & 0xFF)};
}

} // namespace data
