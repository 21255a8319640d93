// Single values to and from their stored bytes (FORMAT.md, "Column types and values").
#pragma once

#include "jet/format/table_definition.h"
#include "jet/format/value.h"

namespace jet {

/// Decodes the stored bytes of one value of the column, which is not Boolean (that has none). Memo, Ole, Block and
/// types unknown: the bytes as they are. Throws Corrupt when they are not as long as the type is.
[[nodiscard]] Value decodeValue(const Column& column, ByteView bytes);

/// The stored bytes of a value that is not null, of a column that is neither Boolean, Memo nor Ole. Numbers of another
/// type are taken when they fit. Throws InvalidArgument (a wrong type, no number, a column whose type is unknown),
/// Overflow or ValueTooLong, naming the column.
[[nodiscard]] Bytes encodeValue(const Column& column, const Value& value);

} // namespace jet
