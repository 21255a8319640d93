#include "data/safekeeping/safekeeping.h"

#include "data/engine/error_translation.h"
#include "data/safekeeping/dated_copies.h"
#include "data/safekeeping/diary_file.h"

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

} // namespace

BackUp backUp(const QString& diary, const QString& destination)
{
    requireFolderOf(destination);
    return translating(diary, [&] {
        const std::unique_ptr<jet::Database> file = openDiary(diary);
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

} // namespace data
