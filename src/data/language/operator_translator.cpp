// Operators: the part of ExpressionTranslator that knows them.
#include "data/language/expression_translator.h"

#include <limits>

namespace data {
namespace {

QString symbolOf(BinaryOperator op)
{
    using enum BinaryOperator;
    switch (op) {
    case Multiply:
        return QStringLiteral("*");
    case Add:
        return QStringLiteral("+");
    case Subtract:
        return QStringLiteral("-");
    case Equal:
        return QStringLiteral("=");
    case NotEqual:
        return QStringLiteral("<>");
    case Less:
        return QStringLiteral("<");
    case LessOrEqual:
        return QStringLiteral("<=");
    case Greater:
        return QStringLiteral(">");
    case GreaterOrEqual:
        return QStringLiteral(">=");
    default:
        return {};
    }
}

Rank oneTighter(Rank rank)
{
    return static_cast<Rank>(static_cast<int>(rank) + 1);
}

} // namespace

TypedSql ExpressionTranslator::operatorCall(const Function& function, std::initializer_list<TypedSql> operands)
{
    QStringList arguments;
    for (const TypedSql& operand : operands) {
        arguments.append(argument(operand));
    }
    return {QStringLiteral("op_%1(%2)").arg(function.name, arguments.join(QStringLiteral(", "))),
            function.resultType({})};
}

TypedSql ExpressionTranslator::negation(const Negation& negation, Scope& scope)
{
    const TypedSql operand = value(*negation.operand, scope);
    if (operand.literal) {
        if (const qint32* number = std::get_if<qint32>(&*operand.literal)) {
            return *number == std::numeric_limits<qint32>::min() ? literal(-static_cast<double>(*number))
                                                                 : literal(-*number);
        }
        if (const double* number = std::get_if<double>(&*operand.literal)) {
            return literal(-*number);
        }
    }
    if (!operand.type.isNumber() && !operand.type.is(FieldType::Date)) {
        return operatorCall(operators::kNegate, {operand});
    }
    const ExpressionType type = operand.type.isNumber() ? sumType(operand.type, typeOf(FieldType::Byte)) : operand.type;
    return {QStringLiteral("-(%1)").arg(operand.sql), type, Rank::Product};
}

TypedSql ExpressionTranslator::binary(const Binary& binary, Scope& scope)
{
    using enum BinaryOperator;
    switch (binary.op) {
    case Equal:
    case NotEqual:
    case Less:
    case LessOrEqual:
    case Greater:
    case GreaterOrEqual:
        return comparison(symbolOf(binary.op), value(*binary.left, scope), value(*binary.right, scope));
    case Like:
        return operatorCall(operators::kLike, {value(*binary.left, scope), value(*binary.right, scope)});
    case And:
    case Or:
    case Xor:
    case Eqv:
    case Imp:
        return logical(binary, scope);
    default:
        return arithmetic(binary, scope);
    }
}

/// Numbers and dates are left to SQLite's own operators, which compute whole numbers in 64 bits and all others as
/// doubles, as Jet does; everything that may fail or convert goes to ours.
TypedSql ExpressionTranslator::arithmetic(const Binary& binary, Scope& scope)
{
    using enum BinaryOperator;
    const TypedSql left = value(*binary.left, scope);
    const TypedSql right = value(*binary.right, scope);
    const auto computes = [](ExpressionType type) { return type.isNumber() || type.is(FieldType::Date); };
    const bool native = computes(left.type) && computes(right.type);
    const Rank rank = binary.op == Multiply ? Rank::Product : Rank::Sum;
    const auto nativeCall = [&](ExpressionType type) {
        return TypedSql{wrapped(left, rank) + u' ' + symbolOf(binary.op) + u' ' + wrapped(right, oneTighter(rank)),
                        type, rank};
    };
    switch (binary.op) {
    case Add: {
        const ExpressionType type = sumType(left.type, right.type);
        TypedSql result = native ? nativeCall(type) : operatorCall(operators::kAdd, {left, right});
        result.type = type;
        return result;
    }
    case Subtract: {
        const ExpressionType type = differenceType(left.type, right.type);
        TypedSql result = native ? nativeCall(type) : operatorCall(operators::kSubtract, {left, right});
        result.type = type;
        return result;
    }
    case Multiply:
        return native ? nativeCall(productType(left.type, right.type))
                      : operatorCall(operators::kMultiply, {left, right});
    case Divide:
        return operatorCall(operators::kDivide, {left, right});
    case WholeDivide:
        return operatorCall(operators::kWholeDivide, {left, right});
    case Modulo:
        return operatorCall(operators::kModulo, {left, right});
    default:
        return operatorCall(operators::kPower, {left, right});
    }
}

/// A chain of & is one call, so that long chains do not nest.
TypedSql ExpressionTranslator::concatenation(const Expression& expression, Scope& scope)
{
    constexpr qsizetype kMostArguments = 90;
    QStringList operands;
    flatten(expression, scope, operands);
    const QString call = QStringLiteral("op_concatenate(%1)");
    while (operands.size() > kMostArguments) {
        const QString joined = call.arg(operands.mid(0, kMostArguments).join(QStringLiteral(", ")));
        operands = QStringList{joined} + operands.mid(kMostArguments);
    }
    return {call.arg(operands.join(QStringLiteral(", "))), typeOf(FieldType::Text)};
}

void ExpressionTranslator::flatten(const Expression& expression, Scope& scope, QStringList& operands)
{
    const auto* chain = std::get_if<Binary>(&expression.node);
    if (chain != nullptr && chain->op == BinaryOperator::Concatenate) {
        flatten(*chain->left, scope, operands);
        operands.append(argument(value(*chain->right, scope)));
    } else {
        operands.append(argument(value(expression, scope)));
    }
}

void ExpressionTranslator::requireComparable(ExpressionType left, ExpressionType right)
{
    if (!areComparable(left, right)) {
        throw runtime::RunTimeError(runtime::ErrorNumber::CriteriaTypeMismatch)
            .withHint(QStringLiteral("A text is compared with a number or a date."));
    }
}

TypedSql ExpressionTranslator::comparison(const QString& symbol, const TypedSql& left, const TypedSql& right)
{
    requireComparable(left.type, right.type);
    const bool texts = (left.type.isText() || !left.type.isKnown()) && (right.type.isText() || !right.type.isKnown());
    const QString leftSql = texts ? collated(left) : wrapped(left, Rank::Sum);
    return truth(leftSql + u' ' + symbol + u' ' + wrapped(right, Rank::Sum), Rank::Comparison);
}

TypedSql ExpressionTranslator::logical(const Binary& binary, Scope& scope)
{
    using enum BinaryOperator;
    const TypedSql left = condition(*binary.left, scope);
    const TypedSql right = condition(*binary.right, scope);
    const QString notLeft = QStringLiteral("(NOT %1)").arg(wrapped(left, Rank::Comparison));
    const QString notRight = QStringLiteral("(NOT %1)").arg(wrapped(right, Rank::Comparison));
    switch (binary.op) {
    case And:
        return truth(wrapped(left, Rank::And) + QStringLiteral(" AND ") + wrapped(right, Rank::Not), Rank::And);
    case Or:
        return truth(wrapped(left, Rank::Or) + QStringLiteral(" OR ") + wrapped(right, Rank::And), Rank::Or);
    case Xor:
        return truth(notLeft + QStringLiteral(" <> ") + notRight, Rank::Comparison);
    case Eqv:
        return truth(notLeft + QStringLiteral(" = ") + notRight, Rank::Comparison);
    default:
        return truth(notLeft + QStringLiteral(" OR ") + wrapped(right, Rank::And), Rank::Or);
    }
}

} // namespace data
