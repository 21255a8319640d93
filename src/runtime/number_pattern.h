// Number patterns such as "#0.0" and "#0%".
#pragma once

#include <QLocale>
#include <QString>

namespace runtime {

/// Whether the pattern has a place for a digit.
[[nodiscard]] bool isNumberPattern(const QString& pattern);

/// See format(). A comma between digit places groups the digits by three; what is no number (NaN) or infinite shows as
/// plain text.
[[nodiscard]] QString formatNumber(double number, const QString& pattern, const QLocale& locale);

} // namespace runtime
