// Calls of functions: the part of ExpressionTranslator that knows them.
#include "data/language/aggregates.h"
#include "data/language/expression_translator.h"
#include "data/language/sql_error.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace data {
namespace {

using runtime::Value;

bool isCallOf(const FunctionCall& call, QStringView name)
{
    return name.compare(call.name, Qt::CaseInsensitive) == 0;
}

} // namespace

runtime::RunTimeError ExpressionTranslator::wrongArguments(const Expression& expression) const
{
    return expressionError(QStringLiteral("Wrong number of arguments used with function"), *state_.sql,
                           expression.place);
}

TypedSql ExpressionTranslator::function(const FunctionCall& call, const Expression& expression, Scope& scope)
{
    if (aggregateNamed(call.name) != nullptr) {
        return aggregate(call, expression, scope);
    }
    if (call.star) {
        throw syntaxError(*state_.sql, expression.place.begin);
    }
    if (std::optional<TypedSql> special = specialFunction(call, expression, scope)) {
        return *std::move(special);
    }
    const Function* function = functionNamed(call.name);
    if (function == nullptr) {
        throw runtime::RunTimeError(runtime::ErrorNumber::UndefinedFunction,
                                    QStringLiteral("Undefined function '%1' in expression.").arg(call.name));
    }
    const auto count = static_cast<int>(call.arguments.size());
    if (count < function->fewest || count > function->most) {
        throw wrongArguments(expression);
    }
    return ordinaryCall(*function, call, scope);
}

/// A call whose arguments are all known is evaluated here, so that a malformed date is reported although no row is
/// read, and so that the planner sees a constant.
TypedSql ExpressionTranslator::ordinaryCall(const Function& function, const FunctionCall& call, Scope& scope)
{
    QStringList arguments;
    std::vector<ExpressionType> types;
    std::vector<Value> values;
    for (const ExpressionPtr& expression : call.arguments) {
        const TypedSql part = value(*expression, scope);
        arguments.append(argument(part));
        types.push_back(part.type);
        if (part.literal) {
            values.push_back(*part.literal);
        }
    }
    if (values.size() == types.size()) {
        TypedSql result = literal(data::call(function, values));
        result.type = function.resultType(types);
        return result;
    }
    return {QStringLiteral("fn_%1(%2)").arg(function.name, arguments.join(QStringLiteral(", "))),
            function.resultType(types)};
}

TypedSql ExpressionTranslator::aggregate(const FunctionCall& call, const Expression& expression, Scope& scope)
{
    if (!scope.aggregatesAllowed) {
        throw expressionError(QStringLiteral("Cannot have aggregate function"), *state_.sql, expression.place);
    }
    const Aggregate& function = *aggregateNamed(call.name);
    const PerRow perRow(scope);
    if (call.star) {
        if (function.result != Aggregate::Result::Count) {
            throw syntaxError(*state_.sql, expression.place.begin);
        }
        return {QStringLiteral("count(*)"), function.resultType({})};
    }
    if (call.arguments.size() != 1) {
        throw wrongArguments(expression);
    }
    const TypedSql part = value(*call.arguments.front(), scope);
    if (function.needsNumber && part.type.isText()) {
        throw runtime::RunTimeError(runtime::ErrorNumber::CriteriaTypeMismatch);
    }
    return {QStringLiteral("%1(%2)").arg(function.sqlName, part.type.isText() ? collated(part) : part.sql),
            function.resultType(part.type)};
}

/// Functions that evaluate only the arguments that they need, and those that ask the clock.
std::optional<TypedSql> ExpressionTranslator::specialFunction(const FunctionCall& call, const Expression& expression,
                                                              Scope& scope)
{
    const std::size_t count = call.arguments.size();
    const auto require = [&](bool right) {
        if (!right) {
            throw wrongArguments(expression);
        }
    };
    if (isCallOf(call, u"iif")) {
        require(count == 3);
        return alternatives(call, scope);
    }
    if (isCallOf(call, u"nz")) {
        require(count == 1 || count == 2);
        const TypedSql tested = value(*call.arguments[0], scope);
        const TypedSql other = count == 2               ? value(*call.arguments[1], scope)
                               : tested.type.isNumber() ? literal(0)
                                                        : literal(QString());
        const ExpressionType type = commonType(tested.type, other.type);
        return TypedSql{QStringLiteral("coalesce(%1, %2)").arg(asType(tested, type), asType(other, type)), type};
    }
    if (isCallOf(call, u"choose")) {
        require(count >= 2);
        return choose(call, scope);
    }
    if (isCallOf(call, u"switch")) {
        require(count >= 2 && count % 2 == 0);
        return switchOf(call, scope);
    }
    if (isCallOf(call, u"now")) {
        require(count == 0);
        return literal(state_.now);
    }
    if (isCallOf(call, u"date")) {
        require(count == 0);
        return literal(runtime::Date{std::floor(state_.now.days)});
    }
    if (isCallOf(call, u"time")) {
        require(count == 0);
        return literal(runtime::Date{state_.now.days - std::floor(state_.now.days)});
    }
    return std::nullopt;
}

TypedSql ExpressionTranslator::alternatives(const FunctionCall& call, Scope& scope)
{
    const TypedSql test = condition(*call.arguments[0], scope);
    const TypedSql yes = value(*call.arguments[1], scope);
    const TypedSql no = value(*call.arguments[2], scope);
    const ExpressionType type = commonType(yes.type, no.type);
    return {QStringLiteral("CASE WHEN %1 THEN %2 ELSE %3 END").arg(test.sql, asType(yes, type), asType(no, type)),
            type};
}

TypedSql ExpressionTranslator::choose(const FunctionCall& call, Scope& scope)
{
    const TypedSql index = value(*call.arguments[0], scope);
    std::vector<TypedSql> values;
    ExpressionType type;
    for (std::size_t i = 1; i < call.arguments.size(); ++i) {
        values.push_back(value(*call.arguments[i], scope));
        type = commonType(type, values.back().type);
    }
    QString sql = QStringLiteral("CASE fn_clng(%1)").arg(argument(index));
    for (std::size_t i = 0; i < values.size(); ++i) {
        sql += QStringLiteral(" WHEN %1 THEN %2").arg(i + 1).arg(asType(values[i], type));
    }
    return {sql + QStringLiteral(" END"), type};
}

TypedSql ExpressionTranslator::switchOf(const FunctionCall& call, Scope& scope)
{
    struct Branch {
        TypedSql test;
        TypedSql value;
    };
    std::vector<Branch> branches;
    ExpressionType type;
    for (std::size_t i = 0; i < call.arguments.size(); i += 2) {
        branches.push_back({condition(*call.arguments[i], scope), value(*call.arguments[i + 1], scope)});
        type = commonType(type, branches.back().value.type);
    }
    QString sql = QStringLiteral("CASE");
    for (const Branch& branch : branches) {
        sql += QStringLiteral(" WHEN ") + branch.test.sql + QStringLiteral(" THEN ") + asType(branch.value, type);
    }
    return {sql + QStringLiteral(" END"), type};
}

} // namespace data
