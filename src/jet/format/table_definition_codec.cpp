#include "jet/format/table_definition_codec.h"

#include "jet/format/text_codec.h"
#include "jet/format/utf.h"

#include <algorithm>
#include <array>

namespace jet {
namespace {

// Offsets and sizes in bytes.

namespace head_block {
constexpr std::size_t kLength = kDefinitionPageHeader;
constexpr std::size_t kMark = 12;
constexpr std::size_t kRowCount = 16;
constexpr std::size_t kLastAutoNumber = 20;
constexpr std::size_t kOne = 24;
constexpr std::size_t kKind = 40;
constexpr std::size_t kMaximumColumns = 41;
constexpr std::size_t kMaximumVariableColumns = 43;
constexpr std::size_t kColumns = 45;
constexpr std::size_t kLogicalIndexes = 47;
constexpr std::size_t kRealIndexes = 51;
constexpr std::size_t kOwnedPages = 55;
constexpr std::size_t kPagesWithSpace = 59;
constexpr std::size_t kSize = 63;
} // namespace head_block

namespace column_block {
constexpr std::size_t kType = 0;
constexpr std::size_t kMark = 1;
constexpr std::size_t kNumber = 5;
constexpr std::size_t kVariableSlot = 7;
constexpr std::size_t kOrdinal = 9;
constexpr std::size_t kLanguage = 11; // texts
constexpr std::size_t kVersion = 14;
constexpr std::size_t kPrecision = 11; // Numeric
constexpr std::size_t kScale = 12;
constexpr std::size_t kFlags = 15;
constexpr std::size_t kExtraFlags = 16;
constexpr std::size_t kFixedOffset = 21;
constexpr std::size_t kLength = 23;
constexpr std::size_t kSize = 25;
} // namespace column_block

namespace index_head {
constexpr std::size_t kDistinctKeys = 4;
constexpr std::size_t kSize = 12;
} // namespace index_head

namespace index_block {
constexpr std::size_t kMark = 0;
constexpr std::size_t kKeyColumns = 4;
constexpr std::size_t kKeyColumnSize = 3;
constexpr std::size_t kKeyColumnOrder = 2; // in a key column
constexpr std::size_t kPages = 34;
constexpr std::size_t kRoot = 38;
constexpr std::size_t kFlags = 46;
constexpr std::size_t kSize = 52;
} // namespace index_block

namespace logical_block {
constexpr std::size_t kMark = 0;
constexpr std::size_t kNumber = 4;
constexpr std::size_t kRealIndex = 8;
constexpr std::size_t kRole = 12;
constexpr std::size_t kOtherIndexNumber = 13;
constexpr std::size_t kOtherTable = 17;
constexpr std::size_t kCascadeUpdates = 21;
constexpr std::size_t kCascadeDeletes = 22;
constexpr std::size_t kKind = 23;
constexpr std::size_t kSize = 28;
} // namespace logical_block

namespace long_value_block {
constexpr std::size_t kColumn = 0;
constexpr std::size_t kOwned = 2;
constexpr std::size_t kWithSpace = 6;
constexpr std::size_t kSize = 10;
} // namespace long_value_block

constexpr std::uint32_t kColumnMark = 0x659; // also of the head and of logical indexes
constexpr std::uint32_t kIndexMark = 0x783;
constexpr std::uint16_t kEndOfLongValues = 0xFFFF;
constexpr std::uint16_t kNoKeyColumn = 0xFFFF;
constexpr std::uint32_t kUsualSortOrder = 0x409; // what Access leaves where a column has no sort order

Bytes copyOf(ByteView block)
{
    return {block.begin(), block.end()};
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

void appendU16(Bytes& out, std::uint16_t number)
{
    out.resize(out.size() + 2);
    putU16(out, out.size() - 2, number);
}

void appendName(Bytes& out, const std::string& name)
{
    const Bytes text = encodePlainText(toUtf16(name));
    if (text.size() > 0xFFFF) {
        throw Error(ErrorCode::ValueTooLong, "A name is too long");
    }
    appendU16(out, static_cast<std::uint16_t>(text.size()));
    append(out, text);
}

// --- Column descriptors ---

Column decodeColumn(ByteView block)
{
    Column column;
    column.type = static_cast<ColumnType>(getU8(block, column_block::kType));
    column.number = getU16(block, column_block::kNumber);
    column.variableSlot = getU16(block, column_block::kVariableSlot);
    column.ordinal = getU16(block, column_block::kOrdinal);
    if (column.isText()) {
        column.sortOrder = SortOrder{.language = getU16(block, column_block::kLanguage),
                                     .version = getU8(block, column_block::kVersion)};
    } else if (column.type == ColumnType::Numeric) {
        column.precision = getU8(block, column_block::kPrecision);
        column.scale = getU8(block, column_block::kScale);
    }
    column.flags = getU8(block, column_block::kFlags);
    column.extraFlags = getU8(block, column_block::kExtraFlags);
    column.fixedOffset = getU16(block, column_block::kFixedOffset);
    column.length = getU16(block, column_block::kLength);
    column.preserved = copyOf(block);
    return column;
}

void encodeColumn(Bytes& out, const Column& column)
{
    Bytes block = column.preserved;
    if (block.size() != column_block::kSize) {
        block.assign(column_block::kSize, std::byte{0});
        putU32(block, column_block::kMark, kColumnMark);
        putU32(block, column_block::kLanguage, column.type == ColumnType::Numeric ? 0 : kUsualSortOrder);
    }
    putU8(block, column_block::kType, static_cast<std::uint8_t>(column.type));
    putU16(block, column_block::kNumber, column.number);
    putU16(block, column_block::kVariableSlot, column.variableSlot);
    putU16(block, column_block::kOrdinal, column.ordinal);
    if (column.isText()) {
        putU16(block, column_block::kLanguage, column.sortOrder.language);
        putU8(block, column_block::kVersion, column.sortOrder.version);
    } else if (column.type == ColumnType::Numeric) {
        putU8(block, column_block::kPrecision, column.precision);
        putU8(block, column_block::kScale, column.scale);
    }
    putU8(block, column_block::kFlags, column.flags);
    putU8(block, column_block::kExtraFlags, column.extraFlags);
    putU16(block, column_block::kFixedOffset, column.fixedOffset);
    putU16(block, column_block::kLength, column.length);
    append(out, block);
}

// --- Real indexes: a head near the start of the definition, and a block after the names of the columns ---

RealIndex decodeIndex(ByteView head, ByteView block)
{
    RealIndex index;
    index.distinctKeys = getU32(head, index_head::kDistinctKeys);
    for (std::size_t i = 0; i < kMaximumKeyColumns; ++i) {
        const std::size_t at = index_block::kKeyColumns + index_block::kKeyColumnSize * i;
        const std::uint16_t number = getU16(block, at);
        if (number != kNoKeyColumn) {
            index.columns.push_back(
                KeyColumn{.columnNumber = number, .ascending = getU8(block, at + index_block::kKeyColumnOrder) == 1});
        }
    }
    index.pages = getRowPointer(block, index_block::kPages);
    index.root = getU32(block, index_block::kRoot);
    index.flags = getU8(block, index_block::kFlags);
    index.preserved = copyOf(head);
    append(index.preserved, block);
    return index;
}

void encodeIndex(MutableBytes head, Bytes& out, const RealIndex& index)
{
    if (index.columns.size() > kMaximumKeyColumns) {
        throw Error(ErrorCode::InvalidArgument, "An index has at most 10 columns");
    }
    Bytes block(index_block::kSize);
    putU32(block, index_block::kMark, kIndexMark);
    if (index.preserved.size() == index_head::kSize + index_block::kSize) {
        const ByteView both = index.preserved;
        putBytes(head, 0, both.first(index_head::kSize));
        putBytes(block, 0, both.last(index_block::kSize));
    }
    putU32(head, index_head::kDistinctKeys, index.distinctKeys);
    for (std::size_t i = 0; i < kMaximumKeyColumns; ++i) {
        const std::size_t at = index_block::kKeyColumns + index_block::kKeyColumnSize * i;
        if (i < index.columns.size()) {
            putU16(block, at, index.columns[i].columnNumber);
            putU8(block, at + index_block::kKeyColumnOrder, index.columns[i].ascending ? 1 : 0);
        } else if (getU16(block, at) != kNoKeyColumn) { // else what stands beside it means nothing and is kept
            putU16(block, at, kNoKeyColumn);
            putU8(block, at + index_block::kKeyColumnOrder, 0);
        }
    }
    putRowPointer(block, index_block::kPages, index.pages);
    putU32(block, index_block::kRoot, index.root);
    putU8(block, index_block::kFlags, index.flags);
    append(out, block);
}

// --- Logical indexes ---

LogicalIndex decodeLogicalIndex(ByteView block)
{
    LogicalIndex index;
    index.number = getU32(block, logical_block::kNumber);
    index.realIndex = getU32(block, logical_block::kRealIndex);
    index.role = static_cast<LogicalIndex::Role>(getU8(block, logical_block::kRole));
    index.otherIndexNumber = static_cast<std::int32_t>(getU32(block, logical_block::kOtherIndexNumber));
    index.otherTable = getU32(block, logical_block::kOtherTable);
    index.cascadeUpdates = getU8(block, logical_block::kCascadeUpdates);
    index.cascadeDeletes = getU8(block, logical_block::kCascadeDeletes);
    index.kind = static_cast<LogicalIndex::Kind>(getU8(block, logical_block::kKind));
    index.preserved = copyOf(block);
    return index;
}

void encodeLogicalIndex(Bytes& out, const LogicalIndex& index)
{
    Bytes block = index.preserved;
    if (block.size() != logical_block::kSize) {
        block.assign(logical_block::kSize, std::byte{0});
        putU32(block, logical_block::kMark, kColumnMark);
    }
    putU32(block, logical_block::kNumber, index.number);
    putU32(block, logical_block::kRealIndex, index.realIndex);
    putU8(block, logical_block::kRole, static_cast<std::uint8_t>(index.role));
    putU32(block, logical_block::kOtherIndexNumber, static_cast<std::uint32_t>(index.otherIndexNumber));
    putU32(block, logical_block::kOtherTable, index.otherTable);
    putU8(block, logical_block::kCascadeUpdates, index.cascadeUpdates);
    putU8(block, logical_block::kCascadeDeletes, index.cascadeDeletes);
    putU8(block, logical_block::kKind, static_cast<std::uint8_t>(index.kind));
    append(out, block);
}

// --- Maps of long values, up to an end mark ---

std::vector<LongValueMaps> takeLongValues(Reader& reader)
{
    std::vector<LongValueMaps> all;
    for (std::uint16_t number = reader.takeU16(); number != kEndOfLongValues; number = reader.takeU16()) {
        const ByteView pointers = reader.take(2 * kRowPointerSize);
        all.push_back(LongValueMaps{.columnNumber = number,
                                    .owned = getRowPointer(pointers, 0),
                                    .withSpace = getRowPointer(pointers, kRowPointerSize)});
    }
    return all;
}

void encodeLongValueMaps(Bytes& out, const LongValueMaps& maps)
{
    std::array<std::byte, long_value_block::kSize> block{};
    putU16(block, long_value_block::kColumn, maps.columnNumber);
    putRowPointer(block, long_value_block::kOwned, maps.owned);
    putRowPointer(block, long_value_block::kWithSpace, maps.withSpace);
    append(out, block);
}

} // namespace

TableDefinition decodeTableDefinition(ByteView bytes)
{
    const std::uint32_t length = getU32(bytes, head_block::kLength);
    Reader reader(slice(bytes, 0, length));
    const ByteView head = reader.take(head_block::kSize);

    TableDefinition definition;
    definition.rowCount = getU32(head, head_block::kRowCount);
    definition.lastAutoNumber = static_cast<std::int32_t>(getU32(head, head_block::kLastAutoNumber));
    definition.kind = getU8(head, head_block::kKind);
    definition.maximumColumns = getU16(head, head_block::kMaximumColumns);
    definition.maximumVariableColumns = getU16(head, head_block::kMaximumVariableColumns);
    const std::size_t columnCount = getU16(head, head_block::kColumns);
    const std::size_t logicalCount = getU32(head, head_block::kLogicalIndexes);
    const std::size_t realCount = getU32(head, head_block::kRealIndexes);
    definition.ownedPages = getRowPointer(head, head_block::kOwnedPages);
    definition.pagesWithSpace = getRowPointer(head, head_block::kPagesWithSpace);
    definition.preserved = copyOf(head);
    if (columnCount > kMaximumColumns) {
        throw Error(ErrorCode::Corrupt, "A table has " + std::to_string(columnCount) + " columns");
    }
    // Before anything is made of that size.
    if (realCount > reader.left() / (index_head::kSize + index_block::kSize) ||
        logicalCount > reader.left() / logical_block::kSize) {
        throw Error(ErrorCode::Corrupt, "A table names more indexes than its definition can hold");
    }

    const ByteView indexHeads = reader.take(index_head::kSize * realCount);
    for (std::size_t i = 0; i < columnCount; ++i) {
        definition.columns.push_back(decodeColumn(reader.take(column_block::kSize)));
    }
    for (Column& column : definition.columns) {
        column.name = reader.takeName();
    }
    for (std::size_t i = 0; i < realCount; ++i) {
        definition.realIndexes.push_back(
            decodeIndex(slice(indexHeads, index_head::kSize * i, index_head::kSize), reader.take(index_block::kSize)));
    }
    for (std::size_t i = 0; i < logicalCount; ++i) {
        definition.logicalIndexes.push_back(decodeLogicalIndex(reader.take(logical_block::kSize)));
    }
    for (LogicalIndex& index : definition.logicalIndexes) {
        index.name = reader.takeName();
    }
    definition.longValues = takeLongValues(reader);
    if (reader.left() != 0) {
        throw Error(ErrorCode::Corrupt, "A table's definition goes on past its end");
    }
    definition.validate();
    return definition;
}

Bytes encodeTableDefinition(const TableDefinition& definition)
{
    if (definition.columns.size() > kMaximumColumns) {
        throw Error(ErrorCode::InvalidArgument, "A table has at most 255 columns");
    }
    Bytes bytes = definition.preserved;
    if (bytes.size() != head_block::kSize) {
        bytes.assign(head_block::kSize, std::byte{0});
        putU32(bytes, head_block::kMark, kColumnMark);
        putU8(bytes, head_block::kOne, 1);
    }
    putU32(bytes, head_block::kRowCount, definition.rowCount);
    putU32(bytes, head_block::kLastAutoNumber, static_cast<std::uint32_t>(definition.lastAutoNumber));
    putU8(bytes, head_block::kKind, definition.kind);
    putU16(bytes, head_block::kMaximumColumns, definition.maximumColumns);
    putU16(bytes, head_block::kMaximumVariableColumns, definition.maximumVariableColumns);
    putU16(bytes, head_block::kColumns, static_cast<std::uint16_t>(definition.columns.size()));
    putU32(bytes, head_block::kLogicalIndexes, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
    putU32(bytes, head_block::kRealIndexes, static_cast<std::uint32_t>(definition.realIndexes.size()));
    putRowPointer(bytes, head_block::kOwnedPages, definition.ownedPages);
    putRowPointer(bytes, head_block::kPagesWithSpace, definition.pagesWithSpace);

    bytes.resize(head_block::kSize + index_head::kSize * definition.realIndexes.size());
    for (const Column& column : definition.columns) {
        encodeColumn(bytes, column);
    }
    for (const Column& column : definition.columns) {
        appendName(bytes, column.name);
    }
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
        std::array<std::byte, index_head::kSize> head{};
        encodeIndex(head, bytes, definition.realIndexes[i]);
        putBytes(bytes, head_block::kSize + index_head::kSize * i, head);
    }
    for (const LogicalIndex& index : definition.logicalIndexes) {
        encodeLogicalIndex(bytes, index);
    }
    for (const LogicalIndex& index : definition.logicalIndexes) {
        appendName(bytes, index.name);
    }
    for (const LongValueMaps& maps : definition.longValues) {
        encodeLongValueMaps(bytes, maps);
    }
    appendU16(bytes, kEndOfLongValues);
    putU32(bytes, head_block::kLength, static_cast<std::uint32_t>(bytes.size()));
    std::fill_n(bytes.begin(), kDefinitionPageHeader, std::byte{0});
    return bytes;
}

std::size_t tableDefinitionLength(ByteView firstPage)
{
    return getU32(firstPage, head_block::kLength);
}

void putTableCounters(MutableBytes firstPage, const TableDefinition& definition)
{
    if (getU32(firstPage, head_block::kRealIndexes) != definition.realIndexes.size()) {
        throw Error(ErrorCode::InvalidArgument, "The counters are not of the definition that is stored");
    }
    putU32(firstPage, head_block::kRowCount, definition.rowCount);
    putU32(firstPage, head_block::kLastAutoNumber, static_cast<std::uint32_t>(definition.lastAutoNumber));
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
        putU32(firstPage, head_block::kSize + index_head::kSize * i + index_head::kDistinctKeys,
               definition.realIndexes[i].distinctKeys);
    }
}

} // namespace jet
