// Recordsets as lines of tab-separated values, for other programs to read.
#pragma once

#include "data/database.h"
#include "runtime/value.h"

#include <QString>

namespace cli {

class Output;

/// A text as one column: backslash, tab, line feed and carriage return become \\ \t \n \r.
[[nodiscard]] QString escaped(const QString& text);

/// The same in every locale and without loss: null is empty; a date is dd/mm/yyyy hh:mm:ss, its time never left out (a
/// number of days outside the years 100 to 9999 stays a number); a number is the shortest that reads back as the same,
/// with a point; true and false are True and False; bytes are hexadecimal digits.
[[nodiscard]] QString column(const runtime::Value& value, data::FieldType type);

/// A line with the fields' names, then the records, read to the end. The file is locked while some hundred records are
/// read and never while the output takes them. When a record cannot be read, those before it have been written.
void writeRecords(data::Database& database, data::Recordset& records, Output& output);

} // namespace cli
