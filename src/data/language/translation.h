// What the translator keeps while it turns a statement into SQLite's SQL.
//
// Everything that SQLite sees is named by us: a source is q1, q2 ..., the columns that it yields are c0, c1 ..., and
// the terms that keep its order, invisible to the user, k0, k1 .... A saved query becomes a common table expression v1,
// v2 .... Texts and fractions are bound as parameters ?1, ?2 ..., so that no quoting and no rounding can change them.
#pragma once

#include "data/language/relation.h"
#include "data/language/sql_ast.h"

#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace data {

/// How tightly the outermost operator of an SQL expression binds.
enum class Rank { Or, And, Not, Comparison, Sum, Product, Atom };

/// An expression in SQLite's SQL.
struct TypedSql {
    QString sql;
    ExpressionType type{};
    Rank rank = Rank::Atom;
    bool isCondition = false;                ///< true is 1, as SQLite's operators yield it, not -1
    std::optional<runtime::Value> literal{}; ///< where the value is known already
    int baseColumn = -1;                     ///< the column of its source's table that it is, if it is one
};

/// An expression that yields SQLite's truth.
[[nodiscard]] inline TypedSql truth(QString sql, Rank rank)
{
    return {.sql = std::move(sql), .type = typeOf(FieldType::Boolean), .rank = rank, .isCondition = true};
}

/// A table, a saved query or a query in parentheses behind FROM.
struct Source {
    struct Column {
        QString name;
        ExpressionType type;
        QString sql;
        int baseColumn = -1;
    };
    QString name; ///< as the statement refers to it
    std::vector<Column> columns;
    std::vector<OrderTerm> order;
    std::optional<BaseRows> rows;
};

/// The names that an expression can refer to.
struct Scope {
    Scope* outer = nullptr;
    std::vector<Source> sources;
    const std::vector<OutputItem>* aliases = nullptr; ///< names of output columns, where they may be used
    int aliasDepth = 0;                               ///< how many aliases are being replaced by what they stand for
    bool aggregatesAllowed = false;
    bool perGroup = false;          ///< what stands here is evaluated once a group
    std::vector<QString> groupKeys; ///< SQL of the expressions grouped by
};

/// As long as it lives, what is translated is evaluated once a row, not once a group.
class PerRow
{
public:
    explicit PerRow(Scope& scope)
        : scope_(scope), perGroup_(std::exchange(scope.perGroup, false)),
          aggregatesAllowed_(std::exchange(scope.aggregatesAllowed, false))
    {
    }
    PerRow(const PerRow&) = delete;
    PerRow& operator=(const PerRow&) = delete;
    ~PerRow()
    {
        scope_.perGroup = perGroup_;
        scope_.aggregatesAllowed = aggregatesAllowed_;
    }

private:
    Scope& scope_;
    bool perGroup_;
    bool aggregatesAllowed_;
};

/// One statement's translation.
struct TranslationState {
    Catalogue& catalogue;
    runtime::Date now;
    const QString* sql = nullptr;             ///< the text being translated, for messages
    std::vector<runtime::Value> parameters{}; ///< ?1 is the first
    QStringList commonTables{};               ///< "v1 AS (...)", each using only those before it
    QStringList unknownNames{};
    QStringList openQueries{}; ///< saved queries being translated, outermost first
    int sources = 0;

    [[nodiscard]] QString parameter(const runtime::Value& value);
};

[[nodiscard]] inline bool isSameName(const QString& left, const QString& right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

} // namespace data
