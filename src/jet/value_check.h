// Whether a value may stand in a column.
#pragma once

#include "jet/format/table_definition.h"

namespace jet {

/// What a column's properties add to its type.
struct ColumnRules {
    bool required = false;
    bool allowsZeroLength = true;
};

/// The value as it reads once it is stored: null in a Boolean column is false, a number has the column's own type.
/// Throws InvalidArgument for a value of another type or out of range, ValueTooLong, Overflow, NullNotAllowed; ReadOnly
/// for a column whose type this engine does not know.
[[nodiscard]] Value checkedValue(const Column& column, const ColumnRules& rules, const Value& value);

} // namespace jet
