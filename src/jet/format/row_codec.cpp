#include "jet/format/row_codec.h"

#include "jet/format/long_value.h"

#include <algorithm>
#include <limits>

namespace jet {
namespace {

constexpr std::size_t kCountSize = 2;  // the column count at the start, the slot count near the end
constexpr std::size_t kOffsetSize = 2; // an entry of the offset table

std::size_t maskSize(std::size_t columns)
{
    return (columns + 7) / 8;
}

[[noreturn]] void throwCorrupt(const std::string& message)
{
    throw Error(ErrorCode::Corrupt, message);
}

} // namespace

RowLayout::RowLayout(const TableDefinition& definition) : firstVariableColumn_(std::numeric_limits<std::size_t>::max())
{
    for (const Column& column : definition.columns) {
        if (!column.isFixed()) {
            firstVariableColumn_ = std::min<std::size_t>(firstVariableColumn_, column.number);
        }
    }
}

RowView::RowView(const RowLayout& layout, ByteView row) : row_(row), columnCount_(getU16(row, 0))
{
    const std::size_t mask = maskSize(columnCount_);
    if (row.size() < kCountSize + mask) {
        throwCorrupt("A row is too short for its columns");
    }
    mask_ = row.size() - mask;
    if (!layout.hasVariablePart(columnCount_)) {
        fixedEnd_ = mask_;
        return;
    }
    // Backwards from the mask: the slot count, where each slot begins (the last slot first), where the last one ends.
    if (mask_ < 2 * kCountSize + kOffsetSize) {
        throwCorrupt("A row is too short for its offset table");
    }
    variableCount_ = getU16(row, mask_ - kCountSize);
    const std::size_t tableSize = kOffsetSize * (variableCount_ + 1);
    if (mask_ - 2 * kCountSize < tableSize) {
        throwCorrupt("A row is too short for its offset table");
    }
    variableEnd_ = mask_ - kCountSize - tableSize;
    fixedEnd_ = variableOffset(0);
    if (fixedEnd_ < kCountSize || fixedEnd_ > variableEnd_) {
        throwCorrupt("A row's variable values lie outside it");
    }
}

bool RowView::bit(std::size_t column) const
{
    return column < columnCount_ && (std::to_integer<unsigned>(row_[mask_ + column / 8]) >> (column % 8) & 1U) != 0;
}

std::size_t RowView::variableOffset(std::size_t slot) const
{
    return getU16(row_, mask_ - kCountSize - kOffsetSize * (slot + 1));
}

bool RowView::isNull(const Column& column) const
{
    return column.type != ColumnType::Boolean && !raw(column).has_value();
}

std::optional<ByteView> RowView::raw(const Column& column) const
{
    if (column.type == ColumnType::Boolean || !bit(column.number)) {
        return std::nullopt;
    }
    if (column.isFixed()) {
        const std::size_t begin = kCountSize + column.fixedOffset;
        if (begin + column.length > fixedEnd_) {
            throwCorrupt("A row is too short for column " + column.name);
        }
        return row_.subspan(begin, column.length);
    }
    if (column.variableSlot >= variableCount_) {
        throwCorrupt("A row has no slot for column " + column.name);
    }
    const std::size_t begin = variableOffset(column.variableSlot);
    const std::size_t end = variableOffset(column.variableSlot + std::size_t{1});
    if (begin < fixedEnd_ || begin > end || end > variableEnd_) {
        throwCorrupt("The value of column " + column.name + " lies outside its row");
    }
    if (begin == end && column.isLongValue()) {
        return std::nullopt;
    }
    return row_.subspan(begin, end - begin);
}

Value RowView::value(const Column& column) const
{
    if (column.type == ColumnType::Boolean) {
        return bit(column.number);
    }
    const std::optional<ByteView> bytes = raw(column);
    return bytes ? decodeValue(column, *bytes) : Value(Null{});
}

RowBuilder::RowBuilder(const TableDefinition& definition)
    : variable_(definition.maximumVariableColumns), mask_(maskSize(definition.maximumColumns))
{
    std::size_t fixedSize = 0;
    for (const Column& column : definition.columns) {
        if (column.takesFixedRoom()) {
            fixedSize = std::max(fixedSize, std::size_t{column.fixedOffset} + column.length);
        }
    }
    fixed_.resize(kCountSize + fixedSize);
    putU16(fixed_, 0, definition.maximumColumns);
}

RowBuilder::RowBuilder(const TableDefinition& definition, const RowView& row) : RowBuilder(definition)
{
    for (const Column& column : definition.columns) {
        if (column.type == ColumnType::Boolean) {
            setBit(column.number, std::get<bool>(row.value(column)));
        } else if (const std::optional<ByteView> bytes = row.raw(column)) {
            store(column, *bytes);
        }
    }
}

void RowBuilder::set(const Column& column, const Value& value)
{
    if (column.type == ColumnType::Boolean) {
        const bool* on = std::get_if<bool>(&value);
        if (on == nullptr && !jet::isNull(value)) {
            throw Error(ErrorCode::InvalidArgument, "Column " + column.name + " takes yes or no only");
        }
        setBit(column.number, on != nullptr && *on);
        return;
    }
    if (jet::isNull(value)) {
        if (column.isFixed()) {
            const MutableBytes place = slice(MutableBytes(fixed_), kCountSize + column.fixedOffset, column.length);
            std::fill(place.begin(), place.end(), std::byte{0});
        } else {
            variable_.at(column.variableSlot).clear();
        }
        setBit(column.number, false);
        return;
    }
    if (!column.isLongValue()) {
        store(column, encodeValue(column, value));
        return;
    }
    const Bytes* slot = std::get_if<Bytes>(&value);
    if (slot == nullptr || slot->size() < kLongValueDescriptorSize) {
        throw Error(ErrorCode::InvalidArgument, "Column " + column.name + " takes the descriptor of a long value");
    }
    store(column, *slot);
}

void RowBuilder::store(const Column& column, ByteView bytes)
{
    if (column.isFixed()) {
        if (bytes.size() != column.length) {
            throw Error(ErrorCode::InvalidArgument, "Column " + column.name + " is defined with another width");
        }
        putBytes(fixed_, kCountSize + column.fixedOffset, bytes);
    } else {
        variable_.at(column.variableSlot).assign(bytes.begin(), bytes.end());
    }
    setBit(column.number, true);
}

void RowBuilder::setBit(std::size_t column, bool on)
{
    std::byte& byte = mask_.at(column / 8);
    const std::byte bit{static_cast<unsigned char>(1U << (column % 8))};
    byte = on ? byte | bit : byte & ~bit;
}

Bytes RowBuilder::encode() const
{
    std::size_t size = fixed_.size() + mask_.size();
    if (!variable_.empty()) {
        size += kOffsetSize * (variable_.size() + 1) + kCountSize;
    }
    for (const Bytes& value : variable_) {
        size += value.size();
    }
    if (size > kMaximumRowSize) {
        throw Error(ErrorCode::ValueTooLong, "The row has " + std::to_string(size) + " bytes; a row has at most " +
                                                 std::to_string(kMaximumRowSize));
    }
    Bytes row(size);
    putBytes(row, 0, fixed_);
    const std::size_t mask = size - mask_.size();
    putBytes(row, mask, mask_);
    if (!variable_.empty()) {
        putU16(row, mask - kCountSize, static_cast<std::uint16_t>(variable_.size()));
        std::size_t end = fixed_.size();
        const auto putOffset = [&](std::size_t slot) {
            putU16(row, mask - kCountSize - kOffsetSize * (slot + 1), static_cast<std::uint16_t>(end));
        };
        for (std::size_t slot = 0; slot < variable_.size(); ++slot) {
            putOffset(slot);
            putBytes(row, end, variable_[slot]);
            end += variable_[slot].size();
        }
        putOffset(variable_.size());
    }
    return row;
}

} // namespace jet
