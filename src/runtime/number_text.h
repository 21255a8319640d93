// Numbers as typed and as shown.
#pragma once

#include <QLocale>
#include <QString>
#include <QStringView>

#include <optional>

namespace runtime {

/// The number that the text is, or nothing: blanks around it, a sign, digits in groups of three or without groups, the
/// locale's decimal sign, an exponent. One too large for a double is infinite. Strict about separators: where the comma
/// is the decimal sign, "1.234" is a group and "5.6" is no number at all; it must never become 56.
[[nodiscard]] std::optional<double> parseNumber(QStringView text, const QLocale& locale);

/// In up to 15 significant digits; with an exponent ("1.5E+20") from 1E+15 on and below 0.00001.
[[nodiscard]] QString numberToText(double number, const QLocale& locale);

} // namespace runtime
