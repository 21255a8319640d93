#include "data/types/expression_type.h"

#include <algorithm>

namespace data {
namespace {

ExpressionType widerNumber(ExpressionType left, ExpressionType right)
{
    if (left.type == right.type) {
        return typeOf(*left.type);
    }
    if (left.isWhole() && right.isWhole()) {
        return typeOf(FieldType::Long);
    }
    const bool exact =
        (left.isWhole() || left.is(FieldType::Currency)) && (right.isWhole() || right.is(FieldType::Currency));
    return typeOf(exact ? FieldType::Currency : FieldType::Double);
}

/// Arithmetic widens whole numbers to Long and inexact ones to Double.
ExpressionType arithmeticType(ExpressionType left, ExpressionType right)
{
    const ExpressionType wider = widerNumber(left, right);
    if (wider.isWhole()) {
        return typeOf(FieldType::Long);
    }
    return wider.is(FieldType::Currency) ? wider : typeOf(FieldType::Double);
}

bool isDate(ExpressionType type)
{
    return type.is(FieldType::Date);
}

bool countsOrDate(ExpressionType type)
{
    return type.isNumber() || isDate(type);
}

} // namespace

ExpressionType commonType(ExpressionType left, ExpressionType right)
{
    if (!left.isKnown() || !right.isKnown()) {
        return left.isKnown() ? left : right;
    }
    if (left.type == right.type) {
        return {left.type, left.size == 0 || right.size == 0 ? 0 : std::max(left.size, right.size)};
    }
    if (left.isText() || right.isText()) {
        const bool memo = left.is(FieldType::Memo) || right.is(FieldType::Memo);
        return typeOf(memo ? FieldType::Memo : FieldType::Text);
    }
    if (isDate(left) || isDate(right)) {
        return typeOf(FieldType::Date);
    }
    if (left.isNumber() && right.isNumber()) {
        return widerNumber(left, right);
    }
    return {};
}

ExpressionType sumType(ExpressionType left, ExpressionType right)
{
    if (left.isText() && right.isText()) {
        return typeOf(FieldType::Text);
    }
    if (left.isNumber() && right.isNumber()) {
        return arithmeticType(left, right);
    }
    if ((isDate(left) || isDate(right)) && (countsOrDate(left) || !left.isKnown()) &&
        (countsOrDate(right) || !right.isKnown())) {
        return typeOf(FieldType::Date);
    }
    return {};
}

ExpressionType differenceType(ExpressionType left, ExpressionType right)
{
    if (isDate(left) && !isDate(right)) {
        return typeOf(FieldType::Date);
    }
    return left.isNumber() && right.isNumber() ? arithmeticType(left, right) : typeOf(FieldType::Double);
}

ExpressionType productType(ExpressionType left, ExpressionType right)
{
    return left.isNumber() && right.isNumber() && left.isWhole() && right.isWhole() ? typeOf(FieldType::Long)
                                                                                    : typeOf(FieldType::Double);
}

bool areComparable(ExpressionType left, ExpressionType right)
{
    return !left.isKnown() || !right.isKnown() || (left.isText() && right.isText()) ||
           (countsOrDate(left) && countsOrDate(right)) || (left.is(FieldType::Binary) && right.is(FieldType::Binary));
}

} // namespace data
