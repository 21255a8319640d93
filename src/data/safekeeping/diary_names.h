// Names of files that are made beside a diary.
#pragma once

#include "runtime/value.h"

#include <QString>

namespace data {

/// "2026-11-21"
[[nodiscard]] QString isoDate(runtime::Date day);

/// The path with " 2", " 3" ... behind the name where files, or journals of files, have the names before.
[[nodiscard]] QString freePath(const QString& folder, const QString& name, const QString& suffix);

} // namespace data
