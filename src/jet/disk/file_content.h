// All bytes of a file.
#pragma once

#include "jet/disk/file.h"

namespace jet {

/// Writes the bytes of one file to another, empty one and makes them durable. The caller sees to it that nobody changes
/// either meanwhile.
void copyContent(File& from, File& to);
[[nodiscard]] bool haveSameContent(File& one, File& other);

} // namespace jet
