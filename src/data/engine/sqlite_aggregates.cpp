#include "data/engine/sqlite_aggregates.h"

#include "data/engine/sqlite_value.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <cmath>
#include <memory>

namespace data {
namespace {

constexpr int kFlags = SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;

struct FreeValue {
    void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
};
using KeptValue = std::unique_ptr<sqlite3_value, FreeValue>;

KeptValue kept(sqlite3_value* value)
{
    KeptValue copy(sqlite3_value_dup(value));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

/// Adapts a class with add(value) and result(context) to SQLite, which hands out memory filled with zeros for each
/// group.
template <typename State>
class Adapter
{
public:
    static void step(sqlite3_context* context, int, sqlite3_value** values)
    {
        pendingOf(context).guard(context, [&] {
            auto* slot = static_cast<State**>(sqlite3_aggregate_context(context, sizeof(State*)));
            if (slot == nullptr) {
                throw std::bad_alloc();
            }
            if (*slot == nullptr) {
                *slot = std::make_unique<State>().release();
            }
            (*slot)->add(values[0]);
        });
    }

    static void finish(sqlite3_context* context)
    {
        auto* slot = static_cast<State**>(sqlite3_aggregate_context(context, 0));
        const std::unique_ptr<State> state(slot == nullptr ? nullptr : *slot);
        pendingOf(context).guard(context, [&] {
            if (state != nullptr) {
                state->result(context);
            } else {
                sqlite3_result_null(context);
            }
        });
    }

private:
    static PendingError& pendingOf(sqlite3_context* context)
    {
        return *static_cast<PendingError*>(sqlite3_user_data(context));
    }
};

class First
{
public:
    void add(sqlite3_value* value)
    {
        if (value_ == nullptr) {
            value_ = kept(value);
        }
    }
    void result(sqlite3_context* context) const { sqlite3_result_value(context, value_.get()); }

private:
    KeptValue value_;
};

class Last
{
public:
    void add(sqlite3_value* value) { value_ = kept(value); }
    void result(sqlite3_context* context) const { sqlite3_result_value(context, value_.get()); }

private:
    KeptValue value_;
};

class Single
{
public:
    void add(sqlite3_value* value)
    {
        if (value_ != nullptr) {
            throw runtime::RunTimeError(runtime::ErrorNumber::MoreThanOneRecord);
        }
        value_ = kept(value);
    }
    void result(sqlite3_context* context) const { sqlite3_result_value(context, value_.get()); }

private:
    KeptValue value_;
};

/// Mean and squared deviations, updated value by value, so that large equal parts do not cancel.
template <bool ofSample, bool root>
class Deviation
{
public:
    void add(sqlite3_value* sqlValue)
    {
        const runtime::Value value = valueOf(sqlValue);
        if (runtime::isNull(value)) {
            return;
        }
        const double number = runtime::toDouble(value);
        ++count_;
        const double before = number - mean_;
        mean_ += before / count_;
        squares_ += before * (number - mean_);
    }

    void result(sqlite3_context* context) const
    {
        const double divisor = ofSample ? count_ - 1 : count_;
        if (divisor <= 0) {
            sqlite3_result_null(context);
            return;
        }
        const double variance = squares_ / divisor;
        sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
    }

private:
    double count_ = 0;
    double mean_ = 0;
    double squares_ = 0;
};

template <typename State>
void add(sqlite3* connection, const char* name, PendingError& pending)
{
    const int code = sqlite3_create_function_v2(connection, name, 1, kFlags, &pending, nullptr, Adapter<State>::step,
                                                Adapter<State>::finish, nullptr);
    if (code != SQLITE_OK) {
        throw std::bad_alloc();
    }
}

} // namespace

void registerAggregates(sqlite3* connection, PendingError& pending)
{
    add<First>(connection, "agg_first", pending);
    add<Last>(connection, "agg_last", pending);
    add<Single>(connection, "agg_single", pending);
    add<Deviation<true, true>>(connection, "agg_stdev", pending);
    add<Deviation<false, true>>(connection, "agg_stdevp", pending);
    add<Deviation<true, false>>(connection, "agg_var", pending);
    add<Deviation<false, false>>(connection, "agg_varp", pending);
}

} // namespace data
