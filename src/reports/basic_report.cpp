#include "reports/basic_report.h"

#include "data/database.h"
#include "reports/modDisp.h"
#include "reports/modTabs.h"
#include "reports/readings_report.h"
#include "runtime/conversions.h"

namespace reports {
namespace {

// In mmol/l; the band between includes both.
constexpr double kLow = 4;
constexpr double kHigh = 8;

Style styleOf(double mmol)
{
    if (mmol < kLow) {
        return Red;
    }
    return mmol > kHigh ? Green : Blue;
}

} // namespace

void buildBasicReport(ReportState& state)
{
    state.ReportTitle = headingWith(QStringLiteral("All Blood Sugar Readings"), state);

    data::Database database(state.strPath);
    data::Recordset readings = openReadings(database, state.strWhere);

    state.lstView.clear();
    SetListTabStops(state.lstView, {30, 110, 160});
    state.PrintTabs = {1000, 2000, 4000, 5500, 6500, 7500};

    state.lstView.addItem(FieldNamesLine(readings), Bold);
    state.lstView.addItem(QString());

    requireCurrent(readings, noReadingHint(state.strWhere));
    while (!readings.eof()) {
        state.lstView.addItem(FormatRecordLine(readings));
        const double mmol = runtime::toDouble(readings.value(QStringLiteral("Mmol")));
        state.lstView.setStyle(state.lstView.size() - 1, styleOf(mmol));
        readings.moveNext();
    }
}

void printBasicReport(Printer& printer, const ReportState& state)
{
    const QString wholeHistory;

    data::Database database(state.strPath);
    data::Recordset readings = openReadings(database, wholeHistory);

    printer.print(FieldNamesLine(readings));
    printer.print(QString());

    requireCurrent(readings, noReadingHint(wholeHistory));
    while (!readings.eof()) {
        printer.print(u'\t' + FormatRecordLine(readings));
        readings.moveNext();
    }
    printer.endDocument();
}

} // namespace reports
