// The run-time errors that actions end with.
#pragma once

#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <optional>

/// None when the action comes to its end.
template <typename Action>
[[nodiscard]] std::optional<runtime::RunTimeError> errorOf(const Action& action)
{
    try {
        static_cast<void>(action());
        return std::nullopt;
    } catch (const runtime::RunTimeError& error) {
        return error;
    }
}

/// 0 when the action comes to its end.
template <typename Action>
[[nodiscard]] int errorNumberOf(const Action& action)
{
    const std::optional<runtime::RunTimeError> error = errorOf(action);
    return error ? error->number() : 0;
}

/// The error of an action that must have one.
template <typename Action>
[[nodiscard]] runtime::RunTimeError requiredErrorOf(const Action& action)
{
    if (const std::optional<runtime::RunTimeError> error = errorOf(action)) {
        return *error;
    }
    ADD_FAILURE() << "the action came to its end";
    return runtime::RunTimeError(runtime::ErrorNumber::InvalidProcedureCall);
}
