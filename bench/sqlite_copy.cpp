#include "sqlite_copy.h"

#include "jet/database.h"

#include <filesystem>
#include <stdexcept>
#include <variant>

namespace bench {

namespace {

void check(int result, sqlite3* connection)
{
    if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW) {
        throw std::runtime_error(sqlite3_errmsg(connection));
    }
}

void bind(sqlite3_stmt* statement, int position, const jet::Value& value)
{
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        sqlite3_bind_int(statement, position, *number);
    } else if (const auto* real = std::get_if<double>(&value)) {
        sqlite3_bind_double(statement, position, *real);
    } else if (const auto* date = std::get_if<jet::DateTime>(&value)) {
        sqlite3_bind_double(statement, position, date->days);
    } else if (const auto* text = std::get_if<std::u16string>(&value)) {
        sqlite3_bind_text16(statement, position, text->data(), static_cast<int>(text->size() * 2), SQLITE_TRANSIENT);
    } else {
        sqlite3_bind_null(statement, position);
    }
}

} // namespace

void execute(sqlite3* connection, const std::string& sql)
{
    check(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), connection);
}

Sqlite copyReadings(const std::string& diary, const std::string& sqliteFile)
{
    std::filesystem::remove(sqliteFile); // the benchmark may run more than once
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(sqliteFile.c_str(), &opened);
    Sqlite connection(opened);
    check(result, connection.get());
    execute(connection.get(), "PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL; PRAGMA page_size=4096;"
                              "CREATE TABLE BloodSugarLevels(BloodSugerNo INTEGER PRIMARY KEY, BloodSugerLevel REAL, "
                              "ReadingTime REAL, ReadingType INTEGER, Comment TEXT);"
                              "CREATE INDEX ReadingTime ON BloodSugarLevels(ReadingTime); BEGIN");
    sqlite3_stmt* statement = nullptr;
    check(
        sqlite3_prepare_v2(connection.get(), "INSERT INTO BloodSugarLevels VALUES(?,?,?,?,?)", -1, &statement, nullptr),
        connection.get());
    const auto file = jet::Database::open(jet::posixFileSystem(), diary, jet::OpenMode::ReadOnly);
    const jet::Table& table = file->table("BloodSugarLevels");
    const auto columns = table.definition().displayOrder();
    for (const auto rows = table.scan(); rows->next();) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            bind(statement, static_cast<int>(i) + 1, rows->row().value(*columns[i]));
        }
        check(sqlite3_step(statement), connection.get());
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    execute(connection.get(), "COMMIT");
    return connection;
}

} // namespace bench
