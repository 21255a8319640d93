// Runs of bytes, and bounds-checked access to numbers in them; the only place that knows about byte order.
#pragma once

#include "jet/disk/error.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace jet {

using ByteView = std::span<const std::byte>;
using MutableBytes = std::span<std::byte>;
using Bytes = std::vector<std::byte>;

/// Throws Corrupt. Out of line, so that the check itself is small enough to be inlined everywhere.
[[noreturn]] void throwPastEnd(std::size_t offset, std::size_t length, std::size_t size);

/// Part of a run of bytes. Throws Corrupt when it does not lie wholly inside.
template <typename Byte>
[[nodiscard]] std::span<Byte> slice(std::span<Byte> bytes, std::size_t offset, std::size_t length)
{
    if (offset > bytes.size() || length > bytes.size() - offset) [[unlikely]] {
        throwPastEnd(offset, length, bytes.size());
    }
    return bytes.subspan(offset, length);
}

/// The unsigned number of Size bytes at the offset, least significant byte first.
template <std::unsigned_integral Number, std::size_t Size = sizeof(Number)>
[[nodiscard]] Number getLittleEndian(ByteView bytes, std::size_t offset)
{
    const ByteView part = slice(bytes, offset, Size);
    Number number = 0;
    for (std::size_t i = Size; i-- > 0;) {
        number = static_cast<Number>((number << 8U) | std::to_integer<Number>(part[i]));
    }
    return number;
}

template <std::unsigned_integral Number, std::size_t Size = sizeof(Number)>
void putLittleEndian(MutableBytes bytes, std::size_t offset, Number number)
{
    const MutableBytes part = slice(bytes, offset, Size);
    for (std::size_t i = 0; i < Size; ++i) {
        part[i] = static_cast<std::byte>((std::uint64_t{number} >> (8U * i)) & 0xFFU);
    }
}

/// The unsigned number of Size bytes at the offset, most significant byte first (index entries only).
template <std::unsigned_integral Number, std::size_t Size = sizeof(Number)>
[[nodiscard]] Number getBigEndian(ByteView bytes, std::size_t offset)
{
    const ByteView part = slice(bytes, offset, Size);
    Number number = 0;
    for (std::size_t i = 0; i < Size; ++i) {
        number = static_cast<Number>((number << 8U) | std::to_integer<Number>(part[i]));
    }
    return number;
}

template <std::unsigned_integral Number, std::size_t Size = sizeof(Number)>
void putBigEndian(MutableBytes bytes, std::size_t offset, Number number)
{
    const MutableBytes part = slice(bytes, offset, Size);
    for (std::size_t i = 0; i < Size; ++i) {
        part[Size - 1 - i] = static_cast<std::byte>((std::uint64_t{number} >> (8U * i)) & 0xFFU);
    }
}

[[nodiscard]] inline std::uint8_t getU8(ByteView bytes, std::size_t offset)
{
    return getLittleEndian<std::uint8_t>(bytes, offset);
}
[[nodiscard]] inline std::uint16_t getU16(ByteView bytes, std::size_t offset)
{
    return getLittleEndian<std::uint16_t>(bytes, offset);
}
[[nodiscard]] inline std::uint32_t getU24(ByteView bytes, std::size_t offset)
{
    return getLittleEndian<std::uint32_t, 3>(bytes, offset);
}
[[nodiscard]] inline std::uint32_t getU32(ByteView bytes, std::size_t offset)
{
    return getLittleEndian<std::uint32_t>(bytes, offset);
}
[[nodiscard]] inline std::uint64_t getU64(ByteView bytes, std::size_t offset)
{
    return getLittleEndian<std::uint64_t>(bytes, offset);
}
[[nodiscard]] inline double getDouble(ByteView bytes, std::size_t offset)
{
    return std::bit_cast<double>(getU64(bytes, offset));
}

inline void putU8(MutableBytes bytes, std::size_t offset, std::uint8_t number)
{
    putLittleEndian(bytes, offset, number);
}
inline void putU16(MutableBytes bytes, std::size_t offset, std::uint16_t number)
{
    putLittleEndian(bytes, offset, number);
}
inline void putU24(MutableBytes bytes, std::size_t offset, std::uint32_t number)
{
    putLittleEndian<std::uint32_t, 3>(bytes, offset, number);
}
inline void putU32(MutableBytes bytes, std::size_t offset, std::uint32_t number)
{
    putLittleEndian(bytes, offset, number);
}
inline void putU64(MutableBytes bytes, std::size_t offset, std::uint64_t number)
{
    putLittleEndian(bytes, offset, number);
}
inline void putDouble(MutableBytes bytes, std::size_t offset, double number)
{
    putU64(bytes, offset, std::bit_cast<std::uint64_t>(number));
}

inline void putBytes(MutableBytes bytes, std::size_t offset, ByteView content)
{
    const MutableBytes part = slice(bytes, offset, content.size());
    if (!content.empty()) {
        std::memmove(part.data(), content.data(), content.size());
    }
}

inline void append(Bytes& out, ByteView bytes)
{
    out.insert(out.end(), bytes.begin(), bytes.end());
}

/// Below, equal to or above 0, byte by byte; a run that another one begins with comes before it.
[[nodiscard]] inline int compareBytes(ByteView a, ByteView b)
{
    const std::size_t common = a.size() < b.size() ? a.size() : b.size();
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    if (order != 0 || a.size() == b.size()) {
        return order;
    }
    return a.size() < b.size() ? -1 : 1;
}

} // namespace jet
