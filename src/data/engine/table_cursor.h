// The rows of a table that answer one search of SQLite's.
#pragma once

#include "jet/table.h"

#include <sqlite3.h>

#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>

namespace data {

struct SearchableIndex;
struct TableBinding;

/// Stands before no row until search() is called; each further call starts anew. Used within one statement, whose
/// runner holds a read so that the file does not change.
class TableCursor
{
public:
    explicit TableCursor(const TableBinding& binding) : binding_(&binding) {}

    /// Moves to the first row that an IndexPlan yields: its number, its values and what SQLite gives for these.
    void search(int number, std::string_view values, std::span<sqlite3_value* const> arguments);
    void next();
    [[nodiscard]] bool atEnd() const { return row_ == nullptr; }
    /// Requires that the cursor is not at the end; good until it moves.
    [[nodiscard]] const jet::Row& row() const { return *row_; }

private:
    /// Rows found by their key: enough for the foods that a person eats.
    static constexpr std::size_t kRowsKept = 4096;

    void walk(std::unique_ptr<jet::RowCursor> rows);
    void findByKey(int number, std::string_view values, sqlite3_value* key);
    [[nodiscard]] std::unique_ptr<jet::RowCursor> rowsOf(int number, std::string_view values,
                                                         std::span<sqlite3_value* const> arguments) const;

    const TableBinding* binding_;
    std::unique_ptr<jet::RowCursor> rows_;
    /// By the key that was asked for, null where there is none: a join asks for the same rows again and again. Each row
    /// holds its page.
    std::unordered_map<sqlite3_int64, std::unique_ptr<jet::Row>> kept_;
    int keptBy_ = 0; ///< the number of the plan whose keys they are
    const jet::Row* row_ = nullptr;
};

} // namespace data
