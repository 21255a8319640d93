#include "jet/stored_table.h"

#include "jet/format/at_page.h"
#include "jet/store/long_value_store.h"
#include "jet/store/table_definition_store.h"

#include <algorithm>
#include <limits>

namespace jet {

namespace {

/// Of the logical indexes that share a real one, the primary key names it best, and any other better than the side of a
/// relationship.
[[nodiscard]] std::string nameOf(const TableDefinition& definition, std::size_t realIndex)
{
    const auto rank = [](LogicalIndex::Kind kind) {
        return kind == LogicalIndex::Kind::PrimaryKey ? 0 : kind == LogicalIndex::Kind::Ordinary ? 1 : 2;
    };
    const LogicalIndex* best = nullptr;
    for (const LogicalIndex& logical : definition.logicalIndexes) {
        if (logical.realIndex == realIndex && (best == nullptr || rank(logical.kind) < rank(best->kind))) {
            best = &logical;
        }
    }
    return best == nullptr ? "(without a name)" : best->name;
}

[[nodiscard]] std::vector<TableIndex> indexesOf(Pager& pager, PageNumber page, const TableDefinition& definition)
{
    std::vector<TableIndex> indexes;
    indexes.reserve(definition.realIndexes.size());
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
        const RealIndex& real = definition.realIndexes[i];
        const bool primary = std::any_of(
            definition.logicalIndexes.begin(), definition.logicalIndexes.end(), [i](const LogicalIndex& logical) {
                return logical.realIndex == i && logical.kind == LogicalIndex::Kind::PrimaryKey;
            });
        indexes.push_back({.name = nameOf(definition, i),
                           .tree = IndexTree(pager, page, real.root, real.pages),
                           .encoder = IndexKeyEncoder(definition, real),
                           .unique = real.isUnique() || primary,
                           .required = real.isRequired() || primary,
                           .ignoresNulls = real.ignoresNulls()});
    }
    return indexes;
}

} // namespace

IndexKey TableIndex::keyOf(const RowValues& row) const
{
    std::vector<Value> values;
    values.reserve(encoder.columnNumbers().size());
    for (const std::uint16_t number : encoder.columnNumbers()) {
        values.push_back(row[number]);
    }
    return encoder.encode(values);
}

bool TableIndex::uses(std::uint16_t columnNumber) const
{
    const std::vector<std::uint16_t>& numbers = encoder.columnNumbers();
    return std::find(numbers.begin(), numbers.end(), columnNumber) != numbers.end();
}

LoadedTable::LoadedTable(Pager& pager, PageNumber page)
    : generation(pager.generation()), definition(TableDefinitionStore(pager).load(page)), layout(definition),
      rows(pager, page, definition.ownedPages, definition.pagesWithSpace),
      indexes(atPage(page, [&] { return indexesOf(pager, page, definition); })),
      columnNumbers_(definition.maximumColumns)
{
    for (const Column& column : definition.columns) {
        columnNumbers_ = std::max<std::size_t>(columnNumbers_, column.number + 1U);
    }
}

void LoadedTable::addEntry(std::size_t index, const IndexKey& key, RowPointer row)
{
    TableIndex& target = indexes[index];
    if (!target.holds(key)) {
        return;
    }
    if (target.unique || !target.tree.isTaken(key.bytes)) {
        ++definition.realIndexes[index].distinctKeys;
    }
    target.tree.insert(key.bytes, row);
}

RowValues LoadedTable::keyValues(Pager& pager, const TableIndex& index, const RowView& row) const
{
    RowValues values = emptyRow();
    for (const std::uint16_t number : index.encoder.columnNumbers()) {
        values[number] = readValue(pager, row, *definition.columnByNumber(number));
    }
    return values;
}

const std::shared_ptr<LoadedTable>& StoredTable::loaded()
{
    if (loaded_ == nullptr || loaded_->generation != pager_->generation()) {
        loaded_ = std::make_shared<LoadedTable>(*pager_, page_);
    }
    return loaded_;
}

std::int32_t StoredTable::nextAutoNumber()
{
    const std::int32_t stored = loaded()->definition.lastAutoNumber;
    const std::int32_t last = std::max(stored, highestAutoNumber_.value_or(stored));
    if (last == std::numeric_limits<std::int32_t>::max()) {
        throw Error(ErrorCode::Overflow, page_, "The table has handed out its last auto-number");
    }
    highestAutoNumber_ = last + 1;
    return last + 1;
}

StoredTable& StoredTables::at(PageNumber page)
{
    std::unique_ptr<StoredTable>& table = tables_[page];
    if (table == nullptr) {
        table = std::make_unique<StoredTable>(*pager_, page);
    }
    return *table;
}

void StoredTables::forget()
{
    for (const auto& [page, table] : tables_) {
        table->forget();
    }
}

} // namespace jet
