// A value as reports and forms handle it: what a field holds, what a text converts to.
#pragma once

#include <QByteArray>
#include <QString>

#include <variant>

namespace runtime {

struct Null {
    bool operator==(const Null&) const = default;
};

/// A date-time: days since 30 December 1899, the fraction the time of day (for a negative number the time is the size
/// of its fraction, counted forward from midnight).
struct Date {
    double days = 0;
    bool operator==(const Date&) const = default;
};

/// Integers of all widths are qint32; single, currency and decimal numbers are double.
using Value = std::variant<Null, bool, qint32, double, Date, QString, QByteArray>;

[[nodiscard]] inline bool isNull(const Value& value)
{
    return std::holds_alternative<Null>(value);
}

} // namespace runtime
