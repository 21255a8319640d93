// What names of objects, columns and indexes may look like.
#pragma once

#include <string>

namespace jet {

/// Throws InvalidArgument unless the name has 1 to 64 characters, no leading blank, and none of . ! [ ] ` or control
/// characters. `what` is the kind of thing, for the message.
void checkName(const std::string& name, const std::string& what);

/// Whether the names are the same to a person: without regard to case.
[[nodiscard]] bool sameName(const std::string& a, const std::string& b);

} // namespace jet
