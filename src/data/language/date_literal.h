// Dates between number signs.
#pragma once

#include "runtime/value.h"

#include <QStringView>

#include <optional>

namespace data {

/// The date of `#...#`, or null when it is none. Unlike texts, these literals are month first, as everywhere in this
/// dialect: #1/2/2024# is the second of January. Only where the first number cannot be a month it is the day
/// (#31/1/2024#). Years of two digits are 1930 to 2029. Every other form (#2024-01-02#, #2 Jan 2024#, #10:30#) is read
/// as CDate reads it. A time may follow, with AM or PM.
[[nodiscard]] std::optional<runtime::Date> dateOfLiteral(QStringView content);

} // namespace data
