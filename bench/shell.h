// Programs that are run and waited for.
#pragma once

#include <string>

namespace bench {

/// Throws std::runtime_error when the command fails.
void runInShell(const std::string& command);
[[nodiscard]] std::string quotedForShell(const std::string& word);

} // namespace bench
