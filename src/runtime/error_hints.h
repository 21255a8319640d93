// Hints for run-time errors on their way to the user.
#pragma once

#include "runtime/run_time_error.h"

#include <QString>

namespace runtime {

/// Runs an action and returns what it does. A run-time error of it gets this hint in the place of its own.
template <typename Action>
auto withHint(const QString& hint, const Action& action)
{
    try {
        return action();
    } catch (const RunTimeError& error) {
        throw error.withHint(hint);
    }
}

/// The same error, its hint followed by one more sentence.
[[nodiscard]] inline RunTimeError withSentence(const RunTimeError& error, const QString& sentence)
{
    return error.withHint((error.hint() + u' ' + sentence).trimmed());
}

} // namespace runtime
