#include "data/functions/field_conversions.h"
#include "data/functions/function.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

#include <array>

namespace data {
namespace {

using runtime::Value;

Value booleanOf(Arguments arguments)
{
    return toBoolean(arguments[0]);
}

Value byteOf(Arguments arguments)
{
    return qint32{toByte(arguments[0])};
}

Value integerOf(Arguments arguments)
{
    return qint32{runtime::toInteger(arguments[0])};
}

Value longOf(Arguments arguments)
{
    return runtime::toLong(arguments[0]);
}

Value doubleOf(Arguments arguments)
{
    return runtime::toDouble(arguments[0]);
}

Value singleOf(Arguments arguments)
{
    return double{toSingle(arguments[0])};
}

Value currencyOf(Arguments arguments)
{
    return toCurrency(arguments[0]);
}

Value dateOf(Arguments arguments)
{
    return runtime::toDate(arguments[0]);
}

Value textOf(Arguments arguments)
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
    {u"cbool", 1, 1, Nulls::Refuse, always<FieldType::Boolean>, booleanOf},
    {u"cbyte", 1, 1, Nulls::Refuse, always<FieldType::Byte>, byteOf},
    {u"cint", 1, 1, Nulls::Refuse, always<FieldType::Integer>, integerOf},
    {u"clng", 1, 1, Nulls::Refuse, always<FieldType::Long>, longOf},
    {u"cdbl", 1, 1, Nulls::Refuse, always<FieldType::Double>, doubleOf},
    {u"csng", 1, 1, Nulls::Refuse, always<FieldType::Single>, singleOf},
    {u"ccur", 1, 1, Nulls::Refuse, always<FieldType::Currency>, currencyOf},
    {u"cdate", 1, 1, Nulls::Refuse, always<FieldType::Date>, dateOf},
    {u"cvdate", 1, 1, Nulls::Pass, always<FieldType::Date>, dateOf},
    {u"cstr", 1, 1, Nulls::Refuse, always<FieldType::Text>, textOf},
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
