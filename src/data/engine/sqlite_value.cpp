#include "data/engine/sqlite_value.h"

#include "data/engine/value_conversion.h"

#include <limits>

namespace data {
namespace {

/// SQLite copies what it is given; the C macro for that is a cast.
const sqlite3_destructor_type kCopies = reinterpret_cast<sqlite3_destructor_type>(-1);

QByteArray bytesOf(sqlite3_value* value)
{
    const void* bytes = sqlite3_value_blob(value);
    return {static_cast<const char*>(bytes), sqlite3_value_bytes(value)};
}

struct SetResult {
    sqlite3_context* context;

    void operator()(runtime::Null) const { sqlite3_result_null(context); }
    void operator()(bool value) const { sqlite3_result_int(context, value ? -1 : 0); }
    void operator()(qint32 value) const { sqlite3_result_int(context, value); }
    void operator()(double value) const { sqlite3_result_double(context, value); }
    void operator()(runtime::Date value) const { sqlite3_result_double(context, value.days); }
    void operator()(const QString& value) const
    {
        sqlite3_result_text16(context, value.utf16(), static_cast<int>(value.size() * 2), kCopies);
    }
    void operator()(const QByteArray& value) const
    {
        sqlite3_result_blob64(context, value.constData(), static_cast<sqlite3_uint64>(value.size()), kCopies);
    }
};

/// Nearly all values of a diary need no conversion, and a text no copy in between.
struct SetFileResult {
    sqlite3_context* context;

    void operator()(jet::Null) const { sqlite3_result_null(context); }
    void operator()(bool value) const { sqlite3_result_int(context, value ? -1 : 0); }
    void operator()(std::uint8_t value) const { sqlite3_result_int(context, value); }
    void operator()(std::int16_t value) const { sqlite3_result_int(context, value); }
    void operator()(std::int32_t value) const { sqlite3_result_int(context, value); }
    void operator()(float value) const { sqlite3_result_double(context, double{value}); }
    void operator()(double value) const { sqlite3_result_double(context, value); }
    void operator()(jet::DateTime value) const { sqlite3_result_double(context, value.days); }
    void operator()(const std::u16string& value) const
    {
        sqlite3_result_text16(context, value.data(), static_cast<int>(value.size() * sizeof(char16_t)), kCopies);
    }
    template <typename Other>
    void operator()(const Other& value) const
    {
        setResult(context, fromFile(value));
    }
};

struct Bind {
    sqlite3_stmt* statement;
    int number;

    int operator()(runtime::Null) const { return sqlite3_bind_null(statement, number); }
    int operator()(bool value) const { return sqlite3_bind_int(statement, number, value ? -1 : 0); }
    int operator()(qint32 value) const { return sqlite3_bind_int(statement, number, value); }
    int operator()(double value) const { return sqlite3_bind_double(statement, number, value); }
    int operator()(runtime::Date value) const { return sqlite3_bind_double(statement, number, value.days); }
    int operator()(const QString& value) const
    {
        return sqlite3_bind_text16(statement, number, value.utf16(), static_cast<int>(value.size() * 2), kCopies);
    }
    int operator()(const QByteArray& value) const
    {
        return sqlite3_bind_blob64(statement, number, value.constData(), static_cast<sqlite3_uint64>(value.size()),
                                   kCopies);
    }
};

} // namespace

QStringView textOf(sqlite3_value* value)
{
    const void* text = sqlite3_value_text16(value); // before the length, which it may change
    const int bytes = sqlite3_value_bytes16(value);
    return {static_cast<const QChar*>(text), bytes / static_cast<int>(sizeof(QChar))};
}

runtime::Value valueOf(sqlite3_value* value)
{
    const unsigned subtype = sqlite3_value_subtype(value);
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: {
        const sqlite3_int64 number = sqlite3_value_int64(value);
        if (subtype == kBooleanSubtype) {
            return number != 0;
        }
        const bool fits = number >= std::numeric_limits<qint32>::min() && number <= std::numeric_limits<qint32>::max();
        if (subtype == kDateSubtype || !fits) {
            const auto inexact = static_cast<double>(number);
            return subtype == kDateSubtype ? runtime::Value(runtime::Date{inexact}) : runtime::Value(inexact);
        }
        return static_cast<qint32>(number);
    }
    case SQLITE_FLOAT: {
        const double number = sqlite3_value_double(value);
        return subtype == kDateSubtype ? runtime::Value(runtime::Date{number}) : runtime::Value(number);
    }
    case SQLITE_TEXT:
        return textOf(value).toString();
    case SQLITE_BLOB:
        return bytesOf(value);
    default:
        return runtime::Null{};
    }
}

void setResult(sqlite3_context* context, const runtime::Value& value)
{
    std::visit(SetResult{context}, value);
}

void setResult(sqlite3_context* context, const jet::Value& value)
{
    std::visit(SetFileResult{context}, value);
}

int bindParameter(sqlite3_stmt* statement, int number, const runtime::Value& value)
{
    return std::visit(Bind{statement, number}, value);
}

} // namespace data
