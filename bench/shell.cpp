#include "shell.h"

#include <cstdlib>
#include <stdexcept>

namespace bench {

void runInShell(const std::string& command)
{
    if (std::system(command.c_str()) != 0) {
        throw std::runtime_error("this failed: " + command);
    }
}

std::string quotedForShell(const std::string& word)
{
    std::string quoted = "'";
    for (const char character : word) {
        quoted += character == '\'' ? std::string(R"('\'')") : std::string(1, character);
    }
    return quoted + '\'';
}

} // namespace bench
