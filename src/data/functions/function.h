// Functions and operators of the SQL dialect, as plain functions of values.
#pragma once

#include "data/types/expression_type.h"
#include "runtime/value.h"

#include <QStringView>

#include <span>

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
[[nodiscard]] std::span<const Function* const> allFunctions();

/// Operators that SQLite's own ones do not stand for. They cannot be called by name.
namespace operators {
extern const Function kConcatenate; ///< any number of operands; null counts as "" unless all are null
extern const Function kAdd;         ///< two texts are joined, everything else is added
extern const Function kSubtract;
extern const Function kMultiply;
extern const Function kDivide;      ///< error 11 for a divisor of 0, as the next two
extern const Function kWholeDivide; ///< of whole numbers, halves rounded to even
extern const Function kModulo;      ///< likewise
extern const Function kPower;
extern const Function kNegate;
extern const Function kLike;
extern const Function kTruth;  ///< a value as a condition
extern const Function kAsText; ///< null stays null
[[nodiscard]] std::span<const Function* const> all();
} // namespace operators

// The families, each in a file of its own.
[[nodiscard]] std::span<const Function> dateFunctions();
[[nodiscard]] std::span<const Function> textFunctions();
[[nodiscard]] std::span<const Function> numberFunctions();
[[nodiscard]] std::span<const Function> conversionFunctions();

/// Throws run-time error 5, "Invalid procedure call or argument".
[[noreturn]] void refuseArgument();
/// The argument as a whole number, rounded half to even; 5 when it is below `least`.
[[nodiscard]] qint32 countOf(const runtime::Value& value, qint32 least);

} // namespace data
