#include "jet/format/long_value.h"

namespace jet {
namespace {

constexpr std::uint32_t kInlineBit = 0x80000000;
constexpr std::uint32_t kOneRowBit = 0x40000000;

} // namespace

LongValue decodeLongValue(ByteView slot)
{
    LongValue value;
    if (slot.empty()) {
        return value;
    }
    if (slot.size() < kLongValueDescriptorSize) {
        throw Error(ErrorCode::Corrupt, "The descriptor of a long value is cut short");
    }
    const std::uint32_t word = getU32(slot, 0);
    value.length = word & kMaximumLongValueLength;
    if ((word & kInlineBit) != 0) {
        value.inlineBytes = slice(slot, kLongValueDescriptorSize, value.length);
        return value;
    }
    value.storage = (word & kOneRowBit) != 0 ? LongValue::Storage::OneRow : LongValue::Storage::Chain;
    value.first = getRowPointer(slot, 4);
    return value;
}

Bytes encodeLongValue(const LongValue& value)
{
    if (value.length > kMaximumLongValueLength) {
        throw Error(ErrorCode::ValueTooLong, "A long value has at most a gigabyte");
    }
    Bytes slot(kLongValueDescriptorSize);
    switch (value.storage) {
    case LongValue::Storage::Inline:
        putU32(slot, 0, kInlineBit | value.length);
        append(slot, value.inlineBytes);
        break;
    case LongValue::Storage::OneRow:
        putU32(slot, 0, kOneRowBit | value.length);
        putRowPointer(slot, 4, value.first);
        break;
    case LongValue::Storage::Chain:
        putU32(slot, 0, value.length);
        putRowPointer(slot, 4, value.first);
        break;
    }
    return slot;
}

} // namespace jet
