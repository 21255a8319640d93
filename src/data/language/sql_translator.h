// From a statement in Jet's dialect to SQLite's SQL.
#pragma once

#include "data/language/catalogue.h"
#include "data/types/expression_type.h"
#include "runtime/clock.h"

#include <optional>
#include <vector>

namespace data {

/// A SELECT for SQLite with what its parameters ?1, ?2 ... stand for.
struct SqlText {
    QString sql;
    std::vector<runtime::Value> parameters;
};

/// A column of the result that the rows are ordered by.
struct RowOrder {
    int column = 0;
    bool descending = false;
};

struct OutputColumn {
    QString name;
    ExpressionType type;
};

/// A query over one table whose columns are the table's own, so that its rows can be changed.
struct TableRows {
    QString table;
    std::vector<int> columns; ///< for each output column its position in the table
    SqlText addresses;        ///< yields the rows' addresses, in order
};

struct TranslatedQuery {
    SqlText rows; ///< in no order: who runs it sorts them
    std::vector<OutputColumn> columns;
    std::vector<RowOrder> order; ///< by columns of `rows`, which has more of them than the query shows
    std::optional<TableRows> tableRows;
};

/// Rows to be deleted.
struct TranslatedDelete {
    QString table;
    SqlText addresses;
};

/// Rows come in the statement's order. Where that leaves them equal, they keep the order of the queries that they are
/// selected from, and in the end the order of entry; grouped and distinct rows come by their keys. All errors are
/// runtime::RunTimeError.
[[nodiscard]] TranslatedQuery translateQuery(const QString& sql, Catalogue& catalogue, const runtime::Clock& clock);
/// All rows of a table or of a saved query.
[[nodiscard]] TranslatedQuery translateName(const QString& name, Catalogue& catalogue, const runtime::Clock& clock);
[[nodiscard]] TranslatedDelete translateDelete(const QString& sql, Catalogue& catalogue, const runtime::Clock& clock);

} // namespace data
