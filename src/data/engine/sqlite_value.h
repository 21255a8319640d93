// Values on their way into and out of SQLite.
//
// SQLite knows no dates and no truth values: they are numbers there (days; -1 and 0), also in columns, comparisons and
// keys. Only on the way into a function a subtype tells them apart (as_date, as_boolean).
#pragma once

#include "jet/format/value.h"
#include "runtime/value.h"

#include <QStringView>

#include <sqlite3.h>

namespace data {

inline constexpr unsigned kDateSubtype = 'D';
inline constexpr unsigned kBooleanSubtype = 'B';

[[nodiscard]] runtime::Value valueOf(sqlite3_value* value);
/// The characters of a text; good until the value changes.
[[nodiscard]] QStringView textOf(sqlite3_value* value);
void setResult(sqlite3_context* context, const runtime::Value& value);
/// As fromFile() gives it.
void setResult(sqlite3_context* context, const jet::Value& value);
/// Returns SQLite's code.
int bindParameter(sqlite3_stmt* statement, int number, const runtime::Value& value);

} // namespace data
