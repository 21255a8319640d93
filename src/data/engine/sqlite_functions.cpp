#include "data/engine/sqlite_functions.h"

#include "data/engine/sqlite_aggregates.h"
#include "data/engine/sqlite_value.h"
#include "data/language/catalogue.h"
#include "jet/format/text_key.h"

namespace data {
namespace {

constexpr int kFlags = SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS | SQLITE_SUBTYPE;

template <unsigned subtype>
void markWith(sqlite3_context* context, int, sqlite3_value** values)
{
    sqlite3_result_value(context, values[0]);
    sqlite3_result_subtype(context, subtype);
}

int compare(void*, int leftBytes, const void* left, int rightBytes, const void* right)
{
    const auto view = [](const void* text, int bytes) {
        return std::u16string_view(static_cast<const char16_t*>(text),
                                   static_cast<std::size_t>(bytes) / sizeof(char16_t));
    };
    return jet::compareTexts(view(left, leftBytes), view(right, rightBytes));
}

void require(int code)
{
    if (code != SQLITE_OK) {
        throw std::bad_alloc();
    }
}

} // namespace

void FunctionRegistry::callFunction(sqlite3_context* context, int count, sqlite3_value** values)
{
    const auto& entry = *static_cast<const Entry*>(sqlite3_user_data(context));
    entry.pending->guard(context, [&] {
        std::vector<runtime::Value> arguments;
        arguments.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            arguments.push_back(valueOf(values[i]));
        }
        setResult(context, call(*entry.function, arguments));
    });
}

void FunctionRegistry::add(sqlite3* connection, const char* prefix, const Function& function)
{
    entries_.push_back({&function, &pending_});
    const QByteArray name = prefix + function.name.toUtf8();
    require(sqlite3_create_function_v2(connection, name.constData(), -1, kFlags, &entries_.back(), callFunction,
                                       nullptr, nullptr, nullptr));
}

void FunctionRegistry::registerAll(sqlite3* connection)
{
    for (const Function* function : allFunctions()) {
        add(connection, "fn_", *function);
    }
    for (const Function* function : operators::all()) {
        add(connection, "op_", *function);
    }
    require(sqlite3_create_function_v2(connection, "as_date", 1, kFlags, nullptr, markWith<kDateSubtype>, nullptr,
                                       nullptr, nullptr));
    require(sqlite3_create_function_v2(connection, "as_boolean", 1, kFlags, nullptr, markWith<kBooleanSubtype>, nullptr,
                                       nullptr, nullptr));
    registerAggregates(connection, pending_);
    require(sqlite3_create_collation_v2(connection, kTextCollation.toUtf8().constData(), SQLITE_UTF16_ALIGNED, nullptr,
                                        compare, nullptr));
}

} // namespace data
