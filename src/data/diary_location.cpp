#include "data/diary_location.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace data {
namespace {

/// Whether this program runs where it was built, rather than where it was installed.
bool runsFromBuildFolder()
{
    const QString program = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    const QString folder = QFileInfo(QStringLiteral(QUILLON_BUILD_FOLDER)).canonicalFilePath();
    return !folder.isEmpty() && program.startsWith(folder + u'/');
}

} // namespace

QString fixedDiaryPath()
{
    if (runsFromBuildFolder()) {
        return QStringLiteral(QUILLON_DEVELOPMENT_DIARY);
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/quillon/Nutrition.mdb");
}

QString diaryPath(const QString& programFolder)
{
    if (programFolder == QStringLiteral("C:\\Quillon")) {
        return QStringLiteral("C:\\Quillon\\Nutrition.mdb");
    }
    return fixedDiaryPath();
}

} // namespace data
