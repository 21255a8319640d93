// The order of a query's rows.
#pragma once

#include "data/engine/sql_connection.h"

#include <QByteArrayList>
#include <QStringList>

#include <deque>
#include <vector>

namespace data {

/// Sorts rows that are kept in memory anyway, by values that the query yields: null before numbers before texts (by the
/// language's collation) before bytes, each the other way round where the order descends. SQLite would write every row
/// into a record, sort those and read them again; and most rows come as they were entered, in order already.
class RowSorter
{
public:
    explicit RowSorter(std::vector<RowOrder> order) : order_(std::move(order)) {}

    /// Takes the keys of the next row.
    void add(const ResultRow& row);
    /// For each place the number of the row that stands there, counted from 0 as they were added; empty when the rows
    /// came in order. Rows with equal keys stay as they came.
    [[nodiscard]] std::vector<qsizetype> sorted() const;

private:
    enum class Kind : quint8 { Null, Number, Text, Bytes };

    void addKey(Kind kind, double number);
    void addOther(const runtime::Value& key);
    /// Two keys by their positions: below, equal to or above 0.
    [[nodiscard]] int compared(std::size_t a, std::size_t b) const;
    [[nodiscard]] bool isBefore(qsizetype row, qsizetype other) const;

    std::vector<RowOrder> order_;
    // Keys, row after row. Deques, for they grow without moving what they hold.
    std::deque<Kind> kinds_;
    std::deque<double> numbers_; ///< of a text or of bytes the position among those kept
    QStringList texts_;
    QByteArrayList bytes_;
    qsizetype rows_ = 0;
};

} // namespace data
