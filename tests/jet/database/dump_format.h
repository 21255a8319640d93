// Values and definitions in the words of the dumps beside the sample files.
#pragma once

#include "jet/format/table_definition.h"
#include "jet/format/value.h"
#include "jet/schema.h"

#include <string>

namespace jet::test {

[[nodiscard]] std::string dumped(const Value& value);
/// Fields of a COLUMN, an INDEX, a RELATION line, with tabs between.
[[nodiscard]] std::string dumped(const Column& column);
[[nodiscard]] std::string dumped(const LogicalIndex& index, const TableDefinition& definition);
[[nodiscard]] std::string dumped(const Relationship& relationship);
[[nodiscard]] std::string hex(ByteView bytes);

} // namespace jet::test
