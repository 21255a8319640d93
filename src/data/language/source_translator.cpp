// What stands behind FROM: the part of QueryTranslator that knows sources.
#include "data/language/query_translator.h"
#include "data/language/sql_error.h"
#include "data/language/sql_parser.h"

namespace data {
namespace {

/// Saved queries upon saved queries, deeper than a person builds them.
constexpr qsizetype kMostQueries = 60;

} // namespace

QString QueryTranslator::nextAlias()
{
    return u'q' + QString::number(++state().sources);
}

QString QueryTranslator::sourcesOf(const std::vector<FromItemPtr>& items, Scope& scope)
{
    QStringList list;
    for (const FromItemPtr& item : items) {
        const QString sql = sourceOf(*item, scope);
        const bool bracket = !list.isEmpty() && std::holds_alternative<Join>(item->node);
        list.append(bracket ? u'(' + sql + u')' : sql);
    }
    return list.join(QStringLiteral(", "));
}

QString QueryTranslator::sourceOf(const FromItem& item, Scope& scope)
{
    if (const auto* named = std::get_if<NamedSource>(&item.node)) {
        return namedSource(*named, scope);
    }
    if (const auto* join = std::get_if<Join>(&item.node)) {
        return joinOf(*join, scope);
    }
    const auto& derived = std::get<DerivedSource>(item.node);
    const Relation relation = query(*derived.query, scope.outer);
    const QString alias = nextAlias();
    Source source = relationSource(relation, alias);
    source.name = derived.alias;
    scope.sources.push_back(std::move(source));
    return u'(' + relation.sql + QStringLiteral(") AS ") + alias;
}

/// A right join is a left join the other way round. Joins group from the left, so only the right side needs brackets.
QString QueryTranslator::joinOf(const Join& join, Scope& scope)
{
    const FromItem* left = join.left.get();
    const FromItem* right = join.right.get();
    QString leftSql = sourceOf(*left, scope);
    QString rightSql = sourceOf(*right, scope);
    const TypedSql on = condition(*join.condition, scope);
    if (join.kind == Join::Kind::Right) {
        std::swap(left, right);
        std::swap(leftSql, rightSql);
    }
    if (std::holds_alternative<Join>(right->node)) {
        rightSql = u'(' + rightSql + u')';
    }
    const QString word = join.kind == Join::Kind::Inner ? QStringLiteral(" JOIN ") : QStringLiteral(" LEFT JOIN ");
    return leftSql + word + rightSql + QStringLiteral(" ON ") + on.sql;
}

QString QueryTranslator::namedSource(const NamedSource& named, Scope& scope)
{
    const QString alias = nextAlias();
    Source source;
    QString sql;
    if (const SourceTable* table = state().catalogue.table(named.name)) {
        source = tableSource(*table, alias);
        sql = table->sqlName;
    } else if (const std::optional<QString> text = state().catalogue.query(named.name)) {
        const CommonTable common = savedQuery(named.name, *text);
        source = relationSource(common.relation, alias);
        sql = common.name;
    } else {
        throw unknownTableOrQuery(named.name);
    }
    source.name = named.alias.isEmpty() ? named.name : named.alias;
    scope.sources.push_back(std::move(source));
    return sql + QStringLiteral(" AS ") + alias;
}

Source QueryTranslator::tableSource(const SourceTable& table, const QString& alias) const
{
    Source source;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Field& field = table.columns[i];
        source.columns.push_back(
            {field.name, {field.type, field.size}, alias + u'.' + columnAlias(i), static_cast<int>(i)});
    }
    const QString address = alias + QStringLiteral(".row");
    source.order.push_back({address});
    source.rows = BaseRows{&table, address};
    return source;
}

Source QueryTranslator::relationSource(const Relation& relation, const QString& alias) const
{
    Source source;
    for (std::size_t i = 0; i < relation.columns.size(); ++i) {
        const RelationColumn& column = relation.columns[i];
        source.columns.push_back({column.name, column.type, alias + u'.' + columnAlias(i), column.baseColumn});
    }
    for (OrderTerm term : relation.order) {
        term.sql = alias + u'.' + term.sql;
        source.order.push_back(std::move(term));
    }
    if (relation.rows) {
        source.rows = BaseRows{relation.rows->table, alias + u'.' + relation.rows->address};
    }
    return source;
}

QueryTranslator::CommonTable QueryTranslator::savedQuery(const QString& name, const QString& text)
{
    if (state().openQueries.contains(name, Qt::CaseInsensitive)) {
        throw runtime::RunTimeError(runtime::ErrorNumber::CircularReference,
                                    QStringLiteral("Circular reference caused by '%1'.").arg(name));
    }
    if (state().commonTables.size() >= kMostQueries || state().openQueries.size() >= kMostQueries) {
        throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex);
    }
    const QString* outerText = state().sql;
    state().sql = &text;
    state().openQueries.append(name);
    const Statement statement = parseStatement(text);
    const auto* query = std::get_if<Query>(&statement.node);
    if (query == nullptr) {
        throw runtime::RunTimeError(runtime::ErrorNumber::InvalidOperation)
            .withHint(QStringLiteral("The saved query '%1' does not select records.").arg(name));
    }
    Relation relation = this->query(*query, nullptr);
    state().openQueries.removeLast();
    state().sql = outerText;
    const QString sqlName = u'v' + QString::number(state().commonTables.size() + 1);
    state().commonTables.append(sqlName + QStringLiteral(" AS (") + relation.sql + u')');
    return {sqlName, std::move(relation)};
}

} // namespace data
