// Backups of a diary. All errors are runtime::RunTimeError.
#pragma once

#include "runtime/clock.h"

#include <QString>
#include <QStringList>

namespace data {

struct BackUp {
    QString path;
    QStringList damage; ///< of the diary, and so of the copy: where it contradicts itself, in words; empty when sound
};

/// Copies a diary, byte for byte; other programs may have it open. An existing file is never overwritten (58).
[[nodiscard]] BackUp backUp(const QString& diary, const QString& destination);
/// The same, into the folder of the dated copies, under a name of the day that is free.
[[nodiscard]] BackUp backUpToday(const QString& diary, const runtime::Clock& clock);

} // namespace data
