// Hints for run-time errors on their way to the user.
#pragma once

#include "runtime/run_time_error.h"

#include <QString>

namespace runtime {

/// Runs an action and returns what it yields. A run-time error that leaves it gets this hint in the place of its own.
template <typename Action>
auto withHintOnError(const QString& hint, const Action& action)
{
    try {
        return action();
    } catch (const RunTimeError& error) {
        throw error.withHint(hint);
    }
}

} // namespace runtime
