#include "data/functions/field_conversions.h"
#include "data/functions/function.h"
#include "data/functions/like_pattern.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace data {
namespace {

using runtime::Value;

[[noreturn]] void fail(runtime::ErrorNumber number)
{
    throw runtime::RunTimeError(number);
}

bool isWhole(const Value& value)
{
    return std::holds_alternative<qint32>(value) || std::holds_alternative<bool>(value);
}

template <typename Operation>
Value arithmetic(Arguments arguments, Operation operation)
{
    const double result = finite(operation(runtime::toDouble(arguments[0]), runtime::toDouble(arguments[1])));
    if (isWhole(arguments[0]) && isWhole(arguments[1])) {
        if (const std::optional<qint32> whole = runtime::asLong(result)) {
            return *whole;
        }
    }
    return result;
}

Value concatenateValues(Arguments arguments)
{
    if (std::all_of(arguments.begin(), arguments.end(), runtime::isNull)) {
        return runtime::Null{};
    }
    QString result;
    for (const Value& argument : arguments) {
        result += runtime::toText(argument);
    }
    return result;
}

Value addValues(Arguments arguments)
{
    if (std::holds_alternative<QString>(arguments[0]) && std::holds_alternative<QString>(arguments[1])) {
        return std::get<QString>(arguments[0]) + std::get<QString>(arguments[1]);
    }
    return arithmetic(arguments, [](double left, double right) { return left + right; });
}

Value subtractValues(Arguments arguments)
{
    return arithmetic(arguments, [](double left, double right) { return left - right; });
}

Value multiplyValues(Arguments arguments)
{
    return arithmetic(arguments, [](double left, double right) { return left * right; });
}

Value divideValues(Arguments arguments)
{
    const double divisor = runtime::toDouble(arguments[1]);
    if (divisor == 0) {
        fail(runtime::ErrorNumber::DivisionByZero);
    }
    return finite(runtime::toDouble(arguments[0]) / divisor);
}

/// The operands of a division of whole numbers, in 64 bits, so that the smallest number over -1 does not trap.
struct WholeOperands {
    qint64 left = 0;
    qint64 right = 0;

    explicit WholeOperands(Arguments arguments)
        : left(runtime::toLong(arguments[0])), right(runtime::toLong(arguments[1]))
    {
        if (right == 0) {
            fail(runtime::ErrorNumber::DivisionByZero);
        }
    }
};

Value wholeDivideValues(Arguments arguments)
{
    const WholeOperands operands(arguments);
    const qint64 quotient = operands.left / operands.right;
    if (quotient > std::numeric_limits<qint32>::max()) {
        fail(runtime::ErrorNumber::Overflow);
    }
    return static_cast<qint32>(quotient);
}

Value moduloValues(Arguments arguments)
{
    const WholeOperands operands(arguments);
    return static_cast<qint32>(operands.left % operands.right);
}

Value powerOfValues(Arguments arguments)
{
    const double base = runtime::toDouble(arguments[0]);
    const double exponent = runtime::toDouble(arguments[1]);
    if ((base < 0 && exponent != std::trunc(exponent)) || (base == 0 && exponent < 0)) {
        refuseArgument();
    }
    return finite(std::pow(base, exponent));
}

Value negateValue(Arguments arguments)
{
    return subtractValues(std::array<Value, 2>{Value(0), arguments[0]});
}

/// A statement asks of row after row whether it is like one pattern, which may be a long one: the last one is kept.
const LikePattern& likePattern(const QString& text)
{
    struct Kept {
        QString text;
        LikePattern pattern;
    };
    static thread_local std::optional<Kept> kept;
    if (!kept || kept->text != text) {
        kept = Kept{text, LikePattern(text)};
    }
    return kept->pattern;
}

Value isLike(Arguments arguments)
{
    return likePattern(runtime::toText(arguments[1])).matches(runtime::toText(arguments[0]));
}

Value truthOf(Arguments arguments)
{
    return toBoolean(arguments[0]);
}

Value textOf(Arguments arguments)
{
    return runtime::toText(arguments[0]);
}

ExpressionType unknown(std::span<const ExpressionType>)
{
    return {};
}

constexpr int kNoLimit = 100;

} // namespace

namespace operators {

constinit const Function kConcatenate{u"concatenate",   1, kNoLimit, Nulls::Own, always<FieldType::Text>,
                                      concatenateValues};
constinit const Function kAdd{u"add", 2, 2, Nulls::Pass, unknown, addValues};
constinit const Function kSubtract{u"subtract", 2, 2, Nulls::Pass, always<FieldType::Double>, subtractValues};
constinit const Function kMultiply{u"multiply", 2, 2, Nulls::Pass, always<FieldType::Double>, multiplyValues};
constinit const Function kDivide{u"divide", 2, 2, Nulls::Pass, always<FieldType::Double>, divideValues};
constinit const Function kWholeDivide{u"whole_divide", 2, 2, Nulls::Pass, always<FieldType::Long>, wholeDivideValues};
constinit const Function kModulo{u"modulo", 2, 2, Nulls::Pass, always<FieldType::Long>, moduloValues};
constinit const Function kPower{u"power", 2, 2, Nulls::Pass, always<FieldType::Double>, powerOfValues};
constinit const Function kNegate{u"negate", 1, 1, Nulls::Pass, always<FieldType::Double>, negateValue};
constinit const Function kLike{u"like", 2, 2, Nulls::Pass, always<FieldType::Boolean>, isLike};
constinit const Function kTruth{u"truth", 1, 1, Nulls::Pass, always<FieldType::Boolean>, truthOf};
constinit const Function kAsText{u"as_text", 1, 1, Nulls::Pass, always<FieldType::Text>, textOf};

std::span<const Function* const> all()
{
    static constexpr std::array<const Function*, 12> kAll{&kConcatenate, &kAdd,         &kSubtract, &kMultiply,
                                                          &kDivide,      &kWholeDivide, &kModulo,   &kPower,
                                                          &kNegate,      &kLike,        &kTruth,    &kAsText};
    return kAll;
}

} // namespace operators
} // namespace data
