// Tab-separated columns: tab stops of a list, the heading line of a recordset.
#pragma once

#include "reports/report_list.h"

#include <QList>
#include <QString>

namespace data {
class Recordset;
}

namespace reports {

/// Tab stops in dialog units, each converted to a long integer (6 overflow).
void SetListTabStops(ReportList& list, const QList<double>& dialogUnits);

/// The names of all fields in their order, a tab between each two.
[[nodiscard]] QString FieldNamesLine(const data::Recordset& records);

} // namespace reports
