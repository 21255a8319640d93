// Tab-separated columns: tab stops of a list, a line on paper, the heading line of a recordset.
#pragma once

#include "reports/printer.h"
#include "reports/report_list.h"

#include <QList>
#include <QString>

namespace data {
class Recordset;
}

namespace reports {

/// Tab stops in dialog units, each converted to a long integer (6 overflow).
void SetListTabStops(ReportList& list, const QList<double>& dialogUnits);

/// Prints a line, its column k at position k (twips), all at one height; moves to the next line. 9 for a line with more
/// columns than there are positions, after those that have one.
void PrintTabbedLine(Printer& printer, const QString& line, const QList<double>& positions);

/// The names of all fields in their order, a tab between each two.
[[nodiscard]] QString FieldNamesLine(const data::Recordset& records);

} // namespace reports
