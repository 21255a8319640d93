// Rows: column values to and from a row's bytes (FORMAT.md, "Data pages and rows").
#pragma once

#include "jet/format/table_definition.h"
#include "jet/format/value_codec.h"

#include <optional>
#include <vector>

namespace jet {

/// No row is longer; nor would other programs read it.
inline constexpr std::size_t kMaximumRowSize = 4060;

/// What reading any row of a table needs to know of its definition, worked out once.
class RowLayout
{
public:
    explicit RowLayout(const TableDefinition& definition);

    /// Whether a row that was written with so many columns has a variable part that matters: an older row was written
    /// before the table had its first variable column.
    [[nodiscard]] bool hasVariablePart(std::size_t columnCount) const { return columnCount > firstVariableColumn_; }

private:
    std::size_t firstVariableColumn_; ///< lowest number of a variable column
};

/// A stored row, read in place. The row's trailer is checked once; a value is decoded when it is asked for. Columns are
/// those of the definition that the layout was made from. All functions throw Corrupt, without a page.
class RowView
{
public:
    RowView(const RowLayout& layout, ByteView row);

    /// Columns that the table had had when the row was written.
    [[nodiscard]] std::size_t columnCount() const { return columnCount_; }
    /// Never for a Boolean.
    [[nodiscard]] bool isNull(const Column& column) const;
    /// The stored bytes; nothing for null and for a Boolean, which has none.
    [[nodiscard]] std::optional<ByteView> raw(const Column& column) const;
    /// The value; of a Memo or Ole column the slot's bytes as they are (FORMAT.md, "Long values").
    [[nodiscard]] Value value(const Column& column) const;

private:
    [[nodiscard]] bool bit(std::size_t column) const;
    [[nodiscard]] std::size_t variableOffset(std::size_t slot) const;

    ByteView row_;
    std::size_t columnCount_ = 0;
    std::size_t variableCount_ = 0;
    std::size_t mask_ = 0;        ///< where the null mask begins
    std::size_t fixedEnd_ = 0;    ///< fixed values end here at the latest
    std::size_t variableEnd_ = 0; ///< variable values end here at the latest
};

/// Builds a row's bytes, from nothing or from a stored row some of whose values change.
class RowBuilder
{
public:
    /// All columns null, Booleans false.
    explicit RowBuilder(const TableDefinition& definition);
    /// The values of a stored row, bytes unchanged, those of types unknown included. What deleted columns left is
    /// dropped.
    RowBuilder(const TableDefinition& definition, const RowView& row);

    /// Sets a column's value after checking it: InvalidArgument, Overflow or ValueTooLong name the column. Null makes a
    /// Boolean false. Memo and Ole take the bytes of their slot, as the long-value store gives them.
    void set(const Column& column, const Value& value);

    /// The row. Throws ValueTooLong when it is longer than kMaximumRowSize.
    [[nodiscard]] Bytes encode() const;

private:
    void store(const Column& column, ByteView bytes);
    void setBit(std::size_t column, bool on);

    Bytes fixed_;                 ///< the column count and the fixed part
    std::vector<Bytes> variable_; ///< by slot
    Bytes mask_;
};

} // namespace jet
