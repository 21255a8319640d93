// One select: the part of QueryTranslator that knows its clauses.
#include "data/language/aggregates.h"
#include "data/language/query_translator.h"
#include "data/language/sql_error.h"

#include <QLocale>

#include <algorithm>

namespace data {
namespace {

constexpr std::size_t kMostColumns = 1000;

bool isGrouped(const Select& select, const std::vector<OrderItem>& orderBy)
{
    const bool aggregates = std::any_of(select.items.begin(), select.items.end(), [](const OutputItem& item) {
        return item.expression != nullptr && containsAggregate(*item.expression);
    });
    const bool ordersByAggregates = std::any_of(
        orderBy.begin(), orderBy.end(), [](const OrderItem& item) { return containsAggregate(*item.expression); });
    return aggregates || ordersByAggregates || !select.groupBy.empty() || select.having != nullptr;
}

/// Whether another source has a column of that name too.
bool isRepeated(const QString& column, const Source& source, const std::vector<Source>& sources)
{
    return std::any_of(sources.begin(), sources.end(), [&](const Source& other) {
        return &other != &source &&
               std::any_of(other.columns.begin(), other.columns.end(),
                           [&](const Source::Column& candidate) { return isSameName(candidate.name, column); });
    });
}

} // namespace

Relation QueryTranslator::select(const Select& select, const std::vector<OrderItem>& orderBy, Scope* outer)
{
    Scope scope;
    scope.outer = outer;
    Draft draft;
    draft.distinct = select.distinct;
    draft.distinctRow = select.distinctRow;
    draft.from = sourcesOf(select.from, scope);
    if (select.where != nullptr) {
        draft.where = condition(*select.where, scope).sql;
    }
    draft.grouped = isGrouped(select, orderBy);
    for (const ExpressionPtr& expression : select.groupBy) {
        draft.groups.push_back(value(*expression, scope));
        scope.groupKeys.push_back(draft.groups.back().sql);
    }
    scope.aliases = &select.items;
    scope.perGroup = draft.grouped;
    scope.aggregatesAllowed = true;
    draft.outputs = outputs(select, scope);
    if (select.having != nullptr) {
        draft.having = condition(*select.having, scope).sql;
    }
    draft.order = explicitOrder(orderBy, draft.outputs, scope);
    const std::size_t explicitTerms = draft.order.size();
    completeOrder(draft, scope);
    Relation relation = assembled(draft, scope);
    return select.top ? top(std::move(relation), *select.top, explicitTerms) : relation;
}

// --- Output columns ----------------------------------------------------------------------------------------------

std::vector<QueryTranslator::Output> QueryTranslator::outputs(const Select& select, Scope& scope)
{
    std::vector<Output> result;
    for (const OutputItem& item : select.items) {
        if (item.expression != nullptr) {
            TypedSql sql = value(*item.expression, scope);
            result.push_back({outputName(item, result), std::move(sql)});
        } else if (scope.perGroup) {
            throw expressionError(QStringLiteral("Cannot group on all columns"), *state().sql, item.place);
        } else {
            addAllColumns(item, scope, result);
        }
    }
    if (result.size() > kMostColumns) {
        throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex);
    }
    return result;
}

void QueryTranslator::addAllColumns(const OutputItem& item, const Scope& scope, std::vector<Output>& outputs) const
{
    bool found = false;
    for (const Source& source : scope.sources) {
        if (!item.source.isEmpty() && !isSameName(source.name, item.source)) {
            continue;
        }
        found = true;
        for (const Source::Column& column : source.columns) {
            const bool repeated = item.source.isEmpty() && isRepeated(column.name, source, scope.sources);
            outputs.push_back({repeated ? source.name + u'.' + column.name : column.name,
                               {.sql = column.sql, .type = column.type, .baseColumn = column.baseColumn}});
        }
    }
    if (!found) {
        throw item.source.isEmpty() ? syntaxError(*state().sql, item.place.begin) : unknownTableOrQuery(item.source);
    }
}

/// A column without an alias is called like the column that it is; with its table's name in front where that is taken;
/// and everything else Expr1000 and so on, by its place.
QString QueryTranslator::outputName(const OutputItem& item, const std::vector<Output>& before)
{
    const auto isTaken = [&](const QString& name) {
        return std::any_of(before.begin(), before.end(),
                           [&](const Output& output) { return isSameName(output.name, name); });
    };
    if (!item.alias.isEmpty()) {
        if (isTaken(item.alias)) {
            throw runtime::RunTimeError(runtime::ErrorNumber::DuplicateOutputName,
                                        QStringLiteral("Duplicate output alias '%1'.").arg(item.alias));
        }
        return item.alias;
    }
    if (const auto* column = std::get_if<ColumnName>(&item.expression->node)) {
        const QString full = column->source.isEmpty() ? column->name : column->source + u'.' + column->name;
        for (const QString& name : {column->name, full}) {
            if (!isTaken(name)) {
                return name;
            }
        }
    }
    return QStringLiteral("Expr%1").arg(1000 + before.size());
}

// --- Order -------------------------------------------------------------------------------------------------------

std::vector<OrderTerm> QueryTranslator::explicitOrder(const std::vector<OrderItem>& orderBy,
                                                      const std::vector<Output>& outputs, Scope& scope)
{
    std::vector<OrderTerm> terms;
    for (const OrderItem& item : orderBy) {
        TypedSql sql;
        const auto* literal = std::get_if<Literal>(&item.expression->node);
        const qint32* position = literal != nullptr ? std::get_if<qint32>(&literal->value) : nullptr;
        if (position != nullptr) {
            if (*position < 1 || static_cast<std::size_t>(*position) > outputs.size()) {
                throw expressionError(QStringLiteral("Unknown column number"), *state().sql, item.expression->place);
            }
            sql = outputs[static_cast<std::size_t>(*position) - 1].sql;
        } else {
            sql = value(*item.expression, scope);
        }
        terms.push_back({wrapped(sql, Rank::Atom), item.descending, sql.type.isText()});
    }
    return terms;
}

/// Rows that the statement leaves equal keep an order that does not depend on the plan: grouped and distinct rows by
/// their keys, all others by the sources' own order, which ends in the order of entry.
void QueryTranslator::completeOrder(Draft& draft, const Scope& scope)
{
    const auto add = [&](const OrderTerm& term) {
        const bool there = std::any_of(draft.order.begin(), draft.order.end(),
                                       [&](const OrderTerm& known) { return known.sql == term.sql; });
        if (!there) {
            draft.order.push_back(term);
        }
    };
    if (draft.distinct) {
        for (const Output& output : draft.outputs) {
            add({wrapped(output.sql, Rank::Atom), false, output.sql.type.isText()});
        }
    } else if (draft.grouped) {
        for (const TypedSql& group : draft.groups) {
            add({wrapped(group, Rank::Atom), false, group.type.isText()});
        }
    } else {
        for (const Source& source : scope.sources) {
            std::for_each(source.order.begin(), source.order.end(), add);
        }
    }
}

// --- The whole select --------------------------------------------------------------------------------------------

/// DISTINCTROW: one row for each combination of rows of the tables that are shown. It matters only where a table is
/// joined of which nothing is shown.
QString QueryTranslator::distinctRowGroups(const std::vector<Output>& outputs, const Scope& scope)
{
    QStringList addresses;
    for (const Source& source : scope.sources) {
        const bool shown = std::any_of(outputs.begin(), outputs.end(), [&](const Output& output) {
            return std::any_of(source.columns.begin(), source.columns.end(),
                               [&](const Source::Column& column) { return output.sql.sql.contains(column.sql); });
        });
        if (!shown) {
            continue;
        }
        if (!source.rows) {
            return {};
        }
        addresses.append(source.rows->address);
    }
    return static_cast<std::size_t>(addresses.size()) < scope.sources.size() ? addresses.join(QStringLiteral(", "))
                                                                             : QString();
}

QString QueryTranslator::groupTerms(const Draft& draft, const Scope& scope)
{
    if (draft.distinctRow && !draft.grouped) {
        return distinctRowGroups(draft.outputs, scope);
    }
    QStringList terms;
    for (const TypedSql& key : draft.groups) {
        if (key.literal && key.type.isWhole()) { // which SQLite would take for the position of a column
            terms.append(QStringLiteral("CAST(%1 AS INTEGER)").arg(key.sql));
        } else {
            terms.append(key.type.isText() ? collated(key) : key.sql);
        }
    }
    return terms.join(QStringLiteral(", "));
}

/// From FROM on.
QString QueryTranslator::clausesOf(const Draft& draft, const Scope& scope)
{
    QString sql;
    const auto clause = [&](const char* word, const QString& content) {
        if (!content.isEmpty()) {
            sql += QLatin1String(word) + content;
        }
    };
    clause(" FROM ", draft.from);
    clause(" WHERE ", draft.where);
    clause(" GROUP BY ", groupTerms(draft, scope));
    clause(" HAVING ", draft.having);
    return sql;
}

Relation QueryTranslator::assembled(const Draft& draft, const Scope& scope)
{
    Relation relation;
    QStringList list;
    for (const Output& output : draft.outputs) {
        const bool collate = draft.distinct && output.sql.type.isText();
        list.append((collate ? collated(output.sql) : output.sql.sql) + QStringLiteral(" AS ") +
                    columnAlias(relation.columns.size()));
        relation.columns.push_back({output.name, output.sql.type, output.sql.baseColumn});
    }
    const bool keepsRows = scope.sources.size() == 1 && !draft.grouped && !draft.distinct;
    const std::optional<BaseRows> base = keepsRows ? scope.sources.front().rows : std::nullopt;
    std::size_t hidden = 0;
    for (const OrderTerm& term : draft.order) {
        const auto shown = std::find_if(draft.outputs.begin(), draft.outputs.end(), [&](const Output& output) {
            return wrapped(output.sql, Rank::Atom) == term.sql;
        });
        OrderTerm outside = term;
        if (shown != draft.outputs.end()) {
            outside.sql = columnAlias(static_cast<std::size_t>(shown - draft.outputs.begin()));
        } else if (draft.distinct) {
            throw runtime::RunTimeError(runtime::ErrorNumber::QuerySyntax,
                                        QStringLiteral("ORDER BY clause conflicts with DISTINCT."));
        } else {
            outside.sql = orderAlias(hidden++);
            list.append(term.sql + QStringLiteral(" AS ") + outside.sql);
        }
        if (base && base->address == term.sql) {
            relation.rows = BaseRows{base->table, outside.sql};
        }
        relation.order.push_back(std::move(outside));
    }
    relation.sql = (draft.distinct ? QStringLiteral("SELECT DISTINCT ") : QStringLiteral("SELECT ")) +
                   list.join(QStringLiteral(", ")) + clausesOf(draft, scope);
    return relation;
}

/// The first rows of the order asked for, with all that are equal to the last of them; without an order, just so many.
Relation QueryTranslator::top(Relation relation, const Top& top, std::size_t explicitTerms)
{
    std::vector<OrderTerm> terms = relation.order;
    QString rank = QStringLiteral("row_number()");
    if (explicitTerms > 0) {
        terms.resize(explicitTerms);
        rank = QStringLiteral("rank()");
    }
    const QString limit = QString::number(top.count, 'f', QLocale::FloatingPointShortest);
    const QString condition = top.percent ? QStringLiteral("(place - 1) * 100.0 < total * %1").arg(limit)
                                          : QStringLiteral("place <= %1").arg(limit);
    relation.sql =
        QStringLiteral("SELECT %1 FROM (SELECT *, %2 OVER (%3) AS place, count(*) OVER () AS total FROM (%4)) "
                       "WHERE %5")
            .arg(columnList(relation), rank, orderClause(terms), relation.sql, condition);
    return relation;
}

} // namespace data
