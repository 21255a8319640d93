#include "jet/system_tables.h"

#include "jet/format/utf.h"

#include <initializer_list>

namespace jet {

namespace {

struct SystemColumn {
    const char* name;
    ColumnType type;
    std::uint16_t length = 0; ///< variable columns
    std::uint8_t extraFlags = 0;
};

struct SystemIndex {
    const char* name;
    std::initializer_list<std::uint16_t> columns;
    std::uint8_t flags;
    bool primary;
};

[[nodiscard]] std::uint16_t fixedLength(ColumnType type)
{
    switch (type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
        return 1;
    case ColumnType::Integer:
        return 2;
    case ColumnType::Long:
        return 4;
    case ColumnType::DateTime:
        return 8;
    default:
        return 0;
    }
}

[[nodiscard]] TableDefinition define(std::initializer_list<SystemColumn> columns,
                                     std::initializer_list<SystemIndex> indexes)
{
    TableDefinition definition;
    definition.kind = TableDefinition::kSystemTable;
    std::uint16_t offset = 0;
    for (const SystemColumn& described : columns) {
        Column column;
        column.name = described.name;
        column.type = described.type;
        column.number = definition.maximumColumns++;
        column.variableSlot = definition.maximumVariableColumns;
        column.flags = Column::kOrdinary | Column::kSystem | described.extraFlags;
        column.length = fixedLength(described.type);
        if (column.length != 0) {
            column.flags |= Column::kFixed;
            column.fixedOffset = offset;
            offset = static_cast<std::uint16_t>(
                offset + (described.type == ColumnType::Boolean ? 0 : column.length)); // a Boolean takes no room
        } else {
            column.length = described.length;
            ++definition.maximumVariableColumns;
        }
        definition.columns.push_back(std::move(column));
    }
    for (const SystemIndex& described : indexes) {
        RealIndex real;
        for (const std::uint16_t number : described.columns) {
            real.columns.push_back({number, true});
        }
        real.flags = described.flags;
        LogicalIndex logical;
        logical.name = described.name;
        logical.number = static_cast<std::uint32_t>(definition.realIndexes.size());
        logical.realIndex = logical.number;
        logical.kind = described.primary ? LogicalIndex::Kind::PrimaryKey : LogicalIndex::Kind::Ordinary;
        logical.cascadeUpdates = 4;
        logical.cascadeDeletes = 4;
        definition.realIndexes.push_back(std::move(real));
        definition.logicalIndexes.push_back(std::move(logical));
    }
    return definition;
}

constexpr std::uint16_t kNameLength = 510;
constexpr std::uint16_t kBinaryLength = 510;
constexpr std::uint8_t kUniqueFlags = RealIndex::kAlways | RealIndex::kUnique;

} // namespace

Value SystemRow::valueOf(std::uint16_t columnNumber) const
{
    const Column* column = definition_->columnByNumber(columnNumber);
    if (column == nullptr) {
        refuse();
    }
    return row_->value(*column);
}

std::string SystemRow::textOf(std::uint16_t columnNumber) const
{
    const Value value = valueOf(columnNumber);
    if (isNull(value)) {
        return {};
    }
    const std::u16string* text = std::get_if<std::u16string>(&value);
    if (text == nullptr) {
        refuse();
    }
    return toUtf8(*text);
}

void SystemRow::refuse() const
{
    throw Error(ErrorCode::Corrupt, row_->address().page, "A system table does not have the columns that it must have");
}

std::array<TableDefinition, 4> systemTableDefinitions()
{
    using enum ColumnType;
    return {
        define({{"Id", Long},
                {"ParentId", Long},
                {"Name", Text, kNameLength},
                {"Type", Integer},
                {"DateCreate", DateTime},
                {"DateUpdate", DateTime},
                {"Owner", Binary, kBinaryLength, Column::kScrambled},
                {"Flags", Long},
                {"Database", Memo},
                {"Connect", Memo},
                {"ForeignName", Text, kNameLength},
                {"RmtInfoShort", Binary, kBinaryLength},
                {"RmtInfoLong", Ole},
                {"Lv", Ole},
                {"LvProp", Ole},
                {"LvModule", Ole},
                {"LvExtra", Ole}},
               {{"ParentIdName", {1, 2}, kUniqueFlags, false}, {"Id", {0}, kUniqueFlags, true}}),
        define({{"ObjectId", Long},
                {"SID", Binary, kBinaryLength, Column::kScrambled},
                {"ACM", Long},
                {"FInheritable", Boolean}},
               {{"ObjectId", {0}, RealIndex::kAlways | RealIndex::kRequired, false}}),
        define({{"ObjectId", Long},
                {"Attribute", Byte},
                {"Order", Binary, kBinaryLength},
                {"Name1", Text, kNameLength},
                {"Name2", Text, kNameLength},
                {"Expression", Memo},
                {"Flag", Integer},
                {"LvExtra", Long}},
               {{"ObjectIdAttribute", {0, 1, 2}, kUniqueFlags, true}}),
        define({{"szRelationship", Text, kNameLength},
                {"grbit", Long},
                {"ccolumn", Long},
                {"icolumn", Long},
                {"szObject", Text, kNameLength},
                {"szColumn", Text, kNameLength},
                {"szReferencedObject", Text, kNameLength},
                {"szReferencedColumn", Text, kNameLength}},
               {{"szRelationship", {0}, RealIndex::kAlways | RealIndex::kIgnoreNulls, false},
                {"szObject", {4}, RealIndex::kAlways | RealIndex::kIgnoreNulls, false},
                {"szReferencedObject", {6}, RealIndex::kAlways | RealIndex::kIgnoreNulls, false}}),
    };
}

} // namespace jet
