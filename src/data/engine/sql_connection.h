// The SQLite connection that runs queries over the file's tables.
#pragma once

#include "data/engine/snapshot.h"
#include "data/engine/sqlite_functions.h"
#include "data/engine/table_module.h"
#include "data/language/sql_translator.h"

#include <functional>
#include <memory>

namespace data {

/// A row at hand while a statement runs.
class ResultRow
{
public:
    explicit ResultRow(sqlite3_stmt* statement) : statement_(statement) {}
    [[nodiscard]] runtime::Value value(int column) const;
    /// Of a column that holds nothing else: a row's address.
    [[nodiscard]] qint64 wholeNumber(int column) const;
    /// The number as SQL computes with it (a date's days, -1 for true); none where the value is none.
    [[nodiscard]] std::optional<double> numberForSql(int column) const;
    /// Appends the value, as one of the field's type where that is known, to rows that are kept.
    void copyTo(Snapshot& rows, int column, std::optional<FieldType> type) const;

private:
    sqlite3_stmt* statement_;
};

/// Lives in memory and holds no data of its own. It may only select: an authorizer refuses everything else, so that no
/// SQL text reaches another file.
class SqlConnection
{
public:
    SqlConnection();
    SqlConnection(const SqlConnection&) = delete;
    SqlConnection& operator=(const SqlConnection&) = delete;
    ~SqlConnection();

    /// The table must live as long as the connection.
    void addTable(const QString& sqlName, jet::Table& table);
    /// Runs a SELECT to its end. Throws what a callback threw, RunTimeError 3360 for a statement beyond SQLite's
    /// limits, and std::bad_alloc.
    void run(const SqlText& text, const std::function<void(const ResultRow&)>& eachRow);

private:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    };
    [[noreturn]] void fail(int code);

    bool declaring_ = false; ///< a table that is being added makes its columns known
    PendingError pending_;
    FunctionRegistry functions_;
    std::vector<std::unique_ptr<TableBinding>> tables_;
    std::unique_ptr<sqlite3, Close> connection_; ///< closed first, for it refers to all the others
};

} // namespace data
