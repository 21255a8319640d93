// Adds the page to errors of code that sees only bytes.
#pragma once

#include "jet/disk/error.h"

#include <utility>

namespace jet {

/// Runs the function; an Error that names no page leaves with this one.
template <typename Function>
decltype(auto) atPage(PageNumber page, Function&& function)
{
    try {
        return std::forward<Function>(function)();
    } catch (const Error& error) {
        if (error.page()) {
            throw;
        }
        throw Error(error.code(), page, error.what());
    }
}

} // namespace jet
