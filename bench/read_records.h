// Every value of every record, as the program reads them and as a program over SQLite alone does.
#pragma once

#include "content.h"

#include "data/recordset.h"

#include <sqlite3.h>

#include <string>

namespace bench {

/// Taker is Untouched or Content.
template <typename Taker>
void readRecords(data::Recordset& records, Taker& taker);
template <typename Taker>
void readRecords(sqlite3* connection, const std::string& sql, Taker& taker);

/// Throws std::runtime_error, with what was to be compared, where the two read different things or nothing at all.
void requireSame(const Content& ours, const Content& theirs, const std::string& what);

} // namespace bench
