// Rows of a query, read once and kept in little memory.
#pragma once

#include "runtime/value.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace data {

/// A table of values: nine bytes a value, texts and bytes in one run each.
class Snapshot
{
public:
    explicit Snapshot(std::size_t columns) : columns_(columns) {}

    /// Appends a value; `columns` of them make a row.
    void append(const runtime::Value& value);
    [[nodiscard]] qsizetype rowCount() const;
    [[nodiscard]] runtime::Value value(qsizetype row, int column) const;

private:
    std::size_t columns_;
    std::vector<quint8> kinds_;  ///< which alternative of runtime::Value
    std::vector<quint64> cells_; ///< its bits, or where it begins in its run
    std::u16string texts_;
    QByteArray bytes_;
};

} // namespace data
