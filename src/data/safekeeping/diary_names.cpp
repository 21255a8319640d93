#include "data/safekeeping/diary_names.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>

#include <cmath>

namespace data {

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
