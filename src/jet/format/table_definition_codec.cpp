#include "jet/format/table_definition_codec.h"

#include "jet/format/table_definition_blocks.h"
#include "jet/format/text_codec.h"
#include "jet/format/utf.h"

#include <algorithm>
#include <array>

namespace jet {
namespace {

// Offsets in bytes, and its size.

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

constexpr std::uint16_t kEndOfLongValues = 0xFFFF; // in the place of a column's number

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
    [[nodiscard]] std::uint16_t peekU16() const { return getU16(bytes_, at_); }
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

// --- The head ---

/// Without the numbers of its parts.
TableDefinition decodeHead(ByteView head)
{
    TableDefinition definition;
    definition.rowCount = getU32(head, head_block::kRowCount);
    definition.lastAutoNumber = static_cast<std::int32_t>(getU32(head, head_block::kLastAutoNumber));
    definition.kind = getU8(head, head_block::kKind);
    definition.maximumColumns = getU16(head, head_block::kMaximumColumns);
    definition.maximumVariableColumns = getU16(head, head_block::kMaximumVariableColumns);
    definition.ownedPages = getRowPointer(head, head_block::kOwnedPages);
    definition.pagesWithSpace = getRowPointer(head, head_block::kPagesWithSpace);
    definition.preserved = Bytes(head.begin(), head.end());
    return definition;
}

Bytes encodeHead(const TableDefinition& definition)
{
    Bytes head = definition.preserved;
    if (head.size() != head_block::kSize) {
        head.assign(head_block::kSize, std::byte{0});
        putU32(head, head_block::kMark, kDefinitionMark);
        putU8(head, head_block::kOne, 1);
    }
    putU32(head, head_block::kRowCount, definition.rowCount);
    putU32(head, head_block::kLastAutoNumber, static_cast<std::uint32_t>(definition.lastAutoNumber));
    putU8(head, head_block::kKind, definition.kind);
    putU16(head, head_block::kMaximumColumns, definition.maximumColumns);
    putU16(head, head_block::kMaximumVariableColumns, definition.maximumVariableColumns);
    putU16(head, head_block::kColumns, static_cast<std::uint16_t>(definition.columns.size()));
    putU32(head, head_block::kLogicalIndexes, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
    putU32(head, head_block::kRealIndexes, static_cast<std::uint32_t>(definition.realIndexes.size()));
    putRowPointer(head, head_block::kOwnedPages, definition.ownedPages);
    putRowPointer(head, head_block::kPagesWithSpace, definition.pagesWithSpace);
    return head;
}

} // namespace

TableDefinition decodeTableDefinition(ByteView bytes)
{
    const std::uint32_t length = getU32(bytes, head_block::kLength);
    Reader reader(slice(bytes, 0, length));
    const ByteView head = reader.take(head_block::kSize);

    TableDefinition definition = decodeHead(head);
    const std::size_t columnCount = getU16(head, head_block::kColumns);
    const std::size_t logicalCount = getU32(head, head_block::kLogicalIndexes);
    const std::size_t realCount = getU32(head, head_block::kRealIndexes);
    if (columnCount > kMaximumColumns) {
        throw Error(ErrorCode::Corrupt, "A table has " + std::to_string(columnCount) + " columns");
    }
    // Before anything is made of that size.
    if (realCount > reader.left() / (kIndexHeadSize + kIndexBlockSize) ||
        logicalCount > reader.left() / kLogicalBlockSize) {
        throw Error(ErrorCode::Corrupt, "A table names more indexes than its definition can hold");
    }

    const ByteView indexHeads = reader.take(kIndexHeadSize * realCount);
    for (std::size_t i = 0; i < columnCount; ++i) {
        definition.columns.push_back(decodeColumn(reader.take(kColumnBlockSize)));
    }
    for (Column& column : definition.columns) {
        column.name = reader.takeName();
    }
    for (std::size_t i = 0; i < realCount; ++i) {
        definition.realIndexes.push_back(
            decodeIndex(slice(indexHeads, kIndexHeadSize * i, kIndexHeadSize), reader.take(kIndexBlockSize)));
    }
    for (std::size_t i = 0; i < logicalCount; ++i) {
        definition.logicalIndexes.push_back(decodeLogicalIndex(reader.take(kLogicalBlockSize)));
    }
    for (LogicalIndex& index : definition.logicalIndexes) {
        index.name = reader.takeName();
    }
    while (reader.peekU16() != kEndOfLongValues) {
        definition.longValues.push_back(decodeLongValueMaps(reader.take(kLongValueBlockSize)));
    }
    static_cast<void>(reader.takeU16());
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
    Bytes bytes = encodeHead(definition);
    bytes.resize(head_block::kSize + kIndexHeadSize * definition.realIndexes.size());
    for (const Column& column : definition.columns) {
        encodeColumn(bytes, column);
    }
    for (const Column& column : definition.columns) {
        appendName(bytes, column.name);
    }
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
        std::array<std::byte, kIndexHeadSize> head{};
        encodeIndex(head, bytes, definition.realIndexes[i]);
        putBytes(bytes, head_block::kSize + kIndexHeadSize * i, head);
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
        putU32(firstPage, head_block::kSize + kIndexHeadSize * i + kDistinctKeysInHead,
               definition.realIndexes[i].distinctKeys);
    }
}

} // namespace jet
