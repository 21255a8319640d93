// Errors of the engine as the run-time errors that users know.
#pragma once

#include "jet/disk/error.h"
#include "runtime/run_time_error.h"

#include <QString>

#include <new>
#include <utility>

namespace data {

/// The number and words for the error, and as its hint what happened to which file and what can be done.
[[nodiscard]] runtime::RunTimeError translated(const jet::Error& error, const QString& path);

/// Calls the work and lets nothing but RunTimeError out of it (and std::bad_alloc).
template <typename Work>
decltype(auto) translating(const QString& path, Work&& work)
{
    try {
        return std::forward<Work>(work)();
    } catch (const jet::Error& error) {
        throw translated(error, path);
    }
}

} // namespace data
