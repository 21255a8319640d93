// Functions over the rows of a group.
#pragma once

#include "data/language/sql_ast.h"
#include "data/types/expression_type.h"

#include <QStringView>

namespace data {

struct Aggregate {
    QStringView name;    ///< in lower case
    QStringView sqlName; ///< SQLite's own, or one that the connection registers
    enum class Result { Count, Sum, Number, LikeArgument } result = Result::Number;
    bool needsNumber = false; ///< refuses texts

    [[nodiscard]] ExpressionType resultType(ExpressionType argument) const;
};

/// The aggregate of that name without regard to case, or null.
[[nodiscard]] const Aggregate* aggregateNamed(QStringView name);

/// Whether an aggregate stands in the expression (not counting subqueries).
[[nodiscard]] bool containsAggregate(const Expression& expression);

} // namespace data
