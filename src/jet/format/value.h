// Values of columns as the format knows them.
#pragma once

#include "jet/disk/bytes.h"

#include <array>
#include <cstdint>
#include <string>
#include <variant>

namespace jet {

/// Type codes as stored in a column's descriptor; never renumber.
enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3, ///< 16 bits
    Long = 4,    ///< 32 bits
    Currency = 5,
    Single = 6,
    Double = 7,
    DateTime = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Block = 17, ///< an opaque fixed block in tables of Access's own; copied, never interpreted
};

struct Null {
    bool operator==(const Null&) const = default;
};

/// An amount in ten-thousandths.
struct Currency {
    std::int64_t tenThousandths = 0;
    bool operator==(const Currency&) const = default;
};

/// Days since 30 December 1899; the fraction is the time of day, counted forward from midnight also when negative.
struct DateTime {
    double days = 0;
    bool operator==(const DateTime&) const = default;
};

/// The sixteen bytes in printed order.
struct Guid {
    std::array<std::byte, 16> bytes{};
    bool operator==(const Guid&) const = default;
};

/// A decimal number: magnitude / 10^scale. The scale is the column's.
struct Numeric {
    bool negative = false;
    std::array<std::uint32_t, 4> magnitude{}; ///< most significant word first
    std::uint8_t scale = 0;
    bool operator==(const Numeric&) const = default;
};

/// Boolean: bool (never null). Byte, Integer, Long: the integer of that width. Text, Memo: u16string. Binary, Ole,
/// Block and types unknown: Bytes.
using Value = std::variant<Null, bool, std::uint8_t, std::int16_t, std::int32_t, Currency, float, double, DateTime,
                           std::u16string, Bytes, Guid, Numeric>;

[[nodiscard]] inline bool isNull(const Value& value)
{
    return std::holds_alternative<Null>(value);
}

} // namespace jet
