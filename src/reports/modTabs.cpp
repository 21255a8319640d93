#include "reports/modTabs.h"

#include "data/recordset.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <QStringList>

namespace reports {
namespace {

QString hintOnColumns(qsizetype columns, qsizetype positions)
{
    if (positions == 0) {
        return QStringLiteral("No report has set print positions yet; choose one that does, such as Basic Blood Sugar "
                              "Data, before this one.");
    }
    return QStringLiteral("A line has %1 columns, and there are print positions for %2; perhaps a comment in it holds "
                          "tab characters.")
        .arg(columns)
        .arg(positions);
}

} // namespace

void SetListTabStops(ReportList& list, const QList<double>& dialogUnits)
{
    QList<int> tabStops;
    tabStops.reserve(dialogUnits.size());
    for (const double units : dialogUnits) {
        tabStops.append(runtime::toLong(units));
    }
    list.setTabStops(tabStops);
}

void PrintTabbedLine(Printer& printer, const QString& line, const QList<double>& positions)
{
    // Rounded before there is room made for it: the rounded height is the one that must fit.
    printer.setCurrentY(runtime::toLong(printer.currentY()));
    printer.makeRoomForLine();
    const double y = printer.currentY();

    const QStringList columns = line.split(u'\t');
    for (qsizetype column = 0; column < columns.size(); ++column) {
        if (column >= positions.size()) {
            throw runtime::RunTimeError(runtime::ErrorNumber::SubscriptOutOfRange)
                .withHint(hintOnColumns(columns.size(), positions.size()));
        }
        printer.setCurrentX(positions.at(column));
        printer.setCurrentY(y);
        printer.print(columns.at(column));
    }
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
