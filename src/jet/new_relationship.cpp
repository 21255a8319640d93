#include "jet/new_relationship.h"

#include "jet/catalogue_writer.h"
#include "jet/change.h"
#include "jet/names.h"
#include "jet/row_reader.h"
#include "jet/store/long_value_store.h"
#include "jet/store/table_definition_store.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t kMaximumPairs = 10;

/// One table of the relationship, with the columns that take part in it.
struct Side {
    std::string tableName;
    StoredTable* table = nullptr;
    std::vector<Column> columns;
    std::size_t realIndex = 0;

    [[nodiscard]] const std::shared_ptr<LoadedTable>& loaded() const { return table->loaded(); }
};

[[nodiscard]] Side sideOf(Catalogue& catalogue, const std::string& tableName, const std::vector<std::string>& columns)
{
    const std::optional<CatalogueEntry> entry = catalogue.find(object_id::kTables, tableName);
    if (!entry.has_value() || !entry->is(ObjectType::Table)) {
        throw Error(ErrorCode::NoSuchObject, "There is no table called \"" + tableName + "\"");
    }
    if (entry->isSystem()) {
        throw Error(ErrorCode::ReadOnly, "The table \"" + tableName + "\" is one of the system's own");
    }
    Side side{.tableName = entry->name, .table = &catalogue.tables().at(entry->definitionPage()), .columns = {}};
    for (const std::string& name : columns) {
        const Column* column = side.loaded()->definition.columnByName(name);
        if (column == nullptr) {
            throw Error(ErrorCode::NoSuchObject, "The table \"" + tableName + "\" has no column \"" + name + "\"");
        }
        side.columns.push_back(*column);
    }
    return side;
}

void requireFittingColumns(const Side& referencing, const Side& referenced)
{
    for (std::size_t i = 0; i < referencing.columns.size(); ++i) {
        const Column& from = referencing.columns[i];
        const Column& to = referenced.columns[i];
        if (from.type != to.type || (from.type == ColumnType::Numeric && from.scale != to.scale)) {
            throw Error(ErrorCode::InvalidArgument,
                        "The columns \"" + from.name + "\" and \"" + to.name + "\" are of different types");
        }
    }
}

/// A unique index on exactly the side's columns, in any order; the columns of both sides are put into its order.
void chooseReferencedIndex(Side& referenced, Side& referencing)
{
    const std::vector<TableIndex>& indexes = referenced.loaded()->indexes;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const std::vector<std::uint16_t>& numbers = indexes[i].encoder.columnNumbers();
        if (!indexes[i].unique || numbers.size() != referenced.columns.size()) {
            continue;
        }
        std::vector<Column> ordered;
        std::vector<Column> orderedReferencing;
        for (const std::uint16_t number : numbers) {
            const auto column = std::find_if(referenced.columns.begin(), referenced.columns.end(),
                                             [number](const Column& candidate) { return candidate.number == number; });
            if (column == referenced.columns.end()) {
                break;
            }
            ordered.push_back(*column);
            orderedReferencing.push_back(
                referencing.columns[static_cast<std::size_t>(column - referenced.columns.begin())]);
        }
        if (ordered.size() == numbers.size()) {
            referenced.columns = std::move(ordered);
            referencing.columns = std::move(orderedReferencing);
            referenced.realIndex = i;
            return;
        }
    }
    throw Error(ErrorCode::InvalidArgument,
                "The table \"" + referenced.tableName + "\" has no unique index on the columns that are referred to");
}

[[nodiscard]] std::optional<std::size_t> existingIndexOn(const Side& side, bool unique)
{
    const std::vector<TableIndex>& indexes = side.loaded()->indexes;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const std::vector<std::uint16_t>& numbers = indexes[i].encoder.columnNumbers();
        if ((indexes[i].unique || !unique) && !indexes[i].ignoresNulls &&
            std::equal(numbers.begin(), numbers.end(), side.columns.begin(), side.columns.end(),
                       [](std::uint16_t number, const Column& column) { return number == column.number; })) {
            return i;
        }
    }
    return std::nullopt;
}

/// Adds an empty index to the side's definition as it is stored.
[[nodiscard]] std::size_t addIndex(Pager& pager, const Side& side, bool unique)
{
    TableDefinition definition = side.loaded()->definition;
    if (definition.realIndexes.size() >= kMaximumIndexes) {
        throw Error(ErrorCode::InvalidArgument, "The table \"" + side.tableName + "\" has 32 indexes already");
    }
    RealIndex real;
    real.flags = static_cast<std::uint8_t>(RealIndex::kAlways | (unique ? RealIndex::kUnique : 0U));
    for (const Column& column : side.columns) {
        if (!canEncode(column)) {
            throw Error(ErrorCode::InvalidArgument, "The column \"" + column.name + "\" cannot be indexed");
        }
        real.columns.push_back({column.number, true});
    }
    real.pages = createUsageMaps(pager, 1).front();
    real.root = IndexTree::create(pager, side.table->page(), real.pages);
    definition.realIndexes.push_back(std::move(real));
    TableDefinitionStore(pager).save(side.table->page(), definition);
    side.table->forget();
    return definition.realIndexes.size() - 1;
}

void fillIndex(Pager& pager, const Side& side)
{
    const std::shared_ptr<LoadedTable> loaded = side.loaded();
    const TableIndex& index = loaded->indexes[side.realIndex];
    for (RowStore::Cursor cursor = loaded->rows.scan(); cursor.next();) {
        const RowView row(loaded->layout, cursor.row().bytes);
        const IndexKey key = index.keyOf(loaded->keyValues(pager, index, row));
        if (index.mustBeAlone(key) && index.tree.isTaken(key.bytes)) {
            throw Error(ErrorCode::DuplicateKey, "Two rows of the table \"" + side.tableName + "\" have the same key");
        }
        loaded->addEntry(side.realIndex, key, cursor.row().address);
    }
    TableDefinitionStore(pager).saveCounters(side.table->page(), loaded->definition);
}

void requireParents(Catalogue& catalogue, const Side& referencing, const Side& referenced)
{
    const std::shared_ptr<LoadedTable> loaded = referencing.loaded();
    const RelationshipEnd parent{
        .ownIndex = referencing.realIndex, .otherIndex = referenced.realIndex, .otherTable = referenced.table->page()};
    ForeignKeys foreignKeys(catalogue.tables());
    for (RowStore::Cursor cursor = loaded->rows.scan(); cursor.next();) {
        const RowView row(loaded->layout, cursor.row().bytes);
        RowValues values = loaded->keyValues(catalogue.pager(), loaded->indexes[parent.ownIndex], row);
        foreignKeys.requireParent(*referencing.table, parent, values);
    }
}

[[nodiscard]] bool hasLogicalIndex(const TableDefinition& definition, const std::string& name)
{
    return std::any_of(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                       [&name](const LogicalIndex& index) { return sameName(index.name, name); });
}

/// The referenced side is called .rB, .rC, ... by whichever letter is free.
[[nodiscard]] std::string freeSideName(const TableDefinition& definition)
{
    for (char letter = 'B'; letter <= 'Z'; ++letter) {
        const std::string name = std::string(".r") + letter;
        if (!hasLogicalIndex(definition, name)) {
            return name;
        }
    }
    for (unsigned number = 1;; ++number) {
        const std::string name = ".r" + std::to_string(number);
        if (!hasLogicalIndex(definition, name)) {
            return name;
        }
    }
}

[[nodiscard]] std::uint32_t freeIndexNumber(const TableDefinition& definition)
{
    std::uint32_t number = 0;
    for (const LogicalIndex& index : definition.logicalIndexes) {
        number = std::max(number, index.number + 1);
    }
    return number;
}

void addLogicalIndex(Pager& pager, const Side& side, LogicalIndex logical)
{
    TableDefinition definition = side.loaded()->definition;
    definition.logicalIndexes.push_back(std::move(logical));
    TableDefinitionStore(pager).save(side.table->page(), definition);
    side.table->forget();
}

void linkSides(Pager& pager, const Side& referencing, const Side& referenced, const Relationship& relationship)
{
    const std::uint32_t referencedNumber = freeIndexNumber(referenced.loaded()->definition);
    const std::uint32_t referencingNumber =
        freeIndexNumber(referencing.loaded()->definition) + (referencing.table == referenced.table ? 1U : 0U);
    if (hasLogicalIndex(referencing.loaded()->definition, relationship.name)) {
        throw Error(ErrorCode::ObjectExists, "The table \"" + referencing.tableName + "\" has an index called \"" +
                                                 relationship.name + "\" already");
    }
    LogicalIndex logical;
    logical.kind = LogicalIndex::Kind::ForeignKey;
    logical.cascadeUpdates = relationship.cascadeUpdates ? 1 : 0;
    logical.cascadeDeletes =
        static_cast<std::uint8_t>((relationship.cascadeDeletes ? 1U : 0U) | (relationship.setNullOnDelete ? 2U : 0U));

    logical.name = freeSideName(referenced.loaded()->definition);
    logical.number = referencedNumber;
    logical.realIndex = static_cast<std::uint32_t>(referenced.realIndex);
    logical.role = LogicalIndex::Role::Referenced;
    logical.otherIndexNumber = static_cast<std::int32_t>(referencingNumber);
    logical.otherTable = referencing.table->page();
    addLogicalIndex(pager, referenced, logical);

    logical.name = relationship.name;
    logical.number = referencingNumber;
    logical.realIndex = static_cast<std::uint32_t>(referencing.realIndex);
    logical.role = LogicalIndex::Role::Referencing;
    logical.otherIndexNumber = static_cast<std::int32_t>(referencedNumber);
    logical.otherTable = referenced.table->page();
    addLogicalIndex(pager, referencing, logical);
}

void enforce(Catalogue& catalogue, Side& referencing, Side& referenced, const Relationship& relationship)
{
    Pager& pager = catalogue.pager();
    chooseReferencedIndex(referenced, referencing);
    if (const std::optional<std::size_t> existing = existingIndexOn(referencing, relationship.oneToOne)) {
        referencing.realIndex = *existing;
    } else {
        referencing.realIndex = addIndex(pager, referencing, relationship.oneToOne);
        fillIndex(pager, referencing);
    }
    requireParents(catalogue, referencing, referenced);
    linkSides(pager, referencing, referenced, relationship);
}

} // namespace

void makeRelationship(Catalogue& catalogue, const Relationship& relationship)
{
    checkName(relationship.name, "a relationship");
    if (relationship.columns.empty() || relationship.columns.size() > kMaximumPairs) {
        throw Error(ErrorCode::InvalidArgument, "A relationship must have 1 to 10 pairs of columns");
    }
    if (relationship.cascadeDeletes && relationship.setNullOnDelete) {
        throw Error(ErrorCode::InvalidArgument, "A relationship cannot delete rows and set them to null");
    }
    std::vector<std::string> fromColumns;
    std::vector<std::string> toColumns;
    for (const Relationship::Pair& pair : relationship.columns) {
        fromColumns.push_back(pair.referencing);
        toColumns.push_back(pair.referenced);
    }
    Side referencing = sideOf(catalogue, relationship.referencingTable, fromColumns);
    Side referenced = sideOf(catalogue, relationship.referencedTable, toColumns);
    requireFittingColumns(referencing, referenced);

    ChangeScope scope(catalogue.tables());
    CatalogueWriter writer(catalogue);
    const CatalogueEntry entry{.id = writer.nextId(),
                               .parent = object_id::kRelationships,
                               .name = relationship.name,
                               .type = static_cast<std::int16_t>(ObjectType::Relationship)};
    writer.addUserObject(entry);
    if (relationship.enforced) {
        enforce(catalogue, referencing, referenced, relationship);
    }
    Relationship stored = relationship;
    stored.referencingTable = referencing.tableName;
    stored.referencedTable = referenced.tableName;
    for (std::size_t i = 0; i < stored.columns.size(); ++i) {
        stored.columns[i] = {referencing.columns[i].name, referenced.columns[i].name};
    }
    writer.addRelationshipRows(stored);
    scope.keep();
    catalogue.noteChange();
}

} // namespace jet
