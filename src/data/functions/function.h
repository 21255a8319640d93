// Functions and operators of the SQL dialect, as plain functions of values.
#pragma once

#include "data/types/expression_type.h"
#include "runtime/value.h"

#include <QStringView>

#include <span>
#include <vector>

namespace data {

using Arguments = std::span<const runtime::Value>;

/// What a function does with a null argument.
enum class Nulls {
    Pass,   ///< the result is null, whatever the other arguments are
    Refuse, ///< run-time error 94
    Own,    ///< the function sees it
};

struct Function {
    QStringView name; ///< in lower case
    int fewest = 0;   ///< arguments
    int most = 0;
    Nulls nulls = Nulls::Pass;
    ExpressionType (*resultType)(std::span<const ExpressionType> arguments) = nullptr;
    /// Same arguments, same result. Throws runtime::RunTimeError.
    runtime::Value (*evaluate)(Arguments arguments) = nullptr;
};

template <FieldType type>
[[nodiscard]] ExpressionType always(std::span<const ExpressionType>)
{
    return typeOf(type);
}

/// The function with its rule for nulls applied.
[[nodiscard]] runtime::Value call(const Function& function, Arguments arguments);

/// The function of that name without regard to case, or null. IIf, Nz, Choose and Switch, Now, Date and Time, and the
/// aggregates are not among them: the translator knows these.
[[nodiscard]] const Function* functionNamed(QStringView name);
[[nodiscard]] const std::vector<const Function*>& allFunctions();

/// Operators that SQLite's own ones do not stand for. They cannot be called by name.
namespace operators {
[[nodiscard]] const Function& concatenate(); ///< any number of operands; null counts as "" unless all are null
[[nodiscard]] const Function& add();         ///< two texts are joined, everything else is added
[[nodiscard]] const Function& subtract();
[[nodiscard]] const Function& multiply();
[[nodiscard]] const Function& divide();      ///< error 11 for a divisor of 0, as the next two
[[nodiscard]] const Function& wholeDivide(); ///< of whole numbers, halves rounded to even
[[nodiscard]] const Function& modulo();      ///< likewise
[[nodiscard]] const Function& power();
[[nodiscard]] const Function& negate();
[[nodiscard]] const Function& like();
[[nodiscard]] const Function& truth();  ///< a value as a condition
[[nodiscard]] const Function& asText(); ///< null stays null
[[nodiscard]] const std::vector<const Function*>& all();
} // namespace operators

// The families, each in a file of its own.
[[nodiscard]] std::span<const Function> dateFunctions();
[[nodiscard]] std::span<const Function> textFunctions();
[[nodiscard]] std::span<const Function> numberFunctions();
[[nodiscard]] std::span<const Function> conversionFunctions();

/// A number from a value, whole numbers rounded half to even; 5 when it is below `least`.
[[nodiscard]] qint32 countOf(const runtime::Value& value, qint32 least);

} // namespace data
