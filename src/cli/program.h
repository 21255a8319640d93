// The program: a command line in, an exit status out.
#pragma once

#include "cli/exit_status.h"

#include <QStringList>

namespace cli {

/// `arguments` without the program's name. Throws nothing: every error is told on standard error.
[[nodiscard]] ExitStatus run(const QStringList& arguments);

} // namespace cli
