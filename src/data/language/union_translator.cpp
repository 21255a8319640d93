// Unions: the part of QueryTranslator that joins several selects.
#include "data/language/query_translator.h"
#include "data/language/sql_error.h"

#include <algorithm>

namespace data {
namespace {

bool hasDescendingTerm(const Relation& relation)
{
    return std::any_of(relation.order.begin(), relation.order.end(),
                       [](const OrderTerm& term) { return term.descending; });
}

/// The terms that keep the order of one part, all ascending: its own, or a number where one of them descends.
QStringList orderOf(const Relation& part)
{
    if (hasDescendingTerm(part)) {
        return {QStringLiteral("row_number() OVER (%1)").arg(orderClause(part.order))};
    }
    QStringList terms;
    for (const OrderTerm& term : part.order) {
        terms.append(termSql(term));
    }
    return terms;
}

/// Part by part, each in its own order; the terms of a part with fewer of them are filled up.
std::vector<QStringList> ordersOf(const std::vector<Relation>& parts)
{
    std::vector<QStringList> orders;
    qsizetype most = 0;
    for (const Relation& part : parts) {
        orders.push_back(QStringList{QString::number(orders.size())} + orderOf(part));
        most = std::max(most, orders.back().size());
    }
    for (QStringList& terms : orders) {
        while (terms.size() < most) {
            terms.append(QStringLiteral("NULL"));
        }
    }
    return orders;
}

/// Named as in the first part, of a type that holds the values of all parts.
std::vector<RelationColumn> columnsOf(const std::vector<Relation>& parts)
{
    std::vector<RelationColumn> columns;
    for (std::size_t i = 0; i < parts.front().columns.size(); ++i) {
        ExpressionType type;
        for (const Relation& part : parts) {
            type = commonType(type, part.columns[i].type);
        }
        columns.push_back({parts.front().columns[i].name, type});
    }
    return columns;
}

} // namespace

Relation QueryTranslator::unionOf(const Query& query, Scope* outer)
{
    std::vector<Relation> parts;
    for (const Query::Part& part : query.parts) {
        parts.push_back(select(part.select, {}, outer));
        if (parts.back().columns.size() != parts.front().columns.size()) {
            throw runtime::RunTimeError(runtime::ErrorNumber::UnionColumnsDiffer);
        }
    }
    Relation result;
    result.columns = columnsOf(parts);
    const bool keepsAll =
        std::all_of(query.parts.begin() + 1, query.parts.end(), [](const Query::Part& part) { return part.all; });
    const std::vector<QStringList> orders = keepsAll ? ordersOf(parts) : std::vector<QStringList>(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            result.sql += query.parts[i].all ? QStringLiteral(" UNION ALL ") : QStringLiteral(" UNION ");
        }
        result.sql += unionPart(parts[i], result.columns, orders[i]);
    }
    if (keepsAll) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(orders.front().size()); ++i) {
            result.order.push_back({orderAlias(i)});
        }
    } else { // equal rows have become one: no part has an order any more
        for (std::size_t i = 0; i < result.columns.size(); ++i) {
            result.order.push_back({columnAlias(i), false, result.columns[i].type.isText()});
        }
    }
    return query.orderBy.empty() ? result : ordered(result, query.orderBy);
}

QString QueryTranslator::unionPart(const Relation& part, const std::vector<RelationColumn>& columns,
                                   const QStringList& order)
{
    QStringList list;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        TypedSql column{columnAlias(i), part.columns[i].type};
        column.sql = asType(column, columns[i].type);
        list.append((columns[i].type.isText() ? collated(column) : column.sql) + QStringLiteral(" AS ") +
                    columnAlias(i));
    }
    std::size_t terms = 0;
    for (const QString& term : order) {
        list.append(term + QStringLiteral(" AS ") + orderAlias(terms++));
    }
    return QStringLiteral("SELECT %1 FROM (%2)").arg(list.join(QStringLiteral(", ")), part.sql);
}

/// ORDER BY behind a union names columns of its first part.
Relation QueryTranslator::ordered(const Relation& relation, const std::vector<OrderItem>& orderBy)
{
    const QString alias = nextAlias();
    Scope scope;
    scope.sources.push_back(relationSource(relation, alias));
    Draft draft;
    draft.from = QStringLiteral("(%1) AS %2").arg(relation.sql, alias);
    for (const Source::Column& column : scope.sources.front().columns) {
        draft.outputs.push_back({column.name, {column.sql, column.type}});
    }
    draft.order = explicitOrder(orderBy, draft.outputs, scope);
    completeOrder(draft, scope);
    return assembled(draft, scope);
}

} // namespace data
