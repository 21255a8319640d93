// Values from text as the user types it, and plain text from values.
#pragma once

#include "runtime/value.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace runtime {

/// The locale in force: decimal sign, names of months and weekdays. QLocale() (the user's) unless a test sets another.
[[nodiscard]] QLocale currentLocale();

/// Whether toDouble would succeed.
[[nodiscard]] bool isNumeric(const QString& text);
/// Whether toDate would succeed: day first in every locale (d/m/yyyy, d/mmm/yyyy, d mmm yyyy, yyyy-mm-dd, each with or
/// without h:mm[:ss], or a time alone); 13 in the month's place is no date. An empty text is no date.
[[nodiscard]] bool isDate(const QString& text);

// Conversions throw RunTimeError: 13 type mismatch, 94 invalid use of null, 6 overflow.
[[nodiscard]] double toDouble(const Value& value);  ///< text: in the locale in force, blanks around it allowed
[[nodiscard]] Date toDate(const Value& value);      ///< text: see isDate; a number counts days
[[nodiscard]] qint32 toLong(const Value& value);    ///< rounds half to even
[[nodiscard]] qint16 toInteger(const Value& value); ///< rounds half to even

/// A whole number as a Long; none where no Long holds it.
[[nodiscard]] std::optional<qint32> asLong(double wholeNumber);

/// A value as plain text: a date-time as dd/mm/yyyy hh:mm:ss, its time left out at exactly midnight; null as ""; a
/// number in up to 15 significant digits with the decimal sign of the locale in force; true and false as "True" and
/// "False"; bytes as hexadecimal digits. A date outside the years 100 to 9999 is an overflow (6).
[[nodiscard]] QString toText(const Value& value);

} // namespace runtime
