// A diary as a whole file, for those who copy it.
#pragma once

#include "jet/database.h"
#include "runtime/value.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace data {

/// For reading and writing where the file may be written, so that an interrupted change can be taken back. Throws
/// jet::Error.
[[nodiscard]] std::unique_ptr<jet::Database> openDiary(const QString& path);

/// What of the file contradicts itself, in words. What other programs leave behind is no damage.
[[nodiscard]] QStringList damageIn(jet::Database& file);

/// "2026-11-21"
[[nodiscard]] QString isoDate(runtime::Date day);

/// The path with " 2", " 3" ... behind the name where files, or journals of files, have the names before.
[[nodiscard]] QString freePath(const QString& folder, const QString& name, const QString& suffix);

} // namespace data
