#include "runtime/format.h"

#include "runtime/conversions.h"
#include "runtime/date_pattern.h"
#include "runtime/date_text.h"
#include "runtime/number_pattern.h"

#include <optional>

namespace runtime {
namespace {

QString formatAsDate(const Value& value, const DatePattern& pattern)
{
    if (const auto* text = std::get_if<QString>(&value)) {
        const std::optional<Date> date = parseDate(*text, currentLocale());
        return date ? pattern.format(*date) : *text;
    }
    return pattern.format(toDate(value));
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
    if (isNumberPattern(pattern)) {
        QString text;
        NumberPattern(pattern).append(text, value);
        return text;
    }
    const DatePattern dates(pattern);
    return dates.hasParts() ? formatAsDate(value, dates) : pattern;
}

} // namespace runtime
