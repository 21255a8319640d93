// The rows of a table that answer one search of SQLite's.
#pragma once

#include "data/engine/decoded_row.h"
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
    [[nodiscard]] bool atEnd() const { return row_ == nullptr || row_->isNone(); }
    // These require that the cursor is not at the end.
    [[nodiscard]] jet::RowPointer address() const { return row_->row().address(); }
    /// Of the binding's column of that number; good until the next call.
    [[nodiscard]] const jet::Value& value(std::size_t column);

private:
    /// Rows found by their key: enough for the foods that a person eats.
    static constexpr std::size_t kRowsKept = 4096;

    void walk(std::unique_ptr<jet::RowCursor> rows);
    void findByKey(int number, std::string_view values, sqlite3_value* key);
    [[nodiscard]] std::unique_ptr<jet::RowCursor> rowsOf(int number, std::string_view values,
                                                         std::span<sqlite3_value* const> arguments) const;

    const TableBinding* binding_;
    std::unique_ptr<jet::RowCursor> rows_;
    DecodedRow walked_;
    /// By the key that was asked for, none where there is none: a join asks for the same rows again and again. Each row
    /// holds its page.
    std::unordered_map<sqlite3_int64, DecodedRow> kept_;
    int keptBy_ = 0;            ///< the number of the plan whose keys they are
    jet::Value longValue_;      ///< the last that was asked for: too large to keep for each row
    DecodedRow* row_ = nullptr; ///< the one walked or one of those kept
};

} // namespace data
