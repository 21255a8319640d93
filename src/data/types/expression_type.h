// What is known of an expression before it is evaluated.
#pragma once

#include "data/types/field.h"

#include <optional>

namespace data {

/// A type, or none where only the value itself will tell (Null, a function of values of several kinds).
struct ExpressionType {
    std::optional<FieldType> type;
    int size = 0; ///< Text: the most characters; 0 where there is no limit

    [[nodiscard]] bool isKnown() const { return type.has_value(); }
    [[nodiscard]] bool is(FieldType wanted) const { return type == wanted; }
    [[nodiscard]] bool isText() const { return is(FieldType::Text) || is(FieldType::Memo) || is(FieldType::Guid); }
    /// Booleans count: they are -1 and 0.
    [[nodiscard]] bool isNumber() const;
    [[nodiscard]] bool isWhole() const;
};

inline bool ExpressionType::isWhole() const
{
    return is(FieldType::Boolean) || is(FieldType::Byte) || is(FieldType::Integer) || is(FieldType::Long);
}

inline bool ExpressionType::isNumber() const
{
    return isWhole() || is(FieldType::Currency) || is(FieldType::Single) || is(FieldType::Double) ||
           is(FieldType::Decimal);
}

[[nodiscard]] inline ExpressionType typeOf(FieldType type)
{
    return {type, 0};
}

/// The type of a place that holds values of both: branches of IIf, columns of a union. Text wins over everything,
/// dates over numbers, the wider number over the narrower.
[[nodiscard]] ExpressionType commonType(ExpressionType left, ExpressionType right);
/// The type of a sum, a difference or a product.
[[nodiscard]] ExpressionType sumType(ExpressionType left, ExpressionType right);
[[nodiscard]] ExpressionType differenceType(ExpressionType left, ExpressionType right);
[[nodiscard]] ExpressionType productType(ExpressionType left, ExpressionType right);
/// Whether the two can be compared: texts with texts, numbers and dates with each other.
[[nodiscard]] bool areComparable(ExpressionType left, ExpressionType right);

} // namespace data
