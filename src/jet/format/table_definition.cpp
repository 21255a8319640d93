#include "jet/format/table_definition.h"

#include "jet/format/text_codec.h"
#include "jet/format/utf.h"

#include <algorithm>
#include <set>

namespace jet {
namespace {

constexpr std::uint32_t kColumnMark = 0x659;
constexpr std::uint32_t kIndexMark = 0x783;
constexpr std::uint16_t kEndOfLongValues = 0xFFFF;
constexpr std::uint16_t kNoKeyColumn = 0xFFFF;
constexpr std::uint32_t kDefaultSortOrder = 0x409;

constexpr std::size_t kMaximumColumns = 255;
constexpr std::size_t kMaximumKeyColumns = 10;

constexpr std::size_t kHeadSize = 63;
constexpr std::size_t kIndexHeadSize = 12;
constexpr std::size_t kColumnSize = 25;
constexpr std::size_t kIndexSize = 52;
constexpr std::size_t kLogicalIndexSize = 28;
constexpr std::size_t kLongValueSize = 10;

Bytes blockFrom(const std::vector<std::uint8_t>& preserved)
{
    Bytes block(preserved.size());
    std::transform(preserved.begin(), preserved.end(), block.begin(),
                   [](std::uint8_t byte) { return std::byte{byte}; });
    return block;
}

std::vector<std::uint8_t> preserve(ByteView block)
{
    std::vector<std::uint8_t> bytes(block.size());
    std::transform(block.begin(), block.end(), bytes.begin(),
                   [](std::byte byte) { return std::to_integer<std::uint8_t>(byte); });
    return bytes;
}

void append(Bytes& out, ByteView bytes)
{
    out.insert(out.end(), bytes.begin(), bytes.end());
}

// Takes parts off the front of the byte string.
class Reader
{
public:
    explicit Reader(ByteView bytes) : bytes_(bytes) {}

    ByteView take(std::size_t length)
    {
        const ByteView part = slice(bytes_, at_, length);
        at_ += length;
        return part;
    }
    std::uint16_t takeU16() { return getU16(take(2), 0); }
    std::string takeName() { return toUtf8(decodePlainText(take(takeU16()))); }
    [[nodiscard]] std::size_t left() const { return bytes_.size() - at_; }

private:
    ByteView bytes_;
    std::size_t at_ = 0;
};

void appendName(Bytes& out, const std::string& name)
{
    const Bytes text = encodePlainText(toUtf16(name));
    if (text.size() > 0xFFFF) {
        throw Error(ErrorCode::ValueTooLong, "A name is too long");
    }
    Bytes length(2);
    putU16(length, 0, static_cast<std::uint16_t>(text.size()));
    append(out, length);
    append(out, text);
}

// --- Column descriptors ---

bool hasSortOrder(ColumnType type)
{
    return type == ColumnType::Text || type == ColumnType::Memo;
}

Column decodeColumn(ByteView block)
{
    Column column;
    column.type = static_cast<ColumnType>(getU8(block, 0));
    column.number = getU16(block, 5);
    column.variableSlot = getU16(block, 7);
    column.ordinal = getU16(block, 9);
    if (hasSortOrder(column.type)) {
        column.sortOrder = SortOrder{.language = getU16(block, 11), .version = getU8(block, 14)};
    } else if (column.type == ColumnType::Numeric) {
        column.precision = getU8(block, 11);
        column.scale = getU8(block, 12);
    }
    column.flags = getU8(block, 15);
    column.extraFlags = getU8(block, 16);
    column.fixedOffset = getU16(block, 21);
    column.length = getU16(block, 23);
    column.preserved = preserve(block);
    return column;
}

void encodeColumn(Bytes& out, const Column& column)
{
    Bytes block = blockFrom(column.preserved);
    if (block.size() != kColumnSize) {
        block.assign(kColumnSize, std::byte{0});
        putU32(block, 1, kColumnMark);
        putU32(block, 11, column.type == ColumnType::Numeric ? 0 : kDefaultSortOrder);
    }
    putU8(block, 0, static_cast<std::uint8_t>(column.type));
    putU16(block, 5, column.number);
    putU16(block, 7, column.variableSlot);
    putU16(block, 9, column.ordinal);
    if (hasSortOrder(column.type)) {
        putU16(block, 11, column.sortOrder.language);
        putU8(block, 14, column.sortOrder.version);
    } else if (column.type == ColumnType::Numeric) {
        putU8(block, 11, column.precision);
        putU8(block, 12, column.scale);
    }
    putU8(block, 15, column.flags);
    putU8(block, 16, column.extraFlags);
    putU16(block, 21, column.fixedOffset);
    putU16(block, 23, column.length);
    append(out, block);
}

// --- Real indexes: a head near the start of the definition, and a block after the names of the columns ---

RealIndex decodeIndex(ByteView head, ByteView block)
{
    RealIndex index;
    index.distinctKeys = getU32(head, 4);
    for (std::size_t i = 0; i < kMaximumKeyColumns; ++i) {
        const std::uint16_t number = getU16(block, 4 + 3 * i);
        if (number != kNoKeyColumn) {
            index.columns.push_back(KeyColumn{.columnNumber = number, .ascending = getU8(block, 6 + 3 * i) == 1});
        }
    }
    index.pages = getRowPointer(block, 34);
    index.root = getU32(block, 38);
    index.flags = getU8(block, 46);
    index.preserved = preserve(head);
    const std::vector<std::uint8_t> second = preserve(block);
    index.preserved.insert(index.preserved.end(), second.begin(), second.end());
    return index;
}

void encodeIndex(MutableBytes head, Bytes& out, const RealIndex& index)
{
    if (index.columns.size() > kMaximumKeyColumns) {
        throw Error(ErrorCode::InvalidArgument, "An index has at most 10 columns");
    }
    Bytes block(kIndexSize);
    putU32(block, 0, kIndexMark);
    if (index.preserved.size() == kIndexHeadSize + kIndexSize) {
        const Bytes both = blockFrom(index.preserved);
        putBytes(head, 0, slice(ByteView(both), 0, kIndexHeadSize));
        putBytes(block, 0, slice(ByteView(both), kIndexHeadSize, kIndexSize));
    }
    putU32(head, 4, index.distinctKeys);
    for (std::size_t i = 0; i < kMaximumKeyColumns; ++i) {
        const std::size_t at = 4 + 3 * i;
        if (i < index.columns.size()) {
            putU16(block, at, index.columns[i].columnNumber);
            putU8(block, at + 2, index.columns[i].ascending ? 1 : 0);
        } else if (getU16(block, at) != kNoKeyColumn) { // else what stands beside it means nothing and is kept
            putU16(block, at, kNoKeyColumn);
            putU8(block, at + 2, 0);
        }
    }
    putRowPointer(block, 34, index.pages);
    putU32(block, 38, index.root);
    putU8(block, 46, index.flags);
    append(out, block);
}

// --- Logical indexes ---

LogicalIndex decodeLogicalIndex(ByteView block)
{
    LogicalIndex index;
    index.number = getU32(block, 4);
    index.realIndex = getU32(block, 8);
    index.role = static_cast<LogicalIndex::Role>(getU8(block, 12));
    index.otherIndexNumber = static_cast<std::int32_t>(getU32(block, 13));
    index.otherTable = getU32(block, 17);
    index.cascadeUpdates = getU8(block, 21);
    index.cascadeDeletes = getU8(block, 22);
    index.kind = static_cast<LogicalIndex::Kind>(getU8(block, 23));
    index.preserved = preserve(block);
    return index;
}

void encodeLogicalIndex(Bytes& out, const LogicalIndex& index)
{
    Bytes block = blockFrom(index.preserved);
    if (block.size() != kLogicalIndexSize) {
        block.assign(kLogicalIndexSize, std::byte{0});
        putU32(block, 0, kColumnMark);
    }
    putU32(block, 4, index.number);
    putU32(block, 8, index.realIndex);
    putU8(block, 12, static_cast<std::uint8_t>(index.role));
    putU32(block, 13, static_cast<std::uint32_t>(index.otherIndexNumber));
    putU32(block, 17, index.otherTable);
    putU8(block, 21, index.cascadeUpdates);
    putU8(block, 22, index.cascadeDeletes);
    putU8(block, 23, static_cast<std::uint8_t>(index.kind));
    append(out, block);
}

// --- The whole ---

[[noreturn]] void throwCorrupt(const std::string& message)
{
    throw Error(ErrorCode::Corrupt, message);
}

void checkColumns(const TableDefinition& definition)
{
    std::set<std::uint16_t> numbers;
    for (const Column& column : definition.columns) {
        if (!numbers.insert(column.number).second) {
            throwCorrupt("Two columns of a table have the number " + std::to_string(column.number));
        }
        if (column.number >= definition.maximumColumns) {
            throwCorrupt("Column " + column.name + " has a number that its table never gave out");
        }
        if (!column.isFixed() && column.variableSlot >= definition.maximumVariableColumns) {
            throwCorrupt("Column " + column.name + " has a slot that its table never gave out");
        }
        if (column.isFixed() && column.type != ColumnType::Boolean &&
            std::size_t{column.fixedOffset} + column.length > kPageSize) {
            throwCorrupt("Column " + column.name + " reaches past the end of a row");
        }
    }
}

/// Changing one of two columns that share bytes would change the other behind its indexes' back.
void checkFixedParts(const TableDefinition& definition)
{
    std::vector<const Column*> fixed;
    for (const Column& column : definition.columns) {
        if (column.isFixed() && column.type != ColumnType::Boolean) {
            fixed.push_back(&column);
        }
    }
    std::sort(fixed.begin(), fixed.end(),
              [](const Column* a, const Column* b) { return a->fixedOffset < b->fixedOffset; });
    for (std::size_t i = 1; i < fixed.size(); ++i) {
        if (fixed[i - 1]->fixedOffset + fixed[i - 1]->length > fixed[i]->fixedOffset) {
            throwCorrupt("The columns " + fixed[i - 1]->name + " and " + fixed[i]->name + " share bytes of a row");
        }
    }
}

void checkIndexes(const TableDefinition& definition)
{
    for (const RealIndex& index : definition.realIndexes) {
        if (index.columns.empty()) {
            throwCorrupt("An index has no columns");
        }
        for (const KeyColumn& key : index.columns) {
            if (definition.columnByNumber(key.columnNumber) == nullptr) {
                throwCorrupt("An index names a column that its table does not have");
            }
        }
    }
    for (const LogicalIndex& index : definition.logicalIndexes) {
        if (index.realIndex >= definition.realIndexes.size()) {
            throwCorrupt("Index " + index.name + " stands for one that is not there");
        }
    }
}

bool sameName(const std::string& left, const std::string& right)
{
    const auto lower = [](char letter) { return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

} // namespace

const Column* TableDefinition::columnByNumber(std::uint16_t number) const
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [number](const Column& column) { return column.number == number; });
    return found == columns.end() ? nullptr : &*found;
}

const Column* TableDefinition::columnByName(const std::string& name) const
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&name](const Column& column) { return sameName(column.name, name); });
    return found == columns.end() ? nullptr : &*found;
}

std::vector<const Column*> TableDefinition::displayOrder() const
{
    std::vector<const Column*> order;
    order.reserve(columns.size());
    for (const Column& column : columns) {
        order.push_back(&column);
    }
    std::sort(order.begin(), order.end(), [](const Column* left, const Column* right) {
        return left->ordinal != right->ordinal ? left->ordinal < right->ordinal : left->number < right->number;
    });
    return order;
}

TableDefinition decodeTableDefinition(ByteView bytes)
{
    const std::uint32_t length = getU32(bytes, 8);
    Reader reader(slice(bytes, 0, length));
    const ByteView head = reader.take(kHeadSize);

    TableDefinition definition;
    definition.rowCount = getU32(head, 16);
    definition.lastAutoNumber = static_cast<std::int32_t>(getU32(head, 20));
    definition.kind = getU8(head, 40);
    definition.maximumColumns = getU16(head, 41);
    definition.maximumVariableColumns = getU16(head, 43);
    const std::size_t columnCount = getU16(head, 45);
    const std::size_t logicalCount = getU32(head, 47);
    const std::size_t realCount = getU32(head, 51);
    definition.ownedPages = getRowPointer(head, 55);
    definition.pagesWithSpace = getRowPointer(head, 59);
    definition.preserved = preserve(head);
    if (columnCount > kMaximumColumns) {
        throwCorrupt("A table has " + std::to_string(columnCount) + " columns");
    }
    // Before anything is made of that size.
    if (realCount > reader.left() / (kIndexHeadSize + kIndexSize) || logicalCount > reader.left() / kLogicalIndexSize) {
        throwCorrupt("A table names more indexes than its definition can hold");
    }

    const ByteView indexHeads = reader.take(kIndexHeadSize * realCount);
    for (std::size_t i = 0; i < columnCount; ++i) {
        definition.columns.push_back(decodeColumn(reader.take(kColumnSize)));
    }
    for (Column& column : definition.columns) {
        column.name = reader.takeName();
    }
    for (std::size_t i = 0; i < realCount; ++i) {
        definition.realIndexes.push_back(
            decodeIndex(slice(indexHeads, kIndexHeadSize * i, kIndexHeadSize), reader.take(kIndexSize)));
    }
    for (std::size_t i = 0; i < logicalCount; ++i) {
        definition.logicalIndexes.push_back(decodeLogicalIndex(reader.take(kLogicalIndexSize)));
    }
    for (LogicalIndex& index : definition.logicalIndexes) {
        index.name = reader.takeName();
    }
    for (std::uint16_t number = reader.takeU16(); number != kEndOfLongValues; number = reader.takeU16()) {
        const ByteView maps = reader.take(kLongValueSize - 2);
        definition.longValues.push_back(LongValueMaps{
            .columnNumber = number, .owned = getRowPointer(maps, 0), .withSpace = getRowPointer(maps, 4)});
    }
    if (reader.left() != 0) {
        throwCorrupt("A table's definition goes on past its end");
    }
    checkColumns(definition);
    checkFixedParts(definition);
    checkIndexes(definition);
    return definition;
}

Bytes encodeTableDefinition(const TableDefinition& definition)
{
    if (definition.columns.size() > kMaximumColumns) {
        throw Error(ErrorCode::InvalidArgument, "A table has at most 255 columns");
    }
    Bytes bytes = blockFrom(definition.preserved);
    if (bytes.size() != kHeadSize) {
        bytes.assign(kHeadSize, std::byte{0});
        putU32(bytes, 12, kColumnMark);
        putU8(bytes, 24, 1);
    }
    putU32(bytes, 16, definition.rowCount);
    putU32(bytes, 20, static_cast<std::uint32_t>(definition.lastAutoNumber));
    putU8(bytes, 40, definition.kind);
    putU16(bytes, 41, definition.maximumColumns);
    putU16(bytes, 43, definition.maximumVariableColumns);
    putU16(bytes, 45, static_cast<std::uint16_t>(definition.columns.size()));
    putU32(bytes, 47, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
    putU32(bytes, 51, static_cast<std::uint32_t>(definition.realIndexes.size()));
    putRowPointer(bytes, 55, definition.ownedPages);
    putRowPointer(bytes, 59, definition.pagesWithSpace);

    bytes.resize(kHeadSize + kIndexHeadSize * definition.realIndexes.size());
    for (const Column& column : definition.columns) {
        encodeColumn(bytes, column);
    }
    for (const Column& column : definition.columns) {
        appendName(bytes, column.name);
    }
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
        std::array<std::byte, kIndexHeadSize> head{};
        encodeIndex(head, bytes, definition.realIndexes[i]);
        putBytes(bytes, kHeadSize + kIndexHeadSize * i, head);
    }
    for (const LogicalIndex& index : definition.logicalIndexes) {
        encodeLogicalIndex(bytes, index);
    }
    for (const LogicalIndex& index : definition.logicalIndexes) {
        appendName(bytes, index.name);
    }
    for (const LongValueMaps& maps : definition.longValues) {
        std::array<std::byte, kLongValueSize> entry{};
        putU16(entry, 0, maps.columnNumber);
        putRowPointer(entry, 2, maps.owned);
        putRowPointer(entry, 6, maps.withSpace);
        append(bytes, entry);
    }
    append(bytes, std::array{std::byte{0xFF}, std::byte{0xFF}});
    putU32(bytes, 8, static_cast<std::uint32_t>(bytes.size()));
    std::fill_n(bytes.begin(), 8, std::byte{0});
    return bytes;
}

} // namespace jet
