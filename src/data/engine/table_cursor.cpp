#include "data/engine/table_cursor.h"

#include "data/engine/search_key.h"
#include "data/engine/sqlite_value.h"
#include "data/engine/table_module.h"

#include <algorithm>

namespace data {
namespace {

const SearchableIndex& indexOf(const TableBinding& binding, int number)
{
    const auto realIndex = static_cast<std::size_t>((number & ~IndexPlan::kBackwards) - 1);
    return *std::find_if(binding.indexes.begin(), binding.indexes.end(),
                         [&](const SearchableIndex& candidate) { return candidate.realIndex == realIndex; });
}

/// Whether a whole number stands for one key, and that for one row at most.
bool isKey(const TableBinding& binding, const SearchableIndex& index)
{
    if (!index.unique || index.keys.size() != 1) {
        return false;
    }
    const jet::ColumnType type = binding.columns[static_cast<std::size_t>(index.keys.front().column)].type;
    return type == jet::ColumnType::Byte || type == jet::ColumnType::Integer || type == jet::ColumnType::Long;
}

} // namespace

void TableCursor::search(int number, std::string_view values, std::span<sqlite3_value* const> arguments)
{
    const bool byWholeNumber = values == "=" && sqlite3_value_type(arguments.front()) == SQLITE_INTEGER;
    if (byWholeNumber && isKey(*binding_, indexOf(*binding_, number))) {
        findByKey(number, values, arguments.front());
    } else {
        walk(rowsOf(number, values, arguments));
    }
}

void TableCursor::next()
{
    row_ = nullptr;
    if (rows_ != nullptr && rows_->next()) {
        walked_.show(rows_->row());
        row_ = &walked_;
    }
}

const jet::Value& TableCursor::value(std::size_t column)
{
    const jet::Column& asked = binding_->columns[column];
    if (asked.isLongValue()) {
        longValue_ = row_->row().value(asked);
        return longValue_;
    }
    return row_->value(asked);
}

void TableCursor::walk(std::unique_ptr<jet::RowCursor> rows)
{
    rows_ = std::move(rows);
    next();
}

void TableCursor::findByKey(int number, std::string_view values, sqlite3_value* key)
{
    row_ = nullptr;
    rows_.reset();
    if (keptBy_ != number || kept_.size() == kRowsKept) {
        kept_.clear();
        keptBy_ = number;
    }
    const sqlite3_int64 wanted = sqlite3_value_int64(key);
    auto found = kept_.find(wanted);
    if (found == kept_.end()) {
        walk(rowsOf(number, values, std::span(&key, 1)));
        std::unique_ptr<jet::Row> row = atEnd() ? nullptr : binding_->table.read(address());
        if (row != nullptr) {
            next();
        }
        if (!atEnd()) { // the index is damaged, and no row is to be lost for that
            walk(rowsOf(number, values, std::span(&key, 1)));
            return;
        }
        found = kept_.try_emplace(wanted, std::move(row)).first;
        rows_.reset();
    }
    row_ = &found->second;
}

std::unique_ptr<jet::RowCursor> TableCursor::rowsOf(int number, std::string_view values,
                                                    std::span<sqlite3_value* const> arguments) const
{
    if (number == 0) {
        return binding_->table.scan();
    }
    const SearchableIndex& index = indexOf(*binding_, number);
    std::vector<KeyPart> parts;
    for (const SearchableIndex::Key& key : index.keys) {
        parts.push_back({binding_->columns[static_cast<std::size_t>(key.column)].type, key.ascending});
    }
    std::vector<runtime::Value> bounds;
    std::transform(arguments.begin(), arguments.end(), std::back_inserter(bounds), valueOf);
    const std::optional<jet::KeyRange> range = keyRange(values, bounds, parts);
    const auto direction = (number & IndexPlan::kBackwards) != 0 ? jet::Direction::Backwards : jet::Direction::Forwards;
    return range ? binding_->table.range(index.realIndex, *range, direction) : nullptr;
}

} // namespace data
