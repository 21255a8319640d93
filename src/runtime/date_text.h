// Dates and times as typed and as shown.
#pragma once

#include "runtime/value.h"

#include <QLocale>
#include <QString>
#include <QStringView>

#include <optional>

namespace runtime {

/// The date, the date and time, or the time that the whole text is; nothing for any other text. Day first always; the
/// parts are separated by / - . or blanks. A year has four digits, or two: 00 to 29 are 2000 to 2029, 30 to 99 are 1930
/// to 1999. (One or three are a slip, not a year.) A month is a number or a name, short or full, of the locale or
/// English.
[[nodiscard]] std::optional<Date> parseDate(QStringView text, const QLocale& locale);

/// dd/mm/yyyy hh:mm:ss, without the time at exactly midnight.
[[nodiscard]] QString dateToText(Date date);

} // namespace runtime
