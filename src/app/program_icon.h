// The icon of the program's windows.
#pragma once

#include <QIcon>

namespace app {

/// A page of the diary, a drop and a quill, drawn in the usual sizes.
[[nodiscard]] QIcon programIcon();

} // namespace app
