// A diary's table in SQLite's own format, to compare with.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

namespace bench {

struct CloseSqlite {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
using Sqlite = std::unique_ptr<sqlite3, CloseSqlite>;

/// Throws std::runtime_error with SQLite's words.
void execute(sqlite3* connection, const std::string& sql);

/// Makes an SQLite file with the diary's BloodSugarLevels, its key and its index on the time; rollback journal and full
/// synchronisation, as a durable insert needs them.
[[nodiscard]] Sqlite copyReadings(const std::string& diary, const std::string& sqliteFile);

} // namespace bench
