// The parts of an expression.
#pragma once

#include "data/language/sql_ast.h"

#include <functional>

namespace data {

/// Calls the visitor for each expression directly inside; subqueries are not entered.
void forEachPart(const Expression& expression, const std::function<void(const Expression&)>& visitor);

} // namespace data
