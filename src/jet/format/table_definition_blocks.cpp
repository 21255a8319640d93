#include "jet/format/table_definition_blocks.h"

#include <array>

namespace jet {
namespace {

// Offsets in bytes.

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
} // namespace column_block

namespace index_block {
constexpr std::size_t kMark = 0;
constexpr std::size_t kKeyColumns = 4;
constexpr std::size_t kKeyColumnSize = 3;
constexpr std::size_t kKeyColumnOrder = 2; // in a key column
constexpr std::size_t kPages = 34;
constexpr std::size_t kRoot = 38;
constexpr std::size_t kFlags = 46;
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
} // namespace logical_block

namespace long_value_block {
constexpr std::size_t kColumn = 0;
constexpr std::size_t kOwned = 2;
constexpr std::size_t kWithSpace = 6;
} // namespace long_value_block

constexpr std::uint32_t kIndexMark = 0x783;
constexpr std::uint16_t kNoKeyColumn = 0xFFFF;
constexpr std::uint32_t kUsualSortOrder = 0x409; // what Access leaves where a column has no sort order

Bytes copyOf(ByteView block)
{
    return {block.begin(), block.end()};
}

} // namespace

// --- Columns ---

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
    if (block.size() != kColumnBlockSize) {
        block.assign(kColumnBlockSize, std::byte{0});
        putU32(block, column_block::kMark, kDefinitionMark);
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

// --- Real indexes ---

RealIndex decodeIndex(ByteView head, ByteView block)
{
    RealIndex index;
    index.distinctKeys = getU32(head, kDistinctKeysInHead);
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
    Bytes block(kIndexBlockSize);
    putU32(block, index_block::kMark, kIndexMark);
    if (index.preserved.size() == kIndexHeadSize + kIndexBlockSize) {
        const ByteView both = index.preserved;
        putBytes(head, 0, both.first(kIndexHeadSize));
        putBytes(block, 0, both.last(kIndexBlockSize));
    }
    putU32(head, kDistinctKeysInHead, index.distinctKeys);
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
    if (block.size() != kLogicalBlockSize) {
        block.assign(kLogicalBlockSize, std::byte{0});
        putU32(block, logical_block::kMark, kDefinitionMark);
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

// --- Maps of long values ---

LongValueMaps decodeLongValueMaps(ByteView block)
{
    return LongValueMaps{.columnNumber = getU16(block, long_value_block::kColumn),
                         .owned = getRowPointer(block, long_value_block::kOwned),
                         .withSpace = getRowPointer(block, long_value_block::kWithSpace)};
}

void encodeLongValueMaps(Bytes& out, const LongValueMaps& maps)
{
    std::array<std::byte, kLongValueBlockSize> block{};
    putU16(block, long_value_block::kColumn, maps.columnNumber);
    putRowPointer(block, long_value_block::kOwned, maps.owned);
    putRowPointer(block, long_value_block::kWithSpace, maps.withSpace);
    append(out, block);
}

} // namespace jet
