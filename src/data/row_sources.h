// The kinds of rows that a recordset can have.
#pragma once

#include "data/recordset_source.h"

namespace data {

class Session;
struct TranslatedQuery;

/// All rows of a table. They are looked for when they are needed: to open it, or to add to it, reads no row but the
/// first.
[[nodiscard]] std::unique_ptr<Recordset::Source> rowsOfTable(std::shared_ptr<Session> session, const QString& table);
/// The rows of a query: of one table, which can be changed, where TranslatedQuery::tableRows says so, else a snapshot.
[[nodiscard]] std::unique_ptr<Recordset::Source> rowsOfQuery(std::shared_ptr<Session> session,
                                                             const TranslatedQuery& query);

} // namespace data
