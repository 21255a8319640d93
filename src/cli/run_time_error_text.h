// A run-time error as one line of the shell.
#pragma once

#include "runtime/run_time_error.h"

#include <QString>

namespace cli {

/// "Run-time error '3021': No current record." and the hint, where there is one.
[[nodiscard]] QString oneLineOf(const runtime::RunTimeError& error);

} // namespace cli
