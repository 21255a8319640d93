#include "jet/new_table.h"

#include "jet/format/index_key.h"
#include "jet/format/row_codec.h"
#include "jet/names.h"
#include "jet/store/index_tree.h"
#include "jet/store/table_definition_store.h"
#include "jet/store/usage_map.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::uint16_t kLongestText = 255;
constexpr std::uint16_t kLongestBinary = 510;
constexpr std::uint8_t kMostDigits = 28;

[[noreturn]] void refuse(const std::string& why)
{
    throw Error(ErrorCode::InvalidArgument, why);
}

template <typename Named>
void checkNames(const std::vector<Named>& items, const std::string& what)
{
    for (auto item = items.begin(); item != items.end(); ++item) {
        checkName(item->name, what);
        if (std::any_of(items.begin(), item,
                        [item](const Named& earlier) { return sameName(earlier.name, item->name); })) {
            throw Error(ErrorCode::ObjectExists, "The name \"" + item->name + "\" is given to " + what + " twice");
        }
    }
}

/// The stored length in bytes; 0 for long values.
[[nodiscard]] std::uint16_t lengthOf(const ColumnSpec& spec)
{
    switch (spec.type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
        return 1;
    case ColumnType::Integer:
        return 2;
    case ColumnType::Long:
    case ColumnType::Single:
        return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::DateTime:
        return 8;
    case ColumnType::Guid:
        return 16;
    case ColumnType::Numeric:
        if (spec.precision < 1 || spec.precision > kMostDigits || spec.scale > spec.precision) {
            refuse("The column \"" + spec.name + "\" has digits that do not fit a decimal number");
        }
        return 17;
    case ColumnType::Text:
        if (spec.characters < 1 || spec.characters > kLongestText) {
            refuse("The column \"" + spec.name + "\" must have room for 1 to 255 characters");
        }
        return static_cast<std::uint16_t>(2 * spec.characters);
    case ColumnType::Binary:
        if (spec.characters < 1 || spec.characters > kLongestBinary) {
            refuse("The column \"" + spec.name + "\" must have room for 1 to 510 bytes");
        }
        return spec.characters;
    case ColumnType::Memo:
    case ColumnType::Ole:
        return 0;
    case ColumnType::Block:
        break;
    }
    refuse("The column \"" + spec.name + "\" has a type that cannot be made");
}

[[nodiscard]] bool isVariable(ColumnType type)
{
    return type == ColumnType::Text || type == ColumnType::Binary || type == ColumnType::Memo ||
           type == ColumnType::Ole;
}

void addColumn(TableDefinition& definition, const ColumnSpec& spec, std::size_t& fixedLength)
{
    Column column;
    column.name = spec.name;
    column.type = spec.type;
    column.length = lengthOf(spec);
    column.number = definition.maximumColumns++;
    column.ordinal = column.number;
    column.variableSlot = definition.maximumVariableColumns;
    column.flags = Column::kOrdinary;
    if (isVariable(spec.type)) {
        ++definition.maximumVariableColumns;
    } else {
        column.flags |= Column::kFixed;
        column.fixedOffset = static_cast<std::uint16_t>(fixedLength);
        fixedLength += spec.type == ColumnType::Boolean ? 0U : column.length; // a Boolean is a bit of the null mask
    }
    if (spec.autoNumber) {
        if (spec.type != ColumnType::Long) {
            refuse("The column \"" + spec.name + "\" cannot count by itself: only whole numbers of 32 bits can");
        }
        column.flags |= Column::kAutoNumber;
    }
    if (column.isText() && spec.compressible) {
        column.extraFlags = Column::kCompressible;
    }
    if (spec.type == ColumnType::Numeric) {
        column.precision = spec.precision;
        column.scale = spec.scale;
    }
    if (column.isLongValue()) {
        definition.longValues.push_back({.columnNumber = column.number, .owned = {}, .withSpace = {}});
    }
    definition.columns.push_back(std::move(column));
}

[[nodiscard]] std::uint8_t flagsOf(const IndexSpec& spec)
{
    std::uint8_t flags = RealIndex::kAlways;
    if (spec.primaryKey || spec.unique) {
        flags |= RealIndex::kUnique;
    }
    if (spec.ignoreNulls) {
        flags |= RealIndex::kIgnoreNulls;
    }
    if (spec.primaryKey || spec.required) {
        flags |= RealIndex::kRequired;
    }
    return flags;
}

void addIndex(TableDefinition& definition, const IndexSpec& spec)
{
    if (spec.keys.empty() || spec.keys.size() > kMaximumKeyColumns) {
        refuse("The index \"" + spec.name + "\" must have 1 to 10 columns");
    }
    RealIndex real;
    real.flags = flagsOf(spec);
    for (const IndexSpec::Key& key : spec.keys) {
        const Column* column = definition.columnByName(key.column);
        if (column == nullptr) {
            throw Error(ErrorCode::NoSuchObject,
                        "The index \"" + spec.name + "\" has a column that is not there: \"" + key.column + "\"");
        }
        if (!canEncode(*column)) {
            refuse("The column \"" + key.column + "\" is of a type that cannot be indexed");
        }
        if (std::any_of(real.columns.begin(), real.columns.end(),
                        [column](const KeyColumn& earlier) { return earlier.columnNumber == column->number; })) {
            refuse("The index \"" + spec.name + "\" has the column \"" + key.column + "\" twice");
        }
        real.columns.push_back({column->number, key.ascending});
    }
    LogicalIndex logical;
    logical.name = spec.name;
    logical.number = static_cast<std::uint32_t>(definition.logicalIndexes.size());
    logical.realIndex = static_cast<std::uint32_t>(definition.realIndexes.size());
    logical.kind = spec.primaryKey ? LogicalIndex::Kind::PrimaryKey : LogicalIndex::Kind::Ordinary;
    definition.realIndexes.push_back(std::move(real));
    definition.logicalIndexes.push_back(std::move(logical));
}

/// How many usage maps a table has.
[[nodiscard]] std::size_t mapsNeededBy(const TableDefinition& definition)
{
    return 2 + 2 * definition.longValues.size() + definition.realIndexes.size();
}

/// Gives the definition at that page its maps and an empty root for each index.
void attachMaps(Pager& pager, PageNumber page, TableDefinition& definition, std::span<const RowPointer> maps)
{
    auto map = maps.begin();
    definition.ownedPages = *map++;
    definition.pagesWithSpace = *map++;
    for (LongValueMaps& column : definition.longValues) {
        column.owned = *map++;
        column.withSpace = *map++;
    }
    for (RealIndex& index : definition.realIndexes) {
        index.pages = *map++;
        index.root = IndexTree::create(pager, page, index.pages);
    }
}

} // namespace

TableDefinition definitionOf(const TableSpec& spec)
{
    checkName(spec.name, "a table");
    checkNames(spec.columns, "a column");
    checkNames(spec.indexes, "an index");
    if (spec.columns.empty() || spec.columns.size() > kMaximumColumns) {
        refuse("A table must have 1 to 255 columns");
    }
    if (spec.indexes.size() > kMaximumIndexes) {
        refuse("A table may have at most 32 indexes");
    }
    if (std::count_if(spec.indexes.begin(), spec.indexes.end(),
                      [](const IndexSpec& index) { return index.primaryKey; }) > 1) {
        refuse("A table may have only one primary key");
    }
    if (std::count_if(spec.columns.begin(), spec.columns.end(),
                      [](const ColumnSpec& column) { return column.autoNumber; }) > 1) {
        refuse("A table may have only one auto-number");
    }
    TableDefinition definition;
    std::size_t fixedLength = 0;
    for (const ColumnSpec& column : spec.columns) {
        addColumn(definition, column, fixedLength);
    }
    for (const IndexSpec& index : spec.indexes) {
        addIndex(definition, index);
    }
    if (fixedLength > kMaximumRowSize) {
        refuse("The columns of the table \"" + spec.name + "\" do not fit into a row");
    }
    static_cast<void>(RowBuilder(definition).encode());
    return definition;
}

PageNumber storeNewTable(Pager& pager, TableDefinition definition)
{
    return storeNewTables(pager, {&definition, 1}).front();
}

std::vector<PageNumber> storeNewTables(Pager& pager, std::span<TableDefinition> definitions)
{
    TableDefinitionStore store(pager);
    std::vector<PageNumber> pages;
    std::size_t mapCount = 0;
    for (const TableDefinition& definition : definitions) {
        pages.push_back(store.create(definition));
        mapCount += mapsNeededBy(definition);
    }
    const std::vector<RowPointer> maps = createUsageMaps(pager, mapCount);
    std::span<const RowPointer> rest(maps);
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        const std::size_t count = mapsNeededBy(definitions[i]);
        attachMaps(pager, pages[i], definitions[i], rest.first(count));
        store.save(pages[i], definitions[i]);
        rest = rest.subspan(count);
    }
    return pages;
}

} // namespace jet
