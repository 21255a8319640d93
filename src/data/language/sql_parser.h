// The grammar of Jet's dialect.
#pragma once

#include "data/language/sql_ast.h"

namespace data {

/// The statement: SELECT, UNION or DELETE. Everything else is error 3075, with a hint where the statement is one that
/// this program does not know (INSERT, PARAMETERS, TRANSFORM ...).
///
/// From the tightest to the loosest: ^, the sign, * and /, \, Mod, + and -, &, comparisons with Like, Between, In and
/// Is, Not, And, Or, Xor, Eqv, Imp. Operators of one rank group from the left; -2 ^ 2 is -4.
///
/// A word of the language can name a column without brackets where it cannot be meant as such: When, Type, Text, Desc
/// always, Left and Right only behind a dot.
[[nodiscard]] Statement parseStatement(const QString& sql);

} // namespace data
