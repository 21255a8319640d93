#include "data/language/expression_translator.h"

#include "data/language/aggregates.h"
#include "data/language/expression_walk.h"
#include "data/language/sql_error.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace data {
namespace {

using runtime::Value;

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

TypedSql truth(QString sql, Rank rank)
{
    return {std::move(sql), typeOf(FieldType::Boolean), rank, true, std::nullopt, -1};
}

TypedSql computed(QString sql, ExpressionType type, Rank rank = Rank::Atom)
{
    return {std::move(sql), type, rank, false, std::nullopt, -1};
}

Rank oneTighter(Rank rank)
{
    return static_cast<Rank>(static_cast<int>(rank) + 1);
}

} // namespace

QString TranslationState::parameter(const Value& value)
{
    std::size_t index = 0;
    while (index < parameters.size() && parameters[index] != value) {
        ++index;
    }
    if (index == parameters.size()) {
        parameters.push_back(value);
    }
    return u'?' + QString::number(index + 1);
}

bool containsAggregate(const Expression& expression)
{
    const auto* call = std::get_if<FunctionCall>(&expression.node);
    bool found = call != nullptr && aggregateNamed(call->name) != nullptr;
    forEachPart(expression, [&](const Expression& part) { found = found || containsAggregate(part); });
    return found;
}

// --- Forms of an expression --------------------------------------------------------------------------------------

QString ExpressionTranslator::wrapped(const TypedSql& part, Rank least)
{
    return part.rank < least ? u'(' + part.sql + u')' : part.sql;
}

QString ExpressionTranslator::collated(const TypedSql& part)
{
    return wrapped(part, Rank::Atom) + QStringLiteral(" COLLATE ") + kTextCollation;
}

QString ExpressionTranslator::argument(const TypedSql& part)
{
    if (part.type.is(FieldType::Date)) {
        return QStringLiteral("as_date(%1)").arg(part.sql);
    }
    if (part.type.is(FieldType::Boolean)) {
        return QStringLiteral("as_boolean(%1)").arg(part.sql);
    }
    return part.sql;
}

TypedSql ExpressionTranslator::asText(const TypedSql& part)
{
    return part.type.isText() ? part : operatorCall(operators::asText(), {part});
}

QString ExpressionTranslator::asType(const TypedSql& part, ExpressionType type)
{
    const bool convert = type.isText() && part.type.isKnown() && !part.type.isText();
    return convert ? asText(part).sql : part.sql;
}

TypedSql ExpressionTranslator::value(const Expression& expression, Scope& scope)
{
    TypedSql result = translated(expression, scope);
    if (!result.isCondition) {
        return result;
    }
    return computed(QStringLiteral("-(%1)").arg(result.sql), typeOf(FieldType::Boolean), Rank::Product);
}

TypedSql ExpressionTranslator::condition(const Expression& expression, Scope& scope)
{
    TypedSql result = translated(expression, scope);
    if (result.isCondition || result.type.isNumber() || result.type.is(FieldType::Date)) {
        return result;
    }
    return operatorCall(operators::truth(), {result});
}

/// In a group, an expression that is grouped by stands for itself, whatever it is made of.
TypedSql ExpressionTranslator::translated(const Expression& expression, Scope& scope)
{
    if (scope.perGroup && !scope.groupKeys.empty() && !std::holds_alternative<Literal>(expression.node) &&
        !containsAggregate(expression)) {
        const PerRow perRow(scope);
        TypedSql candidate = plain(expression, scope);
        for (const QString& key : scope.groupKeys) {
            if (candidate.sql == key) {
                return candidate;
            }
        }
    }
    return plain(expression, scope);
}

TypedSql ExpressionTranslator::plain(const Expression& expression, Scope& scope)
{
    const auto& node = expression.node;
    if (const auto* part = std::get_if<Literal>(&node)) {
        return literal(part->value);
    }
    if (const auto* part = std::get_if<ColumnName>(&node)) {
        return column(*part, expression, scope);
    }
    if (const auto* part = std::get_if<Negation>(&node)) {
        return negation(*part, scope);
    }
    if (const auto* part = std::get_if<NotCondition>(&node)) {
        return truth(QStringLiteral("NOT ") + wrapped(condition(*part->operand, scope), Rank::Comparison), Rank::Not);
    }
    if (const auto* part = std::get_if<Binary>(&node)) {
        return part->op == BinaryOperator::Concatenate ? concatenation(expression, scope) : binary(*part, scope);
    }
    if (const auto* part = std::get_if<Between>(&node)) {
        return between(*part, scope);
    }
    if (const auto* part = std::get_if<InList>(&node)) {
        return inList(*part, scope);
    }
    if (const auto* part = std::get_if<InQuery>(&node)) {
        return inQuery(*part, scope);
    }
    if (const auto* part = std::get_if<IsNull>(&node)) {
        const QString test = part->negated ? QStringLiteral(" IS NOT NULL") : QStringLiteral(" IS NULL");
        return truth(wrapped(value(*part->value, scope), Rank::Sum) + test, Rank::Comparison);
    }
    if (const auto* part = std::get_if<Exists>(&node)) {
        return truth(QStringLiteral("EXISTS (%1)").arg(subquery(*part->query, scope).sql), Rank::Atom);
    }
    if (const auto* part = std::get_if<ScalarQuery>(&node)) {
        return scalarQuery(*part, scope);
    }
    return function(std::get<FunctionCall>(node), expression, scope);
}

// --- Literals and names ------------------------------------------------------------------------------------------

ExpressionType ExpressionTranslator::typeOfValue(const Value& value)
{
    static constexpr std::array<std::optional<FieldType>, 7> kTypes{
        std::nullopt,    FieldType::Boolean, FieldType::Long,  FieldType::Double,
        FieldType::Date, FieldType::Text,    FieldType::Binary};
    static_assert(std::variant_size_v<Value> == kTypes.size());
    return {kTypes[value.index()], 0};
}

TypedSql ExpressionTranslator::literal(const Value& value)
{
    TypedSql result = computed({}, typeOfValue(value));
    result.literal = value;
    if (runtime::isNull(value)) {
        result.sql = QStringLiteral("NULL");
    } else if (const bool* flag = std::get_if<bool>(&value)) {
        result.sql = *flag ? QStringLiteral("(-1)") : QStringLiteral("0");
    } else if (const qint32* number = std::get_if<qint32>(&value)) {
        result.sql = *number < 0 ? QStringLiteral("(%1)").arg(*number) : QString::number(*number);
    } else {
        result.sql = state_.parameter(value);
    }
    return result;
}

TypedSql ExpressionTranslator::column(const ColumnName& name, const Expression& expression, Scope& scope)
{
    for (Scope* here = &scope; here != nullptr; here = here->outer) {
        const Source::Column* found = nullptr;
        for (const Source& source : here->sources) {
            if (!name.source.isEmpty() && !isSameName(source.name, name.source)) {
                continue;
            }
            for (const Source::Column& candidate : source.columns) {
                if (!isSameName(candidate.name, name.name)) {
                    continue;
                }
                if (found != nullptr) {
                    throw runtime::RunTimeError(
                        runtime::ErrorNumber::AmbiguousField,
                        QStringLiteral("The specified field '%1' could refer to more than one table listed in the FROM "
                                       "clause of your SQL statement.")
                            .arg(name.name));
                }
                found = &candidate;
            }
        }
        if (found != nullptr) {
            if (here->perGroup &&
                std::find(here->groupKeys.begin(), here->groupKeys.end(), found->sql) == here->groupKeys.end()) {
                throw runtime::RunTimeError(
                    runtime::ErrorNumber::NotPartOfAggregate,
                    QStringLiteral("You tried to execute a query that does not include the specified expression '%1' "
                                   "as part of an aggregate function.")
                        .arg(state_.sql->mid(expression.place.begin, expression.place.end - expression.place.begin)));
            }
            TypedSql result = computed(found->sql, found->type);
            result.baseColumn = found->baseColumn;
            return result;
        }
        if (name.source.isEmpty() && here->aliases != nullptr) {
            for (const OutputItem& item : *here->aliases) {
                if (isSameName(item.alias, name.name)) {
                    return alias(item, *here);
                }
            }
        }
    }
    const QString full = name.source.isEmpty() ? name.name : name.source + u'.' + name.name;
    if (!state_.unknownNames.contains(full, Qt::CaseInsensitive)) {
        state_.unknownNames.append(full);
    }
    return literal(runtime::Null{});
}

TypedSql ExpressionTranslator::alias(const OutputItem& item, Scope& scope)
{
    constexpr int kDeepest = 16;
    if (scope.aliasDepth >= kDeepest) {
        throw runtime::RunTimeError(
            runtime::ErrorNumber::CircularReference,
            QStringLiteral("Circular reference caused by alias '%1' in query definition's SELECT "
                           "list.")
                .arg(item.alias));
    }
    ++scope.aliasDepth;
    TypedSql result = value(*item.expression, scope);
    --scope.aliasDepth;
    return result;
}

// --- Operators ---------------------------------------------------------------------------------------------------

TypedSql ExpressionTranslator::operatorCall(const Function& function, std::initializer_list<TypedSql> operands)
{
    QStringList arguments;
    for (const TypedSql& operand : operands) {
        arguments.append(argument(operand));
    }
    return computed(QStringLiteral("op_%1(%2)").arg(function.name, arguments.join(QStringLiteral(", "))),
                    function.resultType({}));
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
        return operatorCall(operators::negate(), {operand});
    }
    const ExpressionType type = operand.type.isNumber() ? sumType(operand.type, typeOf(FieldType::Byte)) : operand.type;
    return computed(QStringLiteral("-(%1)").arg(operand.sql), type, Rank::Product);
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
    case Like: {
        TypedSql result = operatorCall(operators::like(), {value(*binary.left, scope), value(*binary.right, scope)});
        result.isCondition = false;
        return result;
    }
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
        return computed(wrapped(left, rank) + u' ' + symbolOf(binary.op) + u' ' + wrapped(right, oneTighter(rank)),
                        type, rank);
    };
    switch (binary.op) {
    case Add: {
        const ExpressionType type = sumType(left.type, right.type);
        TypedSql result = native ? nativeCall(type) : operatorCall(operators::add(), {left, right});
        result.type = type;
        return result;
    }
    case Subtract: {
        const ExpressionType type = differenceType(left.type, right.type);
        TypedSql result = native ? nativeCall(type) : operatorCall(operators::subtract(), {left, right});
        result.type = type;
        return result;
    }
    case Multiply:
        return native ? nativeCall(productType(left.type, right.type))
                      : operatorCall(operators::multiply(), {left, right});
    case Divide:
        return operatorCall(operators::divide(), {left, right});
    case WholeDivide:
        return operatorCall(operators::wholeDivide(), {left, right});
    case Modulo:
        return operatorCall(operators::modulo(), {left, right});
    default:
        return operatorCall(operators::power(), {left, right});
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
    return computed(call.arg(operands.join(QStringLiteral(", "))), typeOf(FieldType::Text));
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

TypedSql ExpressionTranslator::between(const Between& between, Scope& scope)
{
    const TypedSql tested = value(*between.value, scope);
    const TypedSql from = comparison(QStringLiteral(">="), tested, value(*between.low, scope));
    const TypedSql to = comparison(QStringLiteral("<="), tested, value(*between.high, scope));
    const QString both = from.sql + QStringLiteral(" AND ") + to.sql;
    return between.negated ? truth(QStringLiteral("NOT (%1)").arg(both), Rank::Not) : truth(both, Rank::And);
}

TypedSql ExpressionTranslator::inList(const InList& in, Scope& scope)
{
    const TypedSql tested = value(*in.value, scope);
    QStringList list;
    bool texts = tested.type.isText();
    for (const ExpressionPtr& expression : in.list) {
        const TypedSql item = value(*expression, scope);
        requireComparable(tested.type, item.type);
        texts = texts || item.type.isText();
        list.append(item.sql);
    }
    const QString symbol = in.negated ? QStringLiteral(" NOT IN (") : QStringLiteral(" IN (");
    return truth((texts ? collated(tested) : wrapped(tested, Rank::Sum)) + symbol + list.join(QStringLiteral(", ")) +
                     u')',
                 Rank::Comparison);
}

TypedSql ExpressionTranslator::inQuery(const InQuery& in, Scope& scope)
{
    const TypedSql tested = value(*in.value, scope);
    const Relation relation = subquery(*in.query, scope);
    const ExpressionType type = relation.columns.front().type;
    requireComparable(tested.type, type);
    const bool texts = tested.type.isText() || type.isText();
    const QString symbol = in.negated ? QStringLiteral(" NOT IN (") : QStringLiteral(" IN (");
    return truth((texts ? collated(tested) : wrapped(tested, Rank::Sum)) + symbol +
                     QStringLiteral("SELECT c0 FROM (%1))").arg(relation.sql),
                 Rank::Comparison);
}

TypedSql ExpressionTranslator::scalarQuery(const ScalarQuery& scalar, Scope& scope)
{
    const Relation relation = subquery(*scalar.query, scope);
    return computed(QStringLiteral("(SELECT agg_single(c0) FROM (%1))").arg(relation.sql),
                    relation.columns.front().type);
}

} // namespace data
