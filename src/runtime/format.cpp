#include "runtime/format.h"

#include "runtime/conversions.h"
#include "runtime/date_pattern.h"
#include "runtime/date_text.h"
#include "runtime/number_pattern.h"
#include "runtime/number_text.h"

#include <cmath>

namespace runtime {
namespace {

QString formatAsNumber(const Value& value, const QString& pattern, const QLocale& locale)
{
    if (const auto* text = std::get_if<QString>(&value)) {
        const std::optional<double> number = parseNumber(*text, locale);
        return number ? formatNumber(*number, pattern, locale) : *text;
    }
    return formatNumber(toDouble(value), pattern, locale);
}

QString formatAsDate(const Value& value, const QString& pattern, const QLocale& locale)
{
    if (const auto* text = std::get_if<QString>(&value)) {
        const std::optional<Date> date = parseDate(*text, locale);
        return date ? formatDate(*date, pattern, locale) : *text;
    }
    return formatDate(toDate(value), pattern, locale);
}

} // namespace

QString format(const Value& value, const QString& pattern)
{
    if (isNull(value)) {
        return {};
    }
    if (pattern.isEmpty()) {
        return toText(value);
    }
    const QLocale locale = currentLocale();
    if (isNumberPattern(pattern)) {
        return formatAsNumber(value, pattern, locale);
    }
    return isDatePattern(pattern) ? formatAsDate(value, pattern, locale) : pattern;
}

} // namespace runtime
