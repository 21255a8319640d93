#include "data/language/query_translator.h"

#include "data/language/sql_error.h"

#include <algorithm>

namespace data {
namespace {

/// The table named before FROM; empty where none is. Throws TableToDeleteMissing where several are.
QString targetOf(const Delete& statement)
{
    QString target;
    for (const QString& name : statement.targets) {
        target = target.isEmpty() ? name : target;
        if (!name.isEmpty() && !isSameName(name, target)) {
            throw runtime::RunTimeError(runtime::ErrorNumber::TableToDeleteMissing);
        }
    }
    return target;
}

} // namespace

Relation QueryTranslator::query(const Query& query, Scope* outer)
{
    return query.parts.size() == 1 ? select(query.parts.front().select, query.orderBy, outer) : unionOf(query, outer);
}

Relation QueryTranslator::subquery(const Query& query, Scope& scope)
{
    return this->query(query, &scope);
}

Relation QueryTranslator::named(const QString& name)
{
    Select all;
    all.items.emplace_back();
    all.from.push_back(std::make_unique<FromItem>());
    all.from.back()->node = NamedSource{name, {}};
    return select(all, {}, nullptr);
}

Relation QueryTranslator::rowsToDelete(const Delete& statement)
{
    Scope scope;
    const QString from = sourcesOf(statement.from, scope);
    const QString target = targetOf(statement);
    const auto source = std::find_if(scope.sources.begin(), scope.sources.end(), [&](const Source& candidate) {
        return target.isEmpty() || isSameName(candidate.name, target);
    });
    if (source == scope.sources.end()) {
        throw unknownTableOrQuery(target);
    }
    if (target.isEmpty() && scope.sources.size() > 1) {
        throw runtime::RunTimeError(runtime::ErrorNumber::TableToDeleteMissing);
    }
    if (!source->rows) {
        throw runtime::RunTimeError(runtime::ErrorNumber::ReadOnly)
            .withHint(QStringLiteral("Records of '%1' cannot be deleted because it is no table.").arg(source->name));
    }
    Relation relation;
    const QString address = orderAlias(0);
    relation.rows = BaseRows{source->rows->table, address};
    relation.order.push_back({address});
    relation.sql = QStringLiteral("SELECT DISTINCT %1 AS %2 FROM %3").arg(source->rows->address, address, from);
    if (statement.where != nullptr) {
        relation.sql += QStringLiteral(" WHERE ") + condition(*statement.where, scope).sql;
    }
    return relation;
}

} // namespace data
