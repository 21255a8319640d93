#include "data/functions/function.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

#include <array>
#include <cmath>
#include <limits>

namespace data {
namespace {

using runtime::Value;

Value toBoolean(Arguments arguments)
{
    if (const QString* text = std::get_if<QString>(&arguments[0])) {
        if (text->trimmed().compare(u"true", Qt::CaseInsensitive) == 0) {
            return true;
        }
        if (text->trimmed().compare(u"false", Qt::CaseInsensitive) == 0) {
            return false;
        }
    }
    return runtime::toDouble(arguments[0]) != 0;
}

Value toByte(Arguments arguments)
{
    const qint32 number = runtime::toLong(arguments[0]);
    if (number < 0 || number > std::numeric_limits<quint8>::max()) {
        throw runtime::RunTimeError(runtime::ErrorNumber::Overflow);
    }
    return number;
}

Value toInteger(Arguments arguments)
{
    return qint32{runtime::toInteger(arguments[0])};
}

Value toLong(Arguments arguments)
{
    return runtime::toLong(arguments[0]);
}

Value toDouble(Arguments arguments)
{
    return runtime::toDouble(arguments[0]);
}

Value toSingle(Arguments arguments)
{
    const double number = runtime::toDouble(arguments[0]);
    if (std::abs(number) > std::numeric_limits<float>::max()) {
        throw runtime::RunTimeError(runtime::ErrorNumber::Overflow);
    }
    return double{static_cast<float>(number)};
}

/// Four decimal places, halves to even.
Value toCurrency(Arguments arguments)
{
    constexpr double kMost = 922337203685477.0;
    const double number = runtime::toDouble(arguments[0]);
    if (std::abs(number) > kMost) {
        throw runtime::RunTimeError(runtime::ErrorNumber::Overflow);
    }
    return functionNamed(u"round")->evaluate(std::array<Value, 2>{Value(number), Value(4)});
}

Value toDate(Arguments arguments)
{
    return runtime::toDate(arguments[0]);
}

Value toText(Arguments arguments)
{
    return runtime::toText(arguments[0]);
}

Value formatted(Arguments arguments)
{
    if (arguments.size() == 1) {
        return runtime::toText(arguments[0]);
    }
    return runtime::format(arguments[0], runtime::toText(arguments[1]));
}

Value isNullValue(Arguments arguments)
{
    return runtime::isNull(arguments[0]);
}

Value isNumericValue(Arguments arguments)
{
    if (const QString* text = std::get_if<QString>(&arguments[0])) {
        return runtime::isNumeric(*text);
    }
    return std::holds_alternative<qint32>(arguments[0]) || std::holds_alternative<double>(arguments[0]) ||
           std::holds_alternative<bool>(arguments[0]);
}

Value isDateValue(Arguments arguments)
{
    if (const QString* text = std::get_if<QString>(&arguments[0])) {
        return runtime::isDate(*text);
    }
    return std::holds_alternative<runtime::Date>(arguments[0]);
}

constexpr std::array<Function, 14> kFunctions{{
    {u"cbool", 1, 1, Nulls::Refuse, always<FieldType::Boolean>, toBoolean},
    {u"cbyte", 1, 1, Nulls::Refuse, always<FieldType::Byte>, toByte},
    {u"cint", 1, 1, Nulls::Refuse, always<FieldType::Integer>, toInteger},
    {u"clng", 1, 1, Nulls::Refuse, always<FieldType::Long>, toLong},
    {u"cdbl", 1, 1, Nulls::Refuse, always<FieldType::Double>, toDouble},
    {u"csng", 1, 1, Nulls::Refuse, always<FieldType::Single>, toSingle},
    {u"ccur", 1, 1, Nulls::Refuse, always<FieldType::Currency>, toCurrency},
    {u"cdate", 1, 1, Nulls::Refuse, always<FieldType::Date>, toDate},
    {u"cvdate", 1, 1, Nulls::Pass, always<FieldType::Date>, toDate},
    {u"cstr", 1, 1, Nulls::Refuse, always<FieldType::Text>, toText},
    {u"format", 1, 2, Nulls::Own, always<FieldType::Text>, formatted},
    {u"isnull", 1, 1, Nulls::Own, always<FieldType::Boolean>, isNullValue},
    {u"isnumeric", 1, 1, Nulls::Own, always<FieldType::Boolean>, isNumericValue},
    {u"isdate", 1, 1, Nulls::Own, always<FieldType::Boolean>, isDateValue},
}};

} // namespace

std::span<const Function> conversionFunctions()
{
    return kFunctions;
}

} // namespace data
