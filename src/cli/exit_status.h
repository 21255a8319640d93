// What the program tells the shell.
#pragma once

namespace cli {

enum class ExitStatus : int {
    Done = 0,
    Fault = 1, ///< told on standard error
    Usage = 2, ///< the command line makes no sense; told on standard error
};

} // namespace cli
