// The bytes by which an index orders its rows (FORMAT.md, "Index keys").
#pragma once

#include "jet/disk/bytes.h"
#include "jet/format/table_definition.h"
#include "jet/format/value.h"

#include <optional>
#include <span>
#include <vector>

namespace jet {

/// Whether keys of the column's values can be computed: a type that can be indexed and, for texts, the sort order 1033
/// version 0. A table with an index on any other column is not written to.
[[nodiscard]] bool canEncode(const Column& column);

/// Appends the part of a key that one value makes: a flag byte, and the value's bytes unless it is null. Throws
/// InvalidArgument when the value is not of the column's type, IndexNotSupported when canEncode is false.
///
/// Doubles compare as their bits do: 0.0 and -0.0 have keys of their own.
void appendKeyPart(const Column& column, bool ascending, const Value& value, Bytes& key);

/// One row's key in one index.
struct IndexKey {
    Bytes bytes;
    bool anyNull = false; ///< what a required index refuses
    bool allNull = false; ///< what an index that ignores nulls leaves out, and what never collides in a unique one
};

/// Makes keys for one index.
class IndexKeyEncoder
{
public:
    /// Throws Corrupt when a key column is not in the definition.
    IndexKeyEncoder(const TableDefinition& definition, const RealIndex& index);

    /// Whether keys can be computed at all; every function below requires it, else it throws IndexNotSupported.
    [[nodiscard]] bool canEncode() const { return canEncode_; }
    /// Whether, besides, the order of keys is the order of values, so that ranges can be searched. It is not for a
    /// descending Numeric (the signs keep their ascending order), nor for a Binary that is descending or followed by a
    /// column (an empty value has no end mark). Such an index can be kept up and walked, but not searched.
    [[nodiscard]] bool isSearchable() const { return searchable_; }
    /// Numbers of the key columns, in the index's order.
    [[nodiscard]] const std::vector<std::uint16_t>& columnNumbers() const { return columnNumbers_; }

    /// The key of a row: one value for each key column, in order. Throws ValueTooLong past kMaximumKeyLength
    /// (index_page.h).
    [[nodiscard]] IndexKey encode(std::span<const Value> values) const;

    // Ends of a range, from values for the leading columns (all or fewer; fewer stand for every key that begins with
    // them). A range holds the keys with lowerEnd <= key < upperEnd.
    [[nodiscard]] Bytes lowerEnd(std::span<const Value> values, bool inclusive) const;
    /// Without a value there is no upper end: the range goes on to the last key.
    [[nodiscard]] std::optional<Bytes> upperEnd(std::span<const Value> values, bool inclusive) const;

private:
    struct Part {
        Column column;
        bool ascending = true;
    };

    [[nodiscard]] Bytes encodeLeading(std::span<const Value> values) const;
    [[nodiscard]] std::optional<Bytes> justAbove(Bytes key, std::size_t valueCount) const;

    std::vector<Part> parts_;
    std::vector<std::uint16_t> columnNumbers_;
    bool canEncode_ = true;
    bool searchable_ = true;
};

} // namespace jet
