#include "jet/format/usage_map_codec.h"

#include <algorithm>
#include <bit>

namespace jet {

bool BitView::test(std::size_t bit) const
{
    return bit < size() && (std::to_integer<unsigned>(bytes_[bit / 8]) >> (bit % 8) & 1U) != 0;
}

std::optional<std::size_t> BitView::firstFrom(std::size_t from) const
{
    if (from >= size()) {
        return std::nullopt;
    }
    std::size_t index = from / 8;
    unsigned byte = std::to_integer<unsigned>(bytes_[index]) & (0xFFU << (from % 8));
    while (byte == 0) {
        if (++index == bytes_.size()) {
            return std::nullopt;
        }
        byte = std::to_integer<unsigned>(bytes_[index]);
    }
    return index * 8 + static_cast<std::size_t>(std::countr_zero(byte));
}

std::optional<std::size_t> BitView::lastBefore(std::size_t end) const
{
    end = std::min(end, size());
    while (end > 0) {
        const std::size_t index = (end - 1) / 8;
        const unsigned byte = std::to_integer<unsigned>(bytes_[index]) & (0xFFU >> (7 - (end - 1) % 8));
        if (byte != 0) {
            return index * 8 + static_cast<std::size_t>(std::bit_width(byte)) - 1;
        }
        end = index * 8;
    }
    return std::nullopt;
}

void setBit(MutableBytes bytes, std::size_t bit, bool on)
{
    std::byte& byte = slice(bytes, bit / 8, 1)[0];
    const std::byte mask{static_cast<unsigned char>(1U << (bit % 8))};
    byte = on ? byte | mask : byte & ~mask;
}

UsageMapRow UsageMapRow::decode(ByteView row)
{
    const std::uint8_t kind = getU8(row, 0);
    if (kind > 1) {
        throw Error(ErrorCode::Corrupt, "A usage map is of an unknown kind, " + std::to_string(kind));
    }
    UsageMapRow map{.kind = static_cast<Kind>(kind), .row = row};
    if (map.kind == Kind::Inline && row.size() < kInlineHeader) {
        throw Error(ErrorCode::Corrupt, "A usage map is cut short");
    }
    return map;
}

std::int64_t UsageMapRow::startPage() const
{
    return static_cast<std::int32_t>(getU32(row, 1));
}

PageNumber UsageMapRow::pointer(std::size_t index) const
{
    return getU32(row, kReferenceHeader + 4 * index);
}

void initializeInlineMap(MutableBytes row, PageNumber startPage)
{
    std::fill(row.begin(), row.end(), std::byte{0});
    putU8(row, 0, static_cast<std::uint8_t>(UsageMapRow::Kind::Inline));
    putU32(row, 1, startPage);
}

void initializeReferenceMap(MutableBytes row)
{
    std::fill(row.begin(), row.end(), std::byte{0});
    putU8(row, 0, static_cast<std::uint8_t>(UsageMapRow::Kind::Reference));
}

void putBitmapPointer(MutableBytes row, std::size_t index, PageNumber page)
{
    putU32(row, UsageMapRow::kReferenceHeader + 4 * index, page);
}

bool isBitmapPage(ByteView page)
{
    return page.size() == kPageSize && getU16(page, 0) == 0x0105;
}

void initializeBitmapPage(MutableBytes page)
{
    std::fill(page.begin(), page.end(), std::byte{0});
    putU16(page, 0, 0x0105);
}

} // namespace jet
