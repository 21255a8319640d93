// The dialect's functions, operators, aggregates and its order of texts, as SQLite sees them.
#pragma once

#include "data/engine/pending_error.h"
#include "data/functions/function.h"

#include <deque>

namespace data {

/// What a registered function needs; must live as long as the connection.
class FunctionRegistry
{
public:
    explicit FunctionRegistry(PendingError& pending) : pending_(pending) {}
    /// fn_NAME and op_NAME for the functions and operators, agg_NAME for the aggregates that SQLite has not, as_date
    /// and as_boolean, and the collation of texts. Throws std::bad_alloc.
    void registerAll(sqlite3* connection);

private:
    struct Entry {
        const Function* function;
        PendingError* pending;
    };
    static void callFunction(sqlite3_context* context, int count, sqlite3_value** values);
    void add(sqlite3* connection, const char* prefix, const Function& function);

    PendingError& pending_;
    std::deque<Entry> entries_;
};

} // namespace data
