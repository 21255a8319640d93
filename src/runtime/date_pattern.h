// Date patterns such as "dd/mm/yyyy" and "dddd dd mmmm yyyy hh:mm".
#pragma once

#include "runtime/value.h"

#include <QLocale>
#include <QString>

namespace runtime {

/// Whether the pattern names a part of a date or time and has no place for a number's digits.
[[nodiscard]] bool isDatePattern(const QString& pattern);

/// See format(). Letters count without regard to case. A month's name beside a day of the month stands in the form that
/// the language uses there ("05 marca 2002"), else in its own ("marzec 2002").
[[nodiscard]] QString formatDate(Date date, const QString& pattern, const QLocale& locale);

} // namespace runtime
