#include "data/engine/sql_connection.h"

#include "data/engine/sqlite_value.h"
#include "data/engine/value_conversion.h"
#include "runtime/run_time_error.h"

#include <cmath>

namespace data {
namespace {

/// The context tells whether a virtual table is declaring its columns, which SQLite counts as an update of its schema.
int authorize(void* declaring, int action, const char*, const char*, const char*, const char*)
{
    const bool reads = action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_FUNCTION;
    const bool declares = action == SQLITE_UPDATE && *static_cast<const bool*>(declaring);
    return reads || declares ? SQLITE_OK : SQLITE_DENY;
}

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, Finalize>;

/// Appends a value that is of the field's type already, which nearly all are; false where it has to be converted.
bool appendedAsItIs(Snapshot& rows, sqlite3_value* value, FieldType type)
{
    switch (sqlite3_value_type(value)) {
    case SQLITE_FLOAT: {
        const double number = sqlite3_value_double(value);
        const bool isDate = type == FieldType::Date;
        const bool isNumber = type == FieldType::Double && std::isfinite(number) && sqlite3_value_subtype(value) == 0;
        if (isDate) {
            rows.append(runtime::Date{number});
        } else if (isNumber) {
            rows.append(number);
        }
        return isDate || isNumber;
    }
    case SQLITE_TEXT:
        if (type == FieldType::Text || type == FieldType::Memo) {
            rows.append(textOf(value));
            return true;
        }
        return false;
    default:
        return false;
    }
}

} // namespace

runtime::Value ResultRow::value(int column) const
{
    return valueOf(sqlite3_column_value(statement_, column));
}

qint64 ResultRow::wholeNumber(int column) const
{
    return sqlite3_column_int64(statement_, column);
}

std::optional<double> ResultRow::numberForSql(int column) const
{
    const int type = sqlite3_column_type(statement_, column);
    const bool isNumber = type == SQLITE_INTEGER || type == SQLITE_FLOAT;
    return isNumber ? std::optional(sqlite3_column_double(statement_, column)) : std::nullopt;
}

void ResultRow::copyTo(Snapshot& rows, int column, std::optional<FieldType> type) const
{
    sqlite3_value* value = sqlite3_column_value(statement_, column);
    if (type && appendedAsItIs(rows, value, *type)) {
        return;
    }
    const runtime::Value general = valueOf(value);
    rows.append(type ? asFieldType(general, *type) : general);
}

SqlConnection::SqlConnection() : functions_(pending_)
{
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2(":memory:", &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    connection_.reset(connection);
    if (code != SQLITE_OK) {
        throw std::bad_alloc();
    }
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // Texts stay as the file's values have them, and no sorting writes health records to a temporary file.
    sqlite3_exec(connection, "PRAGMA encoding='UTF-16'; PRAGMA temp_store=MEMORY;", nullptr, nullptr, nullptr);
    functions_.registerAll(connection);
    sqlite3_set_authorizer(connection, authorize, &declaring_);
}

SqlConnection::~SqlConnection() = default;

void SqlConnection::addTable(const QString& sqlName, jet::Table& table)
{
    tables_.push_back(std::make_unique<TableBinding>(table, pending_));
    int code = registerTable(connection_.get(), sqlName, *tables_.back());
    if (code == SQLITE_OK) {
        // The first use connects it.
        const QByteArray firstUse = "SELECT 1 FROM " + sqlName.toUtf8();
        sqlite3_stmt* prepared = nullptr;
        declaring_ = true;
        code = sqlite3_prepare_v2(connection_.get(), firstUse.constData(), -1, &prepared, nullptr);
        declaring_ = false;
        sqlite3_finalize(prepared);
    }
    if (code != SQLITE_OK) {
        fail(code);
    }
}

void SqlConnection::fail(int code)
{
    pending_.rethrow();
    if (code == SQLITE_NOMEM) {
        throw std::bad_alloc();
    }
    const auto* message = static_cast<const QChar*>(sqlite3_errmsg16(connection_.get()));
    throw runtime::RunTimeError(runtime::ErrorNumber::QueryTooComplex).withHint(QString(message));
}

void SqlConnection::run(const SqlText& text, const std::function<void(const ResultRow&)>& eachRow)
{
    pending_.clear();
    sqlite3_stmt* prepared = nullptr;
    const int bytes = static_cast<int>(text.sql.size() * 2);
    int code = sqlite3_prepare16_v2(connection_.get(), text.sql.utf16(), bytes, &prepared, nullptr);
    const StatementHandle statement(prepared);
    for (std::size_t i = 0; i < text.parameters.size() && code == SQLITE_OK; ++i) {
        const int number = static_cast<int>(i) + 1;
        // A parameter that the final text no longer needs is unknown to the statement.
        if (number <= sqlite3_bind_parameter_count(prepared)) {
            code = bindParameter(prepared, number, text.parameters[i]);
        }
    }
    if (code != SQLITE_OK) {
        fail(code);
    }
    for (code = sqlite3_step(prepared); code == SQLITE_ROW; code = sqlite3_step(prepared)) {
        eachRow(ResultRow(prepared));
    }
    if (code != SQLITE_DONE) {
        fail(code);
    }
}

} // namespace data
