// Memo and Ole values outside their rows (FORMAT.md, "Long values").
#pragma once

#include "jet/format/long_value.h"
#include "jet/format/row_codec.h"
#include "jet/store/usage_map.h"

namespace jet {

/// The value that a row's slot stands for, as stored bytes. Requires a read. Throws Corrupt for a length that the file
/// cannot hold, a chain that ends early, loops or leads elsewhere.
[[nodiscard]] Bytes readLongValue(Pager& pager, ByteView slot);

/// A column's value in full: long values read, Memo as text. Requires a read.
[[nodiscard]] Value readValue(Pager& pager, const RowView& row, const Column& column);

/// Writes and frees the values of one column; every page belongs to that column alone. Requires a transaction.
class LongValueStore
{
public:
    /// A space map at page 0 means that the column has none.
    LongValueStore(Pager& pager, const LongValueMaps& maps);

    /// Stores the bytes and returns the slot for the row: up to 52 bytes in the row itself, up to 4076 in one row of a
    /// long-value page, else a chain.
    [[nodiscard]] Bytes write(ByteView value);
    /// The same for a value: u16string for a Memo, Bytes for an Ole column. Throws InvalidArgument for other types.
    [[nodiscard]] Bytes write(const Column& column, const Value& value);
    /// Gives back what the slot's value takes outside the row; pages left empty are freed.
    void free(ByteView slot);

private:
    RowPointer writeRow(ByteView row);
    void noteSpace(PageNumber page);
    void freeRow(RowPointer row);

    Pager* pager_;
    UsageMap owned_;
    std::optional<UsageMap> withSpace_;
};

} // namespace jet
