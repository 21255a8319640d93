#include "data/language/expression_translator.h"

#include "data/language/aggregates.h"
#include "data/language/sql_error.h"

#include <algorithm>
#include <array>

namespace data {
namespace {

/// The column that the name means, or null. Throws AmbiguousField where several sources have it.
const Source::Column* columnNamed(const ColumnName& name, const std::vector<Source>& sources)
{
    const Source::Column* found = nullptr;
    for (const Source& source : sources) {
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
    return found;
}

/// The output column whose alias the name is, or null.
const OutputItem* aliasNamed(const ColumnName& name, const Scope& scope)
{
    if (scope.aliases == nullptr || !name.source.isEmpty()) {
        return nullptr;
    }
    const auto found = std::find_if(scope.aliases->begin(), scope.aliases->end(),
                                    [&](const OutputItem& item) { return isSameName(item.alias, name.name); });
    return found == scope.aliases->end() ? nullptr : &*found;
}

bool isGroupKey(const QString& sql, const Scope& scope)
{
    return std::find(scope.groupKeys.begin(), scope.groupKeys.end(), sql) != scope.groupKeys.end();
}

} // namespace

using runtime::Value;

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
    return part.type.isText() ? part : operatorCall(operators::kAsText, {part});
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
    return {QStringLiteral("-(%1)").arg(result.sql), typeOf(FieldType::Boolean), Rank::Product};
}

TypedSql ExpressionTranslator::condition(const Expression& expression, Scope& scope)
{
    TypedSql result = translated(expression, scope);
    if (result.isCondition || result.type.isNumber() || result.type.is(FieldType::Date)) {
        return result;
    }
    return operatorCall(operators::kTruth, {result});
}

/// In a group, an expression that is grouped by stands for itself, whatever it is made of.
TypedSql ExpressionTranslator::translated(const Expression& expression, Scope& scope)
{
    if (scope.perGroup && !scope.groupKeys.empty() && !std::holds_alternative<Literal>(expression.node) &&
        !containsAggregate(expression)) {
        const PerRow perRow(scope);
        TypedSql candidate = plain(expression, scope);
        if (isGroupKey(candidate.sql, scope)) {
            return candidate;
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
    TypedSql result{.sql = {}, .type = typeOfValue(value), .literal = value};
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
        if (const Source::Column* found = columnNamed(name, here->sources)) {
            if (here->perGroup && !isGroupKey(found->sql, *here)) {
                throw runtime::RunTimeError(
                    runtime::ErrorNumber::NotPartOfAggregate,
                    QStringLiteral("You tried to execute a query that does not include the specified expression '%1' "
                                   "as part of an aggregate function.")
                        .arg(state_.sql->mid(expression.place.begin, expression.place.end - expression.place.begin)));
            }
            return {.sql = found->sql, .type = found->type, .baseColumn = found->baseColumn};
        }
        if (const OutputItem* item = aliasNamed(name, *here)) {
            return alias(*item, *here);
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

// --- Tests -------------------------------------------------------------------------------------------------------

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
    return membership(tested, texts, in.negated, list.join(QStringLiteral(", ")));
}

TypedSql ExpressionTranslator::inQuery(const InQuery& in, Scope& scope)
{
    const TypedSql tested = value(*in.value, scope);
    const Relation relation = subqueryOfOneColumn(*in.query, scope);
    const ExpressionType type = relation.columns.front().type;
    requireComparable(tested.type, type);
    return membership(tested, tested.type.isText() || type.isText(), in.negated,
                      QStringLiteral("SELECT c0 FROM (%1)").arg(relation.sql));
}

TypedSql ExpressionTranslator::membership(const TypedSql& tested, bool asTexts, bool negated, const QString& candidates)
{
    return truth((asTexts ? collated(tested) : wrapped(tested, Rank::Sum)) +
                     (negated ? QStringLiteral(" NOT IN (") : QStringLiteral(" IN (")) + candidates + u')',
                 Rank::Comparison);
}

TypedSql ExpressionTranslator::scalarQuery(const ScalarQuery& scalar, Scope& scope)
{
    const Relation relation = subqueryOfOneColumn(*scalar.query, scope);
    return {QStringLiteral("(SELECT agg_single(c0) FROM (%1))").arg(relation.sql), relation.columns.front().type};
}

Relation ExpressionTranslator::subqueryOfOneColumn(const Query& query, Scope& scope)
{
    Relation relation = subquery(query, scope);
    if (relation.columns.size() != 1) {
        throw runtime::RunTimeError(runtime::ErrorNumber::SubqueryOfSeveralFields);
    }
    return relation;
}

} // namespace data
