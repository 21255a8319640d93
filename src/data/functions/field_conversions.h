// Conversions to the types that fields have and runtime/conversions.h has not. Text is read in the locale in force.
#pragma once

#include "runtime/value.h"

namespace data {

// All throw RunTimeError: 13 type mismatch, 94 invalid use of null, 6 overflow.

/// False for 0 and "false", true for every other number and "true".
[[nodiscard]] bool toBoolean(const runtime::Value& value);
/// Rounds half to even.
[[nodiscard]] quint8 toByte(const runtime::Value& value);
[[nodiscard]] float toSingle(const runtime::Value& value);
/// To four decimal places, as roundedToEven.
[[nodiscard]] double toCurrency(const runtime::Value& value);

/// To so many decimal places; halves go to the even neighbour. What is a half is judged on 15 significant digits, so
/// that 2.675 is one.
[[nodiscard]] double roundedToEven(double number, qint32 places);
/// The number. 6 overflow where it is infinite or none.
[[nodiscard]] double finite(double number);

} // namespace data
