// A diary in SQLite's own format, to compare with.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>

namespace bench {

struct CloseSqlite {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
using Sqlite = std::unique_ptr<sqlite3, CloseSqlite>;

/// Throws std::runtime_error with SQLite's words.
void execute(sqlite3* connection, const std::string& sql);

/// Makes an SQLite file with the diary's tables, keys, indexes and rows, and with its queries ExcelHistory and
/// MealDetails as views; rollback journal and full synchronisation, as a durable insert needs them.
[[nodiscard]] Sqlite copyDiary(const std::string& diary, const std::string& sqliteFile);
/// Opens a file for reading.
[[nodiscard]] Sqlite openSqlite(const std::string& sqliteFile);
/// Reads every column of every row that the statement yields; returns how many rows.
std::int64_t readAll(sqlite3* connection, const std::string& sql);

} // namespace bench
