#include "data/functions/field_conversions.h"
#include "data/functions/function.h"
#include "runtime/conversions.h"

#include <array>
#include <cmath>
#include <optional>

namespace data {
namespace {

using runtime::Value;

double numberOf(Arguments arguments)
{
    return runtime::toDouble(arguments[0]);
}

/// The result as a whole number where the argument was one.
Value likeArgument(const Value& argument, double number)
{
    if (std::holds_alternative<qint32>(argument) || std::holds_alternative<bool>(argument)) {
        if (const std::optional<qint32> whole = runtime::asLong(number)) {
            return *whole;
        }
    }
    if (std::holds_alternative<runtime::Date>(argument)) {
        return runtime::Date{number};
    }
    return finite(number);
}

Value absolute(Arguments arguments)
{
    return likeArgument(arguments[0], std::abs(numberOf(arguments)));
}

Value floorOf(Arguments arguments)
{
    return likeArgument(arguments[0], std::floor(numberOf(arguments)));
}

Value truncated(Arguments arguments)
{
    return likeArgument(arguments[0], std::trunc(numberOf(arguments)));
}

Value sign(Arguments arguments)
{
    const double number = numberOf(arguments);
    return number > 0 ? 1 : (number < 0 ? -1 : 0);
}

Value squareRoot(Arguments arguments)
{
    if (numberOf(arguments) < 0) {
        refuseArgument();
    }
    return std::sqrt(numberOf(arguments));
}

Value exponential(Arguments arguments)
{
    return finite(std::exp(numberOf(arguments)));
}

Value logarithm(Arguments arguments)
{
    if (numberOf(arguments) <= 0) {
        refuseArgument();
    }
    return std::log(numberOf(arguments));
}

Value rounded(Arguments arguments)
{
    const qint32 places = arguments.size() > 1 ? countOf(arguments[1], 0) : 0;
    return likeArgument(arguments[0], roundedToEven(numberOf(arguments), places));
}

Value sine(Arguments arguments)
{
    return std::sin(numberOf(arguments));
}
Value cosine(Arguments arguments)
{
    return std::cos(numberOf(arguments));
}
Value tangent(Arguments arguments)
{
    return finite(std::tan(numberOf(arguments)));
}
Value arcTangent(Arguments arguments)
{
    return std::atan(numberOf(arguments));
}

/// A number's own type; texts become Double.
ExpressionType likeFirst(std::span<const ExpressionType> arguments)
{
    const ExpressionType first = arguments.front();
    if (first.is(FieldType::Boolean)) {
        return typeOf(FieldType::Long);
    }
    return first.isNumber() || first.is(FieldType::Date) || !first.isKnown() ? first : typeOf(FieldType::Double);
}

constexpr std::array<Function, 12> kFunctions{{
    {u"abs", 1, 1, Nulls::Pass, likeFirst, absolute},
    {u"int", 1, 1, Nulls::Pass, likeFirst, floorOf},
    {u"fix", 1, 1, Nulls::Pass, likeFirst, truncated},
    {u"round", 1, 2, Nulls::Pass, likeFirst, rounded},
    {u"sgn", 1, 1, Nulls::Pass, always<FieldType::Integer>, sign},
    {u"sqr", 1, 1, Nulls::Pass, always<FieldType::Double>, squareRoot},
    {u"exp", 1, 1, Nulls::Pass, always<FieldType::Double>, exponential},
    {u"log", 1, 1, Nulls::Pass, always<FieldType::Double>, logarithm},
    {u"sin", 1, 1, Nulls::Pass, always<FieldType::Double>, sine},
    {u"cos", 1, 1, Nulls::Pass, always<FieldType::Double>, cosine},
    {u"tan", 1, 1, Nulls::Pass, always<FieldType::Double>, tangent},
    {u"atn", 1, 1, Nulls::Pass, always<FieldType::Double>, arcTangent},
}};

} // namespace

std::span<const Function> numberFunctions()
{
    return kFunctions;
}

} // namespace data
