// A row of a table whose values are decoded when they are first asked for.
#pragma once

#include "jet/table.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace data {

/// A join asks for the values of one row again for each row that it finds in another table; here each is decoded once.
class DecodedRow
{
public:
    /// About no row.
    DecodedRow() = default;
    /// About a row of its own; null for none.
    explicit DecodedRow(std::unique_ptr<jet::Row> row) : held_(std::move(row)), row_(held_.get()) {}

    /// From now on about that row, which stays as long as this is about it.
    void show(const jet::Row& row);

    [[nodiscard]] bool isNone() const { return row_ == nullptr; }
    // These require a row.
    [[nodiscard]] const jet::Row& row() const { return *row_; }
    /// Good until the next call.
    [[nodiscard]] const jet::Value& value(const jet::Column& column);

private:
    struct KnownValue {
        std::uint16_t column = 0;
        jet::Value value;
    };

    std::unique_ptr<jet::Row> held_;
    const jet::Row* row_ = nullptr;
    std::vector<KnownValue> known_; ///< few: those of the columns that a statement names
};

} // namespace data
