// The rows of a query in SQLite's SQL, and the order in which they count.
#pragma once

#include "data/language/catalogue.h"
#include "data/types/expression_type.h"

namespace data {

struct OrderTerm {
    QString sql;
    bool descending = false;
    bool isText = false;
};

/// The rows of one table behind a relation: where each row's address is found.
struct BaseRows {
    const SourceTable* table = nullptr;
    QString address; ///< SQL
};

struct RelationColumn {
    QString name;
    ExpressionType type;
    int baseColumn = -1; ///< position in BaseRows::table
};

/// A SELECT without ORDER BY. It yields the columns that the query shows as c0, c1 ... (columnAlias) and, as k0, k1 ...
/// (orderAlias), those terms of its order that are none of them.
struct Relation {
    QString sql;
    std::vector<RelationColumn> columns;
    std::vector<OrderTerm> order; ///< by names of its own columns
    std::optional<BaseRows> rows;
};

[[nodiscard]] QString orderAlias(std::size_t position);
/// Whether a relation's term is one of k0, k1 ... and no column that the query shows.
[[nodiscard]] bool isHidden(const OrderTerm& term);
/// "c0, c1, k0": all that the relation yields, the hidden terms in the order in which they count.
[[nodiscard]] QString columnList(const Relation& relation);

/// "k0", "c1 COLLATE jet_text DESC".
[[nodiscard]] QString termSql(const OrderTerm& term);
/// " ORDER BY ..." or nothing.
[[nodiscard]] QString orderClause(const std::vector<OrderTerm>& terms);

} // namespace data
