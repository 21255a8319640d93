#include "data/engine/value_conversion.h"

#include "data/engine/decimal_conversion.h"
#include "data/functions/field_conversions.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <QUuid>

#include <array>
#include <cmath>
#include <optional>

namespace data {
namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

constexpr double kTenThousand = 10000;

QByteArray bytesOf(const jet::Bytes& bytes)
{
    QByteArray result(static_cast<qsizetype>(bytes.size()), '\0');
    std::transform(bytes.begin(), bytes.end(), result.begin(),
                   [](std::byte byte) { return std::to_integer<char>(byte); });
    return result;
}

jet::Bytes bytesOf(const QByteArray& bytes)
{
    jet::Bytes result(static_cast<std::size_t>(bytes.size()));
    std::transform(bytes.begin(), bytes.end(), result.begin(), [](char byte) { return static_cast<std::byte>(byte); });
    return result;
}

QString textOf(const jet::Guid& guid)
{
    const QByteArray bytes = bytesOf(jet::Bytes(guid.bytes.begin(), guid.bytes.end()));
    return QUuid::fromRfc4122(bytes).toString().toUpper();
}

jet::Guid guidOf(const runtime::Value& value)
{
    const QUuid uuid(runtime::toText(value));
    if (uuid.isNull()) {
        throw RunTimeError(ErrorNumber::TypeMismatch);
    }
    const jet::Bytes bytes = bytesOf(uuid.toRfc4122());
    jet::Guid guid;
    std::copy(bytes.begin(), bytes.end(), guid.bytes.begin());
    return guid;
}

struct FromFile {
    runtime::Value operator()(jet::Null) const { return runtime::Null{}; }
    runtime::Value operator()(bool value) const { return value; }
    runtime::Value operator()(std::uint8_t value) const { return qint32{value}; }
    runtime::Value operator()(std::int16_t value) const { return qint32{value}; }
    runtime::Value operator()(std::int32_t value) const { return qint32{value}; }
    runtime::Value operator()(jet::Currency value) const
    {
        return static_cast<double>(value.tenThousandths) / kTenThousand;
    }
    runtime::Value operator()(float value) const { return double{value}; }
    runtime::Value operator()(double value) const { return value; }
    runtime::Value operator()(jet::DateTime value) const { return runtime::Date{value.days}; }
    runtime::Value operator()(const std::u16string& value) const { return QString::fromStdU16String(value); }
    runtime::Value operator()(const jet::Bytes& value) const { return bytesOf(value); }
    runtime::Value operator()(const jet::Guid& value) const { return textOf(value); }
    runtime::Value operator()(const jet::Numeric& value) const { return numberOf(value); }
};

jet::Value textFor(const runtime::Value& value, const jet::Column& column)
{
    const QString text = runtime::toText(value);
    if (column.type == jet::ColumnType::Text && text.size() > column.length / 2) {
        throw RunTimeError(ErrorNumber::FieldTooSmall)
            .withHint(QStringLiteral("'%1' holds at most %2 characters.")
                          .arg(QString::fromStdString(column.name))
                          .arg(column.length / 2));
    }
    return text.toStdU16String();
}

jet::Value bytesFor(const runtime::Value& value, const jet::Column& column)
{
    const QByteArray* bytes = std::get_if<QByteArray>(&value);
    if (bytes == nullptr) {
        throw RunTimeError(ErrorNumber::TypeMismatch);
    }
    if (column.type == jet::ColumnType::Binary && bytes->size() > column.length) {
        throw RunTimeError(ErrorNumber::FieldTooSmall);
    }
    return bytesOf(*bytes);
}

double shortestSingle(double number)
{
    // A single has 9 significant digits at most; the fewest that lead back to it are the ones a person typed.
    const auto single = static_cast<float>(number);
    for (int digits = 6; digits < 9; ++digits) {
        const double candidate = QByteArray::number(number, 'g', digits).toDouble();
        if (static_cast<float>(candidate) == single) {
            return candidate;
        }
    }
    return number;
}

runtime::Value wholeNumber(const runtime::Value& value)
{
    const double* number = std::get_if<double>(&value);
    if (number == nullptr || *number != std::trunc(*number)) {
        return value;
    }
    const std::optional<qint32> whole = runtime::asLong(*number);
    if (!whole) {
        throw RunTimeError(ErrorNumber::Overflow);
    }
    return *whole;
}

runtime::Value inexactNumber(const runtime::Value& value, FieldType type)
{
    double number = 0;
    if (const qint32* whole = std::get_if<qint32>(&value)) {
        number = *whole;
    } else if (const double* inexact = std::get_if<double>(&value)) {
        number = *inexact;
    } else {
        return value;
    }
    number = finite(number);
    if (type == FieldType::Single) {
        return shortestSingle(number);
    }
    if (type == FieldType::Currency && std::abs(number) < 1e14) {
        return std::round(number * kTenThousand) / kTenThousand;
    }
    return number;
}

} // namespace

Field fieldOf(const jet::Column& column)
{
    Field field;
    field.name = QString::fromStdString(column.name);
    switch (column.type) {
    case jet::ColumnType::Boolean:
        field.type = FieldType::Boolean;
        break;
    case jet::ColumnType::Byte:
        field.type = FieldType::Byte;
        break;
    case jet::ColumnType::Integer:
        field.type = FieldType::Integer;
        break;
    case jet::ColumnType::Long:
        field.type = FieldType::Long;
        break;
    case jet::ColumnType::Currency:
        field.type = FieldType::Currency;
        break;
    case jet::ColumnType::Single:
        field.type = FieldType::Single;
        break;
    case jet::ColumnType::Double:
        field.type = FieldType::Double;
        break;
    case jet::ColumnType::DateTime:
        field.type = FieldType::Date;
        break;
    case jet::ColumnType::Text:
        field.type = FieldType::Text;
        field.size = column.length / 2;
        break;
    case jet::ColumnType::Memo:
        field.type = FieldType::Memo;
        break;
    case jet::ColumnType::Guid:
        field.type = FieldType::Guid;
        break;
    case jet::ColumnType::Numeric:
        field.type = FieldType::Decimal;
        break;
    case jet::ColumnType::Binary:
    case jet::ColumnType::Ole:
    case jet::ColumnType::Block:
        field.type = FieldType::Binary;
        break;
    }
    return field;
}

runtime::Value fromFile(const jet::Value& value)
{
    return std::visit(FromFile{}, value);
}

jet::Value toFile(const runtime::Value& value, const jet::Column& column)
{
    if (runtime::isNull(value)) {
        if (column.type == jet::ColumnType::Boolean) {
            throw RunTimeError(ErrorNumber::InvalidUseOfNull);
        }
        return jet::Null{};
    }
    switch (column.type) {
    case jet::ColumnType::Boolean:
        return toBoolean(value);
    case jet::ColumnType::Byte:
        return std::uint8_t{toByte(value)};
    case jet::ColumnType::Integer:
        return std::int16_t{runtime::toInteger(value)};
    case jet::ColumnType::Long:
        return std::int32_t{runtime::toLong(value)};
    case jet::ColumnType::Currency:
        return jet::Currency{std::llround(toCurrency(value) * kTenThousand)};
    case jet::ColumnType::Single:
        return toSingle(value);
    case jet::ColumnType::Double:
        return runtime::toDouble(value);
    case jet::ColumnType::DateTime:
        return jet::DateTime{runtime::toDate(value).days};
    case jet::ColumnType::Text:
    case jet::ColumnType::Memo:
        return textFor(value, column);
    case jet::ColumnType::Guid:
        return guidOf(value);
    case jet::ColumnType::Numeric:
        return numericOf(runtime::toDouble(value), column.precision, column.scale);
    case jet::ColumnType::Binary:
    case jet::ColumnType::Ole:
    case jet::ColumnType::Block:
        break;
    }
    return bytesFor(value, column);
}

runtime::Value asFieldType(const runtime::Value& value, FieldType type)
{
    if (runtime::isNull(value)) {
        return value;
    }
    switch (type) {
    case FieldType::Boolean:
        return runtime::toDouble(value) != 0;
    case FieldType::Byte:
    case FieldType::Integer:
    case FieldType::Long:
        return wholeNumber(value);
    case FieldType::Currency:
    case FieldType::Single:
    case FieldType::Double:
    case FieldType::Decimal:
        return inexactNumber(value, type);
    case FieldType::Date: {
        const bool number = std::holds_alternative<qint32>(value) || std::holds_alternative<double>(value);
        return number ? runtime::Date{runtime::toDouble(value)} : value;
    }
    case FieldType::Text:
    case FieldType::Memo:
    case FieldType::Guid:
        return std::holds_alternative<QString>(value) ? value : runtime::toText(value);
    case FieldType::Binary:
        break;
    }
    return value;
}

} // namespace data
