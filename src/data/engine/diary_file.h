// The diary as a file of the engine.
#pragma once

#include "jet/database.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace data {

/// For reading and writing where the file may be written, so that an interrupted change can be taken back, else for
/// reading. Throws jet::Error, and runtime::RunTimeError 3051 where there is no permission to read.
[[nodiscard]] std::unique_ptr<jet::Database> openDiary(const QString& path,
                                                       jet::FileSystem& fileSystem = jet::posixFileSystem());

/// The fault with its page, where one can be named.
[[nodiscard]] QString textOf(const jet::Fault& fault);

/// What of the file contradicts itself, in words. What other programs leave behind is no damage.
[[nodiscard]] QStringList damageIn(jet::Database& file);

} // namespace data
