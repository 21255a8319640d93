#include "data/safekeeping/diary_file.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>

#include <cmath>

namespace data {

std::unique_ptr<jet::Database> openDiary(const QString& path)
{
    const std::string name = path.toStdString();
    try {
        return jet::Database::open(jet::posixFileSystem(), name, jet::OpenMode::ReadWrite);
    } catch (const jet::Error& error) {
        if (error.code() != jet::ErrorCode::ReadOnly) {
            throw;
        }
    }
    return jet::Database::open(jet::posixFileSystem(), name, jet::OpenMode::ReadOnly);
}

QStringList damageIn(jet::Database& file)
{
    QStringList damage;
    for (const jet::Fault& fault : file.check()) {
        if (fault.kind == jet::Fault::Kind::Damage) {
            const QString text = QString::fromStdString(fault.text);
            damage.append(fault.page == 0 ? text : QStringLiteral("Page %1: %2").arg(fault.page).arg(text));
        }
    }
    return damage;
}

QString isoDate(runtime::Date day)
{
    return QDate(1899, 12, 30).addDays(static_cast<qint64>(std::floor(day.days))).toString(Qt::ISODate);
}

QString freePath(const QString& folder, const QString& name, const QString& suffix)
{
    for (int number = 1;; ++number) {
        const QString path =
            QDir(folder).filePath(name + (number == 1 ? QString() : QStringLiteral(" %1").arg(number)) + suffix);
        if (!QFileInfo::exists(path) && !QFileInfo::exists(path + QStringLiteral("-journal"))) {
            return path;
        }
    }
}

} // namespace data
