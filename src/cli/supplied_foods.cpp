#include "cli/supplied_foods.h"

#include <QCoreApplication>
#include <QFile>

namespace cli {

QString suppliedFoods()
{
    const QString installed = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/quillon/foods.csv");
    return QFile::exists(installed) ? installed : QStringLiteral(QUILLON_FOODS);
}

} // namespace cli
