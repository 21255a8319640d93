#include "data/language/sql_translator.h"

#include "data/language/query_translator.h"
#include "data/language/sql_error.h"
#include "data/language/sql_parser.h"

#include <algorithm>

namespace data {
namespace {

void requireKnownNames(const TranslationState& state)
{
    if (!state.unknownNames.isEmpty()) {
        throw unknownFields(state.unknownNames);
    }
}

SqlText textOf(const TranslationState& state, const QString& columns, const QString& source)
{
    QString sql;
    if (!state.commonTables.isEmpty()) {
        sql = QStringLiteral("WITH ") + state.commonTables.join(QStringLiteral(", ")) + u' ';
    }
    sql += QStringLiteral("SELECT %1 FROM %2").arg(columns, source);
    return {sql, state.parameters};
}

SqlText addressesOf(const TranslationState& state, const Relation& relation)
{
    const QString source = QStringLiteral("(%1)%2").arg(relation.sql, orderClause(relation.order));
    return textOf(state, relation.rows->address, source);
}

/// Where the terms of the order stand in columnList().
std::vector<RowOrder> orderColumns(const Relation& relation)
{
    std::vector<RowOrder> order;
    int hidden = static_cast<int>(relation.columns.size());
    for (const OrderTerm& term : relation.order) {
        order.push_back({isHidden(term) ? hidden++ : QStringView(term.sql).mid(1).toInt(), term.descending});
    }
    return order;
}

TranslatedQuery finished(const TranslationState& state, const Relation& relation)
{
    requireKnownNames(state);
    TranslatedQuery result;
    result.rows = textOf(state, columnList(relation), u'(' + relation.sql + u')');
    result.order = orderColumns(relation);
    for (const RelationColumn& column : relation.columns) {
        result.columns.push_back({column.name, column.type});
    }
    const bool ownColumns = std::all_of(relation.columns.begin(), relation.columns.end(),
                                        [](const RelationColumn& column) { return column.baseColumn >= 0; });
    if (relation.rows && ownColumns) {
        TableRows rows;
        rows.table = relation.rows->table->name;
        for (const RelationColumn& column : relation.columns) {
            rows.columns.push_back(column.baseColumn);
        }
        rows.addresses = addressesOf(state, relation);
        result.tableRows = std::move(rows);
    }
    return result;
}

} // namespace

TranslatedQuery translateQuery(const QString& sql, Catalogue& catalogue, const runtime::Clock& clock)
{
    const Statement statement = parseStatement(sql);
    const auto* query = std::get_if<Query>(&statement.node);
    if (query == nullptr) {
        throw runtime::RunTimeError(runtime::ErrorNumber::InvalidOperation)
            .withHint(QStringLiteral("A statement that deletes records yields none."));
    }
    TranslationState state{catalogue, clock.now(), &sql};
    return finished(state, QueryTranslator(state).query(*query, nullptr));
}

TranslatedQuery translateName(const QString& name, Catalogue& catalogue, const runtime::Clock& clock)
{
    TranslationState state{catalogue, clock.now(), &name};
    return finished(state, QueryTranslator(state).named(name));
}

TranslatedDelete translateDelete(const QString& sql, Catalogue& catalogue, const runtime::Clock& clock)
{
    const Statement statement = parseStatement(sql);
    const auto* deletion = std::get_if<Delete>(&statement.node);
    if (deletion == nullptr) {
        throw runtime::RunTimeError(runtime::ErrorNumber::CannotExecuteSelect);
    }
    TranslationState state{catalogue, clock.now(), &sql};
    const Relation relation = QueryTranslator(state).rowsToDelete(*deletion);
    requireKnownNames(state);
    return {relation.rows->table->name, addressesOf(state, relation)};
}

} // namespace data
