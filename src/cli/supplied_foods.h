// Where the supplied food table is.
#pragma once

#include <QString>

namespace cli {

/// Beside an installed program in share/quillon, else where the program was built.
[[nodiscard]] QString suppliedFoods();

} // namespace cli
