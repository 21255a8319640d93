// The commands, each in a file of its own.
#pragma once

#include "cli/command.h"

namespace cli {

[[nodiscard]] Command createCommand();
[[nodiscard]] Command checkCommand();
[[nodiscard]] Command tablesCommand();
[[nodiscard]] Command queriesCommand();
[[nodiscard]] Command dumpCommand();
[[nodiscard]] Command sqlCommand();
[[nodiscard]] Command reportCommand();
[[nodiscard]] Command printCommand();
[[nodiscard]] Command importCommand();
[[nodiscard]] Command backUpCommand();
[[nodiscard]] Command restoreCommand();
[[nodiscard]] Command compactCommand();

} // namespace cli
