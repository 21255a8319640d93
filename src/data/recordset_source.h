// Where the rows of a recordset come from.
#pragma once

#include "data/recordset.h"

#include <map>
#include <vector>

namespace data {

/// New values by field.
using FieldValues = std::map<int, runtime::Value>;

class Recordset::Source
{
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    /// 3420 when the database is closed.
    virtual void requireOpen() const = 0;
    [[nodiscard]] virtual const std::vector<Field>& fields() const = 0;
    /// Whether there is a row of that number; looks no further than it must.
    [[nodiscard]] virtual bool hasRow(qsizetype row) = 0;
    [[nodiscard]] virtual qsizetype rowCount() = 0;
    /// The number of the last row; there is one.
    [[nodiscard]] virtual qsizetype lastRow() = 0;
    /// 3167 when the row was deleted meanwhile. The row is read when it was not the last one read.
    [[nodiscard]] virtual runtime::Value value(qsizetype row, int field) = 0;
    /// Reads the row again where it can have changed; 3167 as above.
    virtual void readAgain(qsizetype row) = 0;

    /// Why the rows cannot be changed; empty when they can.
    [[nodiscard]] virtual QString whyReadOnly() const = 0;
    /// What the field will hold when the value is set.
    [[nodiscard]] virtual runtime::Value stored(int field, const runtime::Value& value) const = 0;
    /// The new row joins as the last one.
    virtual void add(const FieldValues& values) = 0;
    virtual void change(qsizetype row, const FieldValues& values) = 0;
};

} // namespace data
