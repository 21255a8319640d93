// Values of SQL as bounds of an index's keys.
#pragma once

#include "jet/table.h"
#include "runtime/value.h"

#include <optional>
#include <string_view>
#include <vector>

namespace data {

/// Between these two, both included, lie all keys that the value could be equal to.
struct KeyInterval {
    jet::Value low;
    jet::Value high;
};

/// Whether keys of that type can be searched for at all.
[[nodiscard]] bool isSearchableType(jet::ColumnType type);
/// The keys of a column of that type that equal the value; null where that cannot be said.
[[nodiscard]] std::optional<KeyInterval> keysEqualTo(const runtime::Value& value, jet::ColumnType type);

struct KeyPart {
    jet::ColumnType type = jet::ColumnType::Long;
    bool ascending = true;
};

/// The range that an IndexPlan's values describe; null when no row can satisfy it (a comparison with null).
[[nodiscard]] std::optional<jet::KeyRange> keyRange(std::string_view codes, const std::vector<runtime::Value>& values,
                                                    const std::vector<KeyPart>& parts);

} // namespace data
