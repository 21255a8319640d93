// Number and date patterns.
#pragma once

#include "runtime/value.h"

#include <QString>

namespace runtime {

/// A value through a pattern. Number patterns: # an optional digit, 0 a required digit, % times 100 and "%", rounding
/// half away from zero on the value's 15 significant digits; what rounds to zero has no minus sign. Date patterns: d dd
/// ddd dddd m mm mmm mmmm yy yyyy h hh n nn s ss, mm after h being minutes; names are those of the locale in force.
/// Anything else stands for itself. Null gives "".
[[nodiscard]] QString format(const Value& value, const QString& pattern);

} // namespace runtime
