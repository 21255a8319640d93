// Values and columns of the file as those of recordsets, and back.
#pragma once

#include "data/types/field.h"
#include "jet/format/table_definition.h"
#include "jet/format/value.h"
#include "runtime/value.h"

namespace data {

[[nodiscard]] Field fieldOf(const jet::Column& column);

/// As SQL computes with it: whole numbers as qint32, all others as double, a GUID as a text in braces.
[[nodiscard]] runtime::Value fromFile(const jet::Value& value);

/// As the column stores it. Converts as far as the column's type allows; throws run-time error 13, 6 overflow, 94 for
/// null in a yes/no column, 3163 for a text or bytes longer than the column.
[[nodiscard]] jet::Value toFile(const runtime::Value& value, const jet::Column& column);

/// A computed value as one of the field's type, where it can be; others stay as they are. A single becomes the shortest
/// decimal number that stands for it.
[[nodiscard]] runtime::Value asFieldType(const runtime::Value& value, FieldType type);

} // namespace data
