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
        terms.append(term.isText ? term.sql + QStringLiteral(" COLLATE ") + kTextCollation : term.sql);
    }
    return terms;
}

} // namespace

Relation QueryTranslator::unionOf(const Query& query, Scope* outer)
{
    std::vector<Relation> parts;
    for (const Query::Part& part : query.parts) {
        parts.push_back(select(part.select, {}, outer));
        if (parts.back().columns.size() != parts.front().columns.size()) {
            throw runtime::RunTimeError(
                runtime::ErrorNumber::UnionColumnsDiffer,
                QStringLiteral("The number of columns in the two selected tables or queries of a "
                               "union query do not match."));
        }
    }
    Relation result;
    for (std::size_t i = 0; i < parts.front().columns.size(); ++i) {
        ExpressionType type;
        for (const Relation& part : parts) {
            type = commonType(type, part.columns[i].type);
        }
        result.columns.push_back({parts.front().columns[i].name, type});
    }

    const bool keepsAll =
        std::all_of(query.parts.begin() + 1, query.parts.end(), [](const Query::Part& part) { return part.all; });
    qsizetype mostTerms = 0;
    for (const Relation& part : parts) {
        mostTerms = std::max(mostTerms, orderOf(part).size());
    }
    for (std::size_t number = 0; number < parts.size(); ++number) {
        const Relation& part = parts[number];
        QStringList list;
        for (std::size_t i = 0; i < part.columns.size(); ++i) {
            TypedSql column;
            column.sql = u'c' + QString::number(i);
            column.type = part.columns[i].type;
            column.sql = asType(column, result.columns[i].type);
            list.append((result.columns[i].type.isText() ? collated(column) : column.sql) +
                        QStringLiteral(" AS c%1").arg(i));
        }
        if (keepsAll) {
            // Part by part, each in its own order.
            QStringList terms = orderOf(part);
            terms.prepend(QString::number(number));
            for (qsizetype k = 0; k <= mostTerms; ++k) {
                list.append(QStringLiteral("%1 AS k%2").arg(terms.value(k, QStringLiteral("NULL"))).arg(k));
            }
        }
        if (number > 0) {
            result.sql += query.parts[number].all ? QStringLiteral(" UNION ALL ") : QStringLiteral(" UNION ");
        }
        result.sql += QStringLiteral("SELECT %1 FROM (%2)").arg(list.join(QStringLiteral(", ")), part.sql);
    }

    if (keepsAll) {
        for (qsizetype k = 0; k <= mostTerms; ++k) {
            result.order.push_back({u'k' + QString::number(k)});
        }
    } else {
        for (std::size_t i = 0; i < result.columns.size(); ++i) {
            result.order.push_back({u'c' + QString::number(i), false, result.columns[i].type.isText()});
        }
    }
    return query.orderBy.empty() ? result : ordered(std::move(result), query.orderBy);
}

/// ORDER BY behind a union names columns of its first part.
Relation QueryTranslator::ordered(Relation relation, const std::vector<OrderItem>& orderBy)
{
    const QString alias = nextAlias();
    Scope scope;
    scope.sources.push_back(relationSource(relation, alias));
    std::vector<Output> outputs;
    Relation result;
    QStringList list;
    for (std::size_t i = 0; i < relation.columns.size(); ++i) {
        TypedSql sql;
        sql.sql = scope.sources.front().columns[i].sql;
        sql.type = relation.columns[i].type;
        outputs.push_back({relation.columns[i].name, sql});
        list.append(sql.sql + QStringLiteral(" AS c%1").arg(i));
    }
    result.columns = relation.columns;
    std::vector<OrderTerm> terms = explicitOrder(orderBy, outputs, scope);
    terms.insert(terms.end(), scope.sources.front().order.begin(), scope.sources.front().order.end());
    for (OrderTerm& term : terms) {
        const QString name = u'k' + QString::number(result.order.size());
        list.append(term.sql + QStringLiteral(" AS ") + name);
        term.sql = name;
        result.order.push_back(term);
    }
    result.sql = QStringLiteral("SELECT %1 FROM (%2) AS %3").arg(list.join(QStringLiteral(", ")), relation.sql, alias);
    return result;
}

} // namespace data
