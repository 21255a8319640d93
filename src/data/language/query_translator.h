// Queries in Jet's dialect as SQLite's SQL.
#pragma once

#include "data/language/expression_translator.h"

namespace data {

class QueryTranslator final : public ExpressionTranslator
{
public:
    using ExpressionTranslator::ExpressionTranslator;

    [[nodiscard]] Relation query(const Query& query, Scope* outer);
    /// All rows of a table or a saved query.
    [[nodiscard]] Relation named(const QString& name);
    /// The addresses of the rows that the statement deletes.
    [[nodiscard]] Relation rowsToDelete(const Delete& statement);

private:
    struct Output {
        QString name;
        TypedSql sql;
    };
    /// A saved query as a common table expression.
    struct CommonTable {
        QString name; ///< in SQL
        Relation relation;
    };
    /// A select on its way: its parts in SQL before they are put together.
    struct Draft {
        bool distinct = false;
        bool distinctRow = false;
        bool grouped = false;
        std::vector<Output> outputs;
        QString from;
        QString where;
        std::vector<TypedSql> groups;
        QString having;
        std::vector<OrderTerm> order; ///< by the select's own expressions
    };

    Relation subquery(const Query& query, Scope& scope) override;

    // Sources (source_translator.cpp)
    QString sourcesOf(const std::vector<FromItemPtr>& items, Scope& scope);
    QString sourceOf(const FromItem& item, Scope& scope);
    QString joinOf(const Join& join, Scope& scope);
    QString namedSource(const NamedSource& named, Scope& scope);
    Source tableSource(const SourceTable& table, const QString& alias) const;
    Source relationSource(const Relation& relation, const QString& alias) const;
    CommonTable savedQuery(const QString& name, const QString& text);
    QString nextAlias();

    // One select (select_translator.cpp)
    Relation select(const Select& select, const std::vector<OrderItem>& orderBy, Scope* outer);
    std::vector<Output> outputs(const Select& select, Scope& scope);
    void addAllColumns(const OutputItem& item, const Scope& scope, std::vector<Output>& outputs) const;
    [[nodiscard]] static QString outputName(const OutputItem& item, const std::vector<Output>& before);
    std::vector<OrderTerm> explicitOrder(const std::vector<OrderItem>& orderBy, const std::vector<Output>& outputs,
                                         Scope& scope);
    static void completeOrder(Draft& draft, const Scope& scope);
    [[nodiscard]] static QString clausesOf(const Draft& draft, const Scope& scope);
    [[nodiscard]] static QString groupTerms(const Draft& draft, const Scope& scope);
    [[nodiscard]] static QString distinctRowGroups(const std::vector<Output>& outputs, const Scope& scope);
    [[nodiscard]] static Relation assembled(const Draft& draft, const Scope& scope);
    [[nodiscard]] static Relation top(Relation relation, const Top& top, std::size_t explicitTerms);

    // Unions (union_translator.cpp)
    Relation unionOf(const Query& query, Scope* outer);
    /// A part with the columns of the union and, behind them, the terms that keep its order.
    [[nodiscard]] static QString unionPart(const Relation& part, const std::vector<RelationColumn>& columns,
                                           const QStringList& order);
    Relation ordered(const Relation& relation, const std::vector<OrderItem>& orderBy);
};

} // namespace data
