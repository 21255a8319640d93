#include "data/safekeeping/safekeeping.h"

#include "data/engine/diary_file.h"
#include "data/engine/error_translation.h"
#include "data/engine/session.h"
#include "data/safekeeping/dated_copies.h"
#include "data/safekeeping/diary_names.h"

#include <QDir>
#include <QFileInfo>

namespace data {
namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

void requireFolderOf(const QString& path)
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QFileInfo(folder).isDir()) {
        throw RunTimeError(ErrorNumber::CannotOpenFile, QStringLiteral("Cannot open the file '%1'.").arg(path),
                           QStringLiteral("There is no folder '%1'.").arg(folder));
    }
}

void requireOtherFile(const QString& backup, const QString& diary)
{
    const QString path = QFileInfo(backup).canonicalFilePath();
    if (!path.isEmpty() && path == QFileInfo(diary).canonicalFilePath()) {
        throw RunTimeError(ErrorNumber::InvalidProcedureCall)
            .withHint(QStringLiteral("The backup '%1' is the diary itself.").arg(backup));
    }
}

/// A backup of a diary that was found sound, and that nobody changes while it is copied.
struct SoundBackup {
    explicit SoundBackup(const QString& path)
        : file(jet::Database::open(jet::posixFileSystem(), path.toStdString(), jet::OpenMode::ReadOnly)), reading(*file)
    {
        if (const QStringList damage = damageIn(*file); !damage.isEmpty()) {
            throw RunTimeError(ErrorNumber::UnrecognisedFormat, QStringLiteral("The backup '%1' is damaged.").arg(path),
                               QStringLiteral("The diary was left as it is. %1").arg(damage.constFirst()));
        }
        if (!file->hasTable("BloodSugarLevels")) {
            throw RunTimeError(
                ErrorNumber::UnrecognisedFormat, QStringLiteral("The file '%1' is no diary.").arg(path),
                QStringLiteral("The diary was left as it is. The file has no table 'BloodSugarLevels'."));
        }
    }

    std::unique_ptr<jet::Database> file;
    ReadScope reading;
};

/// Beside the file that the diary is.
QString nameForDamaged(const QString& diary, const runtime::Clock& clock)
{
    const QFileInfo file(diary);
    const QString suffix = file.suffix().isEmpty() ? QString() : u'.' + file.suffix();
    return freePath(file.absolutePath(),
                    file.completeBaseName() + u' ' + isoDate(clock.today()) + QStringLiteral(" damaged"), suffix);
}

std::unique_ptr<jet::Database> openInTransaction(const QString& path)
{
    auto diary = jet::Database::open(jet::posixFileSystem(), path.toStdString(), jet::OpenMode::ReadWrite);
    diary->begin();
    return diary;
}

/// Another program may put a new file into the diary's place between its being opened and locked; that is over at once,
/// and no damage.
std::unique_ptr<jet::Database> openInTransactionPatiently(const QString& path)
{
    constexpr int kFurtherAttempts = 4;
    for (int attempt = 0; attempt < kFurtherAttempts; ++attempt) {
        try {
            return openInTransaction(path);
        } catch (const jet::Error& error) {
            if (error.code() != jet::ErrorCode::Replaced) {
                throw;
            }
        }
    }
    return openInTransaction(path);
}

/// The diary in a transaction, so that nobody changes it from now on; null when it cannot be opened or written to for
/// what it holds.
std::unique_ptr<jet::Database> holdDiary(const QString& path)
{
    try {
        return openInTransactionPatiently(path);
    } catch (const jet::Error& error) {
        switch (error.code()) {
        case jet::ErrorCode::FileNotFound:
        case jet::ErrorCode::NotADatabase:
        case jet::ErrorCode::UnsupportedVersion:
        case jet::ErrorCode::Encoded:
        case jet::ErrorCode::Corrupt:
        case jet::ErrorCode::JournalDamaged:
        case jet::ErrorCode::Io:
            return nullptr;
        default:
            throw;
        }
    }
}

Restored restoreOverUnusable(jet::Database& backup, const QString& diary, const runtime::Clock& clock)
{
    const QString aside = nameForDamaged(diary, clock);
    backup.copyOver(diary.toStdString(), aside.toStdString());
    for (const QString& kept : {aside, aside + QStringLiteral("-journal")}) {
        if (QFileInfo::exists(kept)) {
            return {kept, true};
        }
    }
    return {};
}

} // namespace

BackUp backUp(const QString& diary, const QString& destination)
{
    requireFolderOf(destination);
    return translating(diary, [&] {
        const std::unique_ptr<jet::Database> file = openDiary(diary);
        const ReadScope reading(*file); // what is checked is what was copied
        file->copyTo(destination.toStdString());
        return BackUp{destination, damageIn(*file)};
    });
}

BackUp backUpToday(const QString& diary, const runtime::Clock& clock)
{
    const CopyFolder copies(diary);
    copies.make();
    return backUp(diary, copies.freeNameFor(clock.today()));
}

Restored restore(const QString& backup, const QString& diary, const runtime::Clock& clock)
{
    requireFolderOf(diary);
    requireOtherFile(backup, diary);
    const SoundBackup source = translating(backup, [&] { return SoundBackup(backup); });
    const QFileInfo file(diary);
    const QString path = file.exists() ? file.canonicalFilePath() : diary;
    return translating(diary, [&] {
        const std::unique_ptr<jet::Database> present = holdDiary(path);
        if (present == nullptr) {
            return restoreOverUnusable(*source.file, path, clock);
        }
        Restored restored;
        restored.wasDamaged = !damageIn(*present).isEmpty();
        if (restored.wasDamaged) {
            restored.kept = nameForDamaged(path, clock);
        } else {
            const CopyFolder copies(path);
            copies.make();
            restored.kept = copies.freeNameFor(clock.today(), QStringLiteral(" before restoring"));
        }
        present->copyTo(restored.kept.toStdString());
        present->replaceByCopyOf(*source.file);
        return restored;
    });
}

Compacted compact(const QString& diary)
{
    return translating(diary, [&] {
        Compacted compacted;
        compacted.bytesBefore = QFileInfo(diary).size();
        jet::Database::compact(jet::posixFileSystem(), diary.toStdString());
        compacted.bytesAfter = QFileInfo(diary).size();
        return compacted;
    });
}

} // namespace data
