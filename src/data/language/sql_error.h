// Errors of SQL texts, in the words that users of such a program know.
#pragma once

#include "data/language/sql_lexer.h"
#include "runtime/run_time_error.h"

namespace data {

/// 3075 "Syntax error in query expression '...'.": the text from the place on, and a hint that counts the characters.
[[nodiscard]] runtime::RunTimeError syntaxError(const QString& sql, qsizetype position);
/// 3075 for the expression at a place, with a reason instead of "Syntax error".
[[nodiscard]] runtime::RunTimeError expressionError(const QString& reason, const QString& sql, TextRange place);
/// 3078 "Could not find the table or query '...'."
[[nodiscard]] runtime::RunTimeError unknownTableOrQuery(const QString& name);
/// 3061 "Too few parameters. Expected N." for names that no table has.
[[nodiscard]] runtime::RunTimeError unknownFields(const QStringList& names);

} // namespace data
