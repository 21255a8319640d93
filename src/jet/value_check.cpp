#include "jet/value_check.h"

#include "jet/format/row_codec.h"

namespace jet {

namespace {

[[noreturn]] void refuse(ErrorCode code, const Column& column, const std::string& why)
{
    throw Error(code, "The column \"" + column.name + "\" " + why);
}

template <typename T>
void requireType(const Column& column, const Value& value)
{
    if (!std::holds_alternative<T>(value)) {
        refuse(ErrorCode::InvalidArgument, column, "was given a value of another type");
    }
}

/// Minus zero becomes zero: the two are equal to everybody but an index, which compares bits.
template <typename Number>
[[nodiscard]] Number withoutMinusZero(Number number)
{
    return number == 0 ? Number{0} : number;
}

/// The value as it reads once it is stored.
[[nodiscard]] Value storedValue(const Column& column, const Value& value)
{
    switch (column.type) {
    case ColumnType::Boolean:
        requireType<bool>(column, value);
        return value;
    case ColumnType::Memo:
        requireType<std::u16string>(column, value);
        return value;
    case ColumnType::Ole:
        requireType<Bytes>(column, value);
        return value;
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::DateTime:
    case ColumnType::Binary:
    case ColumnType::Text:
    case ColumnType::Guid:
    case ColumnType::Numeric:
        return decodeValue(column, encodeValue(column, value));
    case ColumnType::Block:
        break;
    }
    refuse(ErrorCode::ReadOnly, column, "has a type that can be read and not written");
}

} // namespace

Value checkedValue(const Column& column, const ColumnRules& rules, const Value& value)
{
    if (isNull(value)) {
        if (column.type == ColumnType::Boolean) {
            return false;
        }
        if (rules.required) {
            refuse(ErrorCode::NullNotAllowed, column, "must have a value");
        }
        return value;
    }
    Value stored = storedValue(column, value);
    if (const float* single = std::get_if<float>(&stored)) {
        return withoutMinusZero(*single);
    }
    if (const double* number = std::get_if<double>(&stored)) {
        return withoutMinusZero(*number);
    }
    if (const DateTime* date = std::get_if<DateTime>(&stored)) {
        return DateTime{withoutMinusZero(date->days)};
    }
    if (const std::u16string* text = std::get_if<std::u16string>(&stored);
        text != nullptr && text->empty() && !rules.allowsZeroLength) {
        refuse(ErrorCode::InvalidArgument, column, "does not take an empty text");
    }
    return stored;
}

} // namespace jet
