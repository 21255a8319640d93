// A file from nothing (FORMAT.md, "Creating a file").
#pragma once

#include "jet/disk/file.h"
#include "jet/format/value.h"

#include <string>

namespace jet {

/// Makes a file that holds the system tables and nothing else. It is written under another name beside the path and
/// gets its own when it is complete, so that a crash leaves no half of a file. Throws FileExists.
void makeFile(FileSystem& fileSystem, const std::string& path, DateTime now);

} // namespace jet
