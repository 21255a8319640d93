// Moving a file away that cannot be used, with everything that belongs to it.
#pragma once

#include "jet/disk/file.h"

#include <string>

namespace jet {

/// Gives a file the other name, in the same folder and not in use, together with its journal, byte for byte; durable
/// when it returns. Whenever this is broken off, the file stands under one of the names with its journal beside it, and
/// no file without a journal stands where the journal is that it does not belong to. A journal whose file is gone is
/// moved as well. Throws Locked while another connection has the file.
void setAside(FileSystem& fileSystem, const std::string& path, const std::string& aside);

/// Whether neither a file nor a journal of one has that name.
[[nodiscard]] bool isFreePath(FileSystem& fileSystem, const std::string& path);

} // namespace jet
