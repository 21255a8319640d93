// One table of an open database: its rows, read and changed.
#pragma once

#include "jet/format/direction.h"
#include "jet/format/table_definition.h"
#include "jet/format/value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace jet {

/// A value for the column of that number.
struct ColumnValue {
    std::uint16_t columnNumber = 0;
    Value value;
};

/// One row that was read. It holds its page, so it stays as it was when it was read.
class Row
{
public:
    virtual ~Row() = default;
    [[nodiscard]] virtual RowPointer address() const = 0;
    /// Decodes that one value. A long value is read in full, from the file as it is now; throws NoSuchObject when it
    /// was changed since the row was read.
    [[nodiscard]] virtual Value value(const Column& column) const = 0;
};

/// Walks rows; starts before the first.
class RowCursor
{
public:
    virtual ~RowCursor() = default;
    /// Moves to the next row; false at the end.
    virtual bool next() = 0;
    /// The row at hand. Good until the next call of next().
    [[nodiscard]] virtual const Row& row() const = 0;
};

/// One end of a range of keys: values for the index's leading columns.
struct KeyBound {
    std::vector<Value> values;
    bool inclusive = true;
};

/// Both ends of a range in the index's own order; an end that is not there is open.
struct KeyRange {
    std::optional<KeyBound> from;
    std::optional<KeyBound> to;
};

/// Good as long as its database. Every reading function reads under a lock of its own, or inside a read or transaction
/// that the caller has begun on the database; a cursor holds its lock until it is destroyed. A changing function
/// outside a transaction is one by itself. When it throws, nothing has changed.
class Table
{
public:
    virtual ~Table() = default;
    [[nodiscard]] virtual const std::string& name() const = 0;
    /// The definition as of now; the reference is good until the next change of the database.
    [[nodiscard]] virtual const TableDefinition& definition() const = 0;
    /// Rows as the definition counts them.
    [[nodiscard]] virtual std::uint32_t rowCount() const = 0;
    /// Why the table cannot be changed (a read-only file, an index that cannot be kept up ...); empty when it can.
    [[nodiscard]] virtual std::string whyReadOnly() const = 0;

    /// All rows in the order of entry.
    [[nodiscard]] virtual std::unique_ptr<RowCursor> scan() const = 0;
    /// The rows of a range of keys, in key order (equal keys in the order of entry) or backwards. `realIndex` is a
    /// position in TableDefinition::realIndexes. Null as a bound means the null key. Throws IndexNotSupported for
    /// bounds in an index that cannot be searched.
    [[nodiscard]] virtual std::unique_ptr<RowCursor> range(std::size_t realIndex, const KeyRange& keys,
                                                           Direction direction = Direction::Forwards) const = 0;
    /// Whether keys of this index can be computed (an index of another sort order cannot be searched, only scanned
    /// past).
    [[nodiscard]] virtual bool isSearchable(std::size_t realIndex) const = 0;
    /// The row at the address, or null when there is none any more.
    [[nodiscard]] virtual std::unique_ptr<Row> read(RowPointer address) const = 0;

    // Changes. All throw ReadOnly or IndexNotSupported where whyReadOnly() has words, NullNotAllowed, DuplicateKey,
    // MissingParent and HasChildren for what indexes and relationships do not allow, and InvalidArgument, Overflow or
    // ValueTooLong for a value that its column cannot hold.

    /// Columns not named get null (Boolean: false) or, for an auto-number, the next number.
    virtual RowPointer insert(std::span<const ColumnValue> values) = 0;
    /// Changes the columns named and keeps the bytes of the others. Throws NoSuchObject when the row is gone.
    virtual void update(RowPointer address, std::span<const ColumnValue> values) = 0;
    /// Throws NoSuchObject when the row is gone. What relationships say goes with it.
    virtual void erase(RowPointer address) = 0;
};

} // namespace jet
