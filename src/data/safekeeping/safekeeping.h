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

struct Restored {
    QString kept;            ///< where the file is now that was there before; empty when there was none
    bool wasDamaged = false; ///< that file, so it is beside the diary and not among the dated copies
};

/// Puts a copy of a backup in the place of the diary. The backup is only read; when it is damaged or no diary, nothing
/// changes (3343).
/// What was there before is kept as it is on the disk and never removed: among the dated copies, or where it is damaged
/// or cannot be opened, together with its journal, beside the diary. Other programs may have the diary open, but not be
/// about to read or change it (3045); those that had it open notice.
[[nodiscard]] Restored restore(const QString& backup, const QString& diary, const runtime::Clock& clock);

struct Compacted {
    qint64 bytesBefore = 0;
    qint64 bytesAfter = 0;
};

/// Writes the diary afresh without the room that deleted records left. The new file takes its place only when it was
/// found to be sound and to hold the same. A diary that is damaged (3343), or holds what cannot be carried over, such
/// as forms of another program (3027), stays as it is. Other programs may have the diary open, as with restore().
[[nodiscard]] Compacted compact(const QString& diary);

} // namespace data
