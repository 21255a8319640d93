#include "reports/modTabs.h"

#include "data/recordset.h"
#include "runtime/conversions.h"

#include <QStringList>

namespace reports {

void SetListTabStops(ReportList& list, const QList<double>& dialogUnits)
{
    QList<int> tabStops;
    tabStops.reserve(dialogUnits.size());
    for (const double units : dialogUnits) {
        tabStops.append(runtime::toLong(units));
    }
    list.setTabStops(tabStops);
}

QString FieldNamesLine(const data::Recordset& records)
{
    QStringList names;
    for (int position = 0; position < records.fieldCount(); ++position) {
        names.append(records.field(position).name);
    }
    return names.join(u'\t');
}

} // namespace reports
