// Decimal numbers of the file as doubles, and back.
#pragma once

#include "jet/format/value.h"

namespace data {

/// The nearest double.
[[nodiscard]] double numberOf(const jet::Numeric& numeric);
/// To so many places, from the number's 15 significant digits, halves away from zero. 6 overflow where it needs more
/// than `precision` digits.
[[nodiscard]] jet::Numeric numericOf(double number, std::uint8_t precision, std::uint8_t scale);

} // namespace data
