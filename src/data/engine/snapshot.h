// Rows of a query, read once and kept in little memory.
#pragma once

#include "runtime/value.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <vector>

namespace data {

/// A table of values: nine bytes a value, texts and bytes in one run each.
class Snapshot
{
public:
    explicit Snapshot(std::size_t columns) : columns_(columns) {}

    /// Appends a value; `columns` of them make a row.
    void append(const runtime::Value& value);
    void append(qint32 value);
    void append(double value);
    void append(runtime::Date value);
    void append(QStringView value);
    [[nodiscard]] qsizetype rowCount() const;
    /// Puts the rows in another order: for each place the number of the row that comes to stand there.
    void arrange(const std::vector<qsizetype>& rows);
    [[nodiscard]] runtime::Value value(qsizetype row, int column) const;

private:
    void put(quint8 kind, quint64 cell);

    std::size_t columns_;
    // Deques, for they grow without moving what they hold.
    std::deque<quint8> kinds_;  ///< which alternative of runtime::Value
    std::deque<quint64> cells_; ///< its bits, or where it begins in its run
    std::u16string texts_;
    QByteArray bytes_;
};

} // namespace data
