#include "reports/shown_description.h"

namespace reports {

QString shownDescription(const QString& stored)
{
    return stored.left(1) + stored.mid(1).toLower();
}

} // namespace reports
