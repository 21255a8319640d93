#include "data/engine/diary_file.h"

#include "runtime/run_time_error.h"

#include <QFileInfo>

namespace data {

std::unique_ptr<jet::Database> openDiary(const QString& path, jet::FileSystem& fileSystem)
{
    const QFileInfo file(path);
    if (file.exists() && !file.isReadable()) {
        throw runtime::RunTimeError(runtime::ErrorNumber::CannotOpenFile,
                                    QStringLiteral("Cannot open the file '%1'.").arg(path),
                                    QStringLiteral("You have no permission to read it."));
    }
    const std::string name = path.toStdString();
    try {
        return jet::Database::open(fileSystem, name, jet::OpenMode::ReadWrite);
    } catch (const jet::Error& error) {
        if (error.code() != jet::ErrorCode::ReadOnly) {
            throw;
        }
    }
    return jet::Database::open(fileSystem, name, jet::OpenMode::ReadOnly);
}

QString textOf(const jet::Fault& fault)
{
    const QString text = QString::fromStdString(fault.text);
    return fault.page == 0 ? text : QStringLiteral("Page %1: %2").arg(fault.page).arg(text);
}

QStringList damageIn(jet::Database& file)
{
    QStringList damage;
    for (const jet::Fault& fault : file.check()) {
        if (fault.kind == jet::Fault::Kind::Damage) {
            damage.append(textOf(fault));
        }
    }
    return damage;
}

} // namespace data
