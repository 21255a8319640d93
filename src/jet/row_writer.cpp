#include "jet/row_writer.h"

#include "jet/change.h"
#include "jet/format/at_page.h"
#include "jet/row_reader.h"
#include "jet/store/long_value_store.h"
#include "jet/store/table_definition_store.h"

#include <algorithm>

namespace jet {

namespace {

/// Updates that set each other off: more than this many in a row means that they run in a ring.
constexpr unsigned kDeepestCascade = 100;

void requireWritable(const LoadedTable& table)
{
    if (const std::string index = unsupportedIndexOf(table); !index.empty()) {
        throw Error(ErrorCode::IndexNotSupported,
                    "The table has an index that cannot be kept up and so is not written to: \"" + index + "\"");
    }
}

void requireDistinctColumns(std::span<const ColumnValue> values)
{
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (std::any_of(values.begin(), value,
                        [value](const ColumnValue& earlier) { return earlier.columnNumber == value->columnNumber; })) {
            throw Error(ErrorCode::InvalidArgument,
                        "Two values are given for the column of number " + std::to_string(value->columnNumber));
        }
    }
}

[[nodiscard]] const Column& columnOf(const LoadedTable& table, std::uint16_t number)
{
    const Column* column = table.definition.columnByNumber(number);
    if (column == nullptr) {
        throw Error(ErrorCode::NoSuchObject, "The table has no column of number " + std::to_string(number));
    }
    return *column;
}

void requireFree(const TableIndex& index, const IndexKey& key, std::optional<RowPointer> except = std::nullopt)
{
    if (index.required && key.anyNull) {
        throw Error(ErrorCode::NullNotAllowed, "The columns of the index \"" + index.name + "\" must have values");
    }
    if (index.mustBeAlone(key) && index.tree.isTaken(key.bytes, except)) {
        throw Error(ErrorCode::DuplicateKey, "The index \"" + index.name + "\" has a row with the same key already");
    }
}

[[nodiscard]] StoredRow rowAt(const LoadedTable& table, RowPointer address)
{
    std::optional<StoredRow> row = table.rows.read(address);
    if (!row.has_value()) {
        throw Error(ErrorCode::NoSuchObject, address.page, "The row is not there any more");
    }
    return std::move(*row);
}

[[nodiscard]] RowView viewOf(const LoadedTable& table, const StoredRow& row)
{
    return atPage(row.dataPage, [&] { return RowView(table.layout, row.bytes); });
}

[[nodiscard]] LongValueStore longValuesOf(Pager& pager, const LoadedTable& table, const Column& column)
{
    const std::vector<LongValueMaps>& all = table.definition.longValues;
    const auto maps = std::find_if(all.begin(), all.end(), [&column](const LongValueMaps& candidate) {
        return candidate.columnNumber == column.number;
    });
    if (maps == all.end()) {
        throw Error(ErrorCode::Corrupt, "The definition names no pages for the values of \"" + column.name + "\"");
    }
    return {pager, *maps};
}

/// A row's values for the child's columns: those of the parent's key, or nulls.
[[nodiscard]] std::vector<ColumnValue> childValues(const TableIndex& referenced, const TableIndex& referencing,
                                                   const RowValues* parent)
{
    std::vector<ColumnValue> values;
    const std::vector<std::uint16_t>& numbers = referencing.encoder.columnNumbers();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        values.push_back(
            {numbers[i], parent == nullptr ? Value{Null{}} : (*parent)[referenced.encoder.columnNumbers()[i]]});
    }
    return values;
}

} // namespace

std::string unsupportedIndexOf(const LoadedTable& table)
{
    const auto index = std::find_if(table.indexes.begin(), table.indexes.end(),
                                    [](const TableIndex& candidate) { return !candidate.encoder.canEncode(); });
    return index == table.indexes.end() ? std::string() : index->name;
}

// --- Insert ------------------------------------------------------------------------------------------------------

RowPointer RowWriter::insert(StoredTable& table, std::span<const ColumnValue> values)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    requireWritable(*loaded);
    requireDistinctColumns(values);
    const RowValues row = newRow(table, values);
    std::vector<IndexKey> keys;
    for (const TableIndex& index : loaded->indexes) {
        keys.push_back(index.keyOf(row));
        requireFree(index, keys.back());
    }
    for (const RelationshipEnd& parent : foreignKeys_.parentsOf(table)) {
        foreignKeys_.requireParent(table, parent, row);
    }

    ChangeScope scope(*tables_);
    TableDefinition& definition = loaded->definition;
    RowBuilder builder(definition);
    for (const Column& column : definition.columns) {
        const Value& value = row[column.number];
        if (!isNull(value)) {
            builder.set(column, slotValue(*loaded, column, value));
        }
        if (column.isAutoNumber() && std::holds_alternative<std::int32_t>(value)) {
            definition.lastAutoNumber = std::max(definition.lastAutoNumber, std::get<std::int32_t>(value));
        }
    }
    const RowPointer address = loaded->rows.insert(builder.encode());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        loaded->addEntry(i, keys[i], address);
    }
    ++definition.rowCount;
    saveCounters(table, *loaded);
    scope.keep();
    return address;
}

RowValues RowWriter::newRow(StoredTable& table, std::span<const ColumnValue> values)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    RowValues row = loaded->emptyRow();
    for (const ColumnValue& given : values) {
        row[columnOf(*loaded, given.columnNumber).number] = given.value;
    }
    const std::vector<ColumnRules>& rules = rulesOf(table);
    for (const Column& column : loaded->definition.columns) {
        Value& value = row[column.number];
        if (column.isAutoNumber() && column.type == ColumnType::Long && isNull(value)) {
            value = table.nextAutoNumber();
        }
        value = checkedValue(column, rules[column.number], value);
    }
    return row;
}

// --- Update ------------------------------------------------------------------------------------------------------

void RowWriter::update(StoredTable& table, RowPointer address, std::span<const ColumnValue> values)
{
    update(table, address, values, 0);
}

void RowWriter::update(StoredTable& table, RowPointer address, std::span<const ColumnValue> values, unsigned depth)
{
    if (depth > kDeepestCascade) {
        throw Error(ErrorCode::InvalidArgument, "The relationships of the table pass a changed key on in a ring");
    }
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    requireWritable(*loaded);
    requireDistinctColumns(values);
    const StoredRow stored = rowAt(*loaded, address);
    const RowView view = viewOf(*loaded, stored);

    const std::vector<ColumnValue> changes = checkedChanges(table, *loaded, view, values);
    const RowChange change = rowChange(*loaded, view, changes);
    for (const KeyChange& key : change.keys) {
        requireFree(loaded->indexes[key.index], key.after, address);
    }
    requireParents(table, address, change);
    const std::vector<ReferringRow> followers = rowsToFollow(table, address, change);

    ChangeScope scope(*tables_);
    RowBuilder builder(loaded->definition, view);
    for (const ColumnValue& given : changes) {
        const Column& column = columnOf(*loaded, given.columnNumber);
        builder.set(column, slotValue(*loaded, column, given.value));
        freeLongValue(*loaded, column, view);
    }
    loaded->rows.update(address, builder.encode());
    for (const KeyChange& key : change.keys) {
        removeEntry(*loaded, key.index, key.before, address);
        loaded->addEntry(key.index, key.after, address);
    }
    saveCounters(table, *loaded);
    for (const auto& [child, row] : followers) {
        StoredTable& other = tables_->at(child.otherTable);
        update(other, row,
               childValues(loaded->indexes[child.ownIndex], other.loaded()->indexes[child.otherIndex], &change.after),
               depth + 1);
    }
    scope.keep();
}

std::vector<ColumnValue> RowWriter::checkedChanges(StoredTable& table, const LoadedTable& loaded, const RowView& row,
                                                   std::span<const ColumnValue> values)
{
    std::vector<ColumnValue> changes;
    for (const ColumnValue& given : values) {
        const Column& column = columnOf(loaded, given.columnNumber);
        changes.push_back({column.number, checkedValue(column, rulesOf(table)[column.number], given.value)});
        if (column.isAutoNumber() && changes.back().value != row.value(column)) {
            throw Error(ErrorCode::ReadOnly, "The auto-number \"" + column.name + "\" cannot be changed");
        }
    }
    return changes;
}

RowWriter::RowChange RowWriter::rowChange(const LoadedTable& table, const RowView& row,
                                          std::span<const ColumnValue> changes)
{
    RowChange change{.before = table.emptyRow(), .after = {}, .keys = {}};
    std::vector<std::size_t> touched;
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        const TableIndex& index = table.indexes[i];
        if (std::any_of(changes.begin(), changes.end(),
                        [&index](const ColumnValue& given) { return index.uses(given.columnNumber); })) {
            touched.push_back(i);
            for (const std::uint16_t number : index.encoder.columnNumbers()) {
                change.before[number] = readValue(tables_->pager(), row, columnOf(table, number));
            }
        }
    }
    change.after = change.before;
    for (const ColumnValue& given : changes) {
        change.after[given.columnNumber] = given.value;
    }
    for (const std::size_t i : touched) {
        const TableIndex& index = table.indexes[i];
        KeyChange key{.index = i, .before = index.keyOf(change.before), .after = index.keyOf(change.after)};
        if (key.before.bytes != key.after.bytes) {
            change.keys.push_back(std::move(key));
        }
    }
    return change;
}

bool RowWriter::RowChange::changesKey(std::size_t index) const
{
    return std::any_of(keys.begin(), keys.end(), [index](const KeyChange& key) { return key.index == index; });
}

void RowWriter::requireParents(StoredTable& table, RowPointer address, const RowChange& change)
{
    for (const RelationshipEnd& parent : foreignKeys_.parentsOf(table)) {
        if (change.changesKey(parent.ownIndex)) {
            const bool refersToRekeyed = parent.otherTable == table.page() && change.changesKey(parent.otherIndex);
            foreignKeys_.requireParent(table, parent, change.after,
                                       refersToRekeyed ? std::optional(address) : std::nullopt);
        }
    }
}

std::vector<RowWriter::ReferringRow> RowWriter::rowsToFollow(StoredTable& table, RowPointer address,
                                                             const RowChange& change)
{
    std::vector<ReferringRow> followers;
    for (const RelationshipEnd& child : foreignKeys_.childrenOf(table)) {
        if (!change.changesKey(child.ownIndex)) {
            continue;
        }
        for (const RowPointer row : foreignKeys_.rowsReferringTo(table, child, change.before)) {
            if (child.otherTable == table.page() && row == address && change.changesKey(child.otherIndex)) {
                continue; // It refers elsewhere from now on.
            }
            if (!child.cascadeUpdates) {
                foreignKeys_.refuseBecauseOf(child);
            }
            followers.push_back({child, row});
        }
    }
    return followers;
}

// --- Erase -------------------------------------------------------------------------------------------------------

void RowWriter::erase(StoredTable& table, RowPointer address)
{
    static_cast<void>(rowAt(*table.loaded(), address));
    ChangeScope scope(*tables_);
    // Rows that go because rows they refer to go. A row is erased before the rows that refer to it, so that rows which
    // refer to each other in a ring come to an end.
    std::vector<RowAt> doomed{{&table, address}};
    while (!doomed.empty()) {
        const RowAt row = doomed.back();
        doomed.pop_back();
        if (const std::optional<StoredRow> stored = row.table->loaded()->rows.read(row.address)) {
            eraseOne(row, *stored, doomed);
        }
    }
    scope.keep();
}

void RowWriter::eraseOne(const RowAt& row, const StoredRow& stored, std::vector<RowAt>& doomed)
{
    StoredTable& table = *row.table;
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    requireWritable(*loaded);
    const RowView view = viewOf(*loaded, stored);

    std::vector<std::pair<RelationshipEnd, RowPointer>> orphans;
    for (const RelationshipEnd& child : foreignKeys_.childrenOf(table)) {
        StoredTable& other = tables_->at(child.otherTable);
        const RowValues key = loaded->keyValues(tables_->pager(), loaded->indexes[child.ownIndex], view);
        for (const RowPointer referring : foreignKeys_.rowsReferringTo(table, child, key)) {
            if (&other == &table && referring == row.address) {
                continue;
            }
            if (child.cascadeDeletes) {
                doomed.push_back({&other, referring});
            } else if (child.setNullOnDelete) {
                orphans.emplace_back(child, referring);
            } else {
                foreignKeys_.refuseBecauseOf(child);
            }
        }
    }

    for (std::size_t i = 0; i < loaded->indexes.size(); ++i) {
        const TableIndex& index = loaded->indexes[i];
        removeEntry(*loaded, i, index.keyOf(loaded->keyValues(tables_->pager(), index, view)), row.address);
    }
    for (const Column& column : loaded->definition.columns) {
        freeLongValue(*loaded, column, view);
    }
    loaded->rows.erase(row.address);
    if (loaded->definition.rowCount > 0) {
        --loaded->definition.rowCount;
    }
    saveCounters(table, *loaded);

    for (const auto& [child, orphan] : orphans) {
        StoredTable& other = tables_->at(child.otherTable);
        update(other, orphan,
               childValues(loaded->indexes[child.ownIndex], other.loaded()->indexes[child.otherIndex], nullptr), 1);
    }
}

// --- Parts of all three ------------------------------------------------------------------------------------------

const std::vector<ColumnRules>& RowWriter::rulesOf(StoredTable& table)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    if (!loaded->rules.has_value()) {
        loaded->rules = tables_->facts().rulesOf(table.page(), *loaded);
    }
    return *loaded->rules;
}

void RowWriter::removeEntry(LoadedTable& table, std::size_t index, const IndexKey& key, RowPointer address)
{
    TableIndex& target = table.indexes[index];
    if (target.holds(key) && !target.tree.erase(key.bytes, address)) {
        throw Error(ErrorCode::Corrupt, address.page, "The index \"" + target.name + "\" lacks an entry for a row");
    }
}

/// What goes into the row: the value itself, or the slot of a long value that was written.
Value RowWriter::slotValue(const LoadedTable& table, const Column& column, const Value& value)
{
    if (!column.isLongValue() || isNull(value)) {
        return value;
    }
    return longValuesOf(tables_->pager(), table, column).write(column, value);
}

void RowWriter::freeLongValue(const LoadedTable& table, const Column& column, const RowView& row)
{
    if (!column.isLongValue()) {
        return;
    }
    const std::optional<ByteView> slot = row.raw(column);
    if (slot.has_value() && decodeLongValue(*slot).storage != LongValue::Storage::Inline) {
        longValuesOf(tables_->pager(), table, column).free(*slot);
    }
}

void RowWriter::saveCounters(StoredTable& table, const LoadedTable& loaded)
{
    TableDefinitionStore(tables_->pager()).saveCounters(table.page(), loaded.definition);
    table.noteChange();
}

} // namespace jet
