#include "reports/basic_report.h"

#include "data/database.h"
#include "reports/date_filter.h"
#include "reports/modDisp.h"
#include "reports/modTabs.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

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

QString heading(const ReportState& state)
{
    return QStringLiteral("All Blood Sugar Readings\r\n") + state.strPath + QStringLiteral("\r\nPrinted - ") +
           runtime::format(state.clock->now(), QStringLiteral("dddd dd mmmm yyyy hh:mm")) + QStringLiteral("\r\n\r\n");
}

void moveToFirstReading(data::Recordset& readings, const QString& strWhere)
{
    try {
        readings.moveFirst();
    } catch (const runtime::RunTimeError& error) {
        if (error.code() != runtime::ErrorNumber::NoCurrentRecord) {
            throw;
        }
        throw error.withHint(
            strWhere.isEmpty() ? QStringLiteral("The diary holds no blood sugar reading yet.")
                               : QStringLiteral("There is no blood sugar reading between the filter's dates; set other "
                                                "dates and choose Apply, or choose Clear to list all readings."));
    }
}

} // namespace

void buildBasicReport(ReportState& state)
{
    state.ReportTitle = heading(state);

    data::Database database(state.strPath);
    data::Recordset readings = database.openRecordset(filteredSource(QStringLiteral("ExcelHistory"), state.strWhere));

    state.lstView.clear();
    SetListTabStops(state.lstView, {30, 110, 160});
    state.PrintTabs = {1000, 2000, 4000, 5500, 6500, 7500};

    state.lstView.addItem(FieldNamesLine(readings), Bold);
    state.lstView.addItem(QString());

    moveToFirstReading(readings, state.strWhere);
    while (!readings.eof()) {
        state.lstView.addItem(FormatRecordLine(readings));
        const double mmol = runtime::toDouble(readings.value(QStringLiteral("Mmol")));
        state.lstView.setStyle(state.lstView.size() - 1, styleOf(mmol));
        readings.moveNext();
    }
}

} // namespace reports
