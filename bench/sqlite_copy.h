// A diary in SQLite's own format, to compare with.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

namespace bench {

struct CloseSqlite {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
using Sqlite = std::unique_ptr<sqlite3, CloseSqlite>;

struct FinishStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinishStatement>;

// All throw std::runtime_error with SQLite's words.

void execute(sqlite3* connection, const std::string& sql);
[[nodiscard]] Statement prepare(sqlite3* connection, const std::string& sql);
/// Whether there is a row at hand now.
[[nodiscard]] bool step(sqlite3_stmt* statement);

/// Makes an SQLite file with the diary's tables, keys, indexes and rows, and with its queries ExcelHistory and
/// MealDetails as views; rollback journal and full synchronisation, as a durable insert needs them.
[[nodiscard]] Sqlite copyDiary(const std::string& diary, const std::string& sqliteFile);
enum class Access { Read, Write };
/// Opens a file that copyDiary has made.
[[nodiscard]] Sqlite openSqlite(const std::string& sqliteFile, Access access = Access::Read);

} // namespace bench
