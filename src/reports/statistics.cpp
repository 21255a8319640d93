#include "reports/statistics.h"

#include "data/database.h"
#include "reports/readings_report.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

namespace reports {
namespace {

double mmolOf(const data::Recordset& readings)
{
    return runtime::toDouble(readings.value(QStringLiteral("Mmol")));
}

/// In days.
double timeOf(const data::Recordset& readings)
{
    return runtime::toDate(readings.value(QStringLiteral("When"))).days;
}

double plainAverage(data::Recordset& readings)
{
    double sum = 0;
    for (readings.moveFirst(); !readings.eof(); readings.moveNext()) {
        sum += mmolOf(readings);
    }
    return sum / static_cast<double>(readings.recordCount());
}

/// Each reading is averaged with the first one and weighs as much as the time between the two. The first one stays the
/// anchor: this is no sum of trapezoids.
double timeWeightedAverage(data::Recordset& readings)
{
    readings.moveFirst();
    const double firstTime = timeOf(readings);
    const double firstMmol = mmolOf(readings);
    readings.moveNext();
    requireCurrent(readings, QStringLiteral("There is only one reading, and a time-weighted average takes two or more; "
                                            "add a reading or set a longer filter."));

    double sum = 0;
    double totalTime = 0;
    for (; !readings.eof(); readings.moveNext()) {
        const double span = timeOf(readings) - firstTime;
        sum += (mmolOf(readings) + firstMmol) / 2 * span;
        totalTime += span;
    }
    if (totalTime == 0) {
        throw runtime::RunTimeError(runtime::ErrorNumber::DivisionByZero)
            .withHint(QStringLiteral("All readings are of the same time, and a time-weighted average takes readings of "
                                     "different times; add a reading or set a longer filter."));
    }
    return sum / totalTime;
}

QString averageLine(const QString& name, double mmol)
{
    return name + QStringLiteral(" Blood Sugar Level = ") + runtime::format(mmol, QStringLiteral("#0.0")) +
           QStringLiteral(" Mmol");
}

} // namespace

void buildStatistics(ReportState& state)
{
    data::Database database(state.strPath);
    data::Recordset readings = openReadings(database, state.strWhere);
    requireCurrent(readings, noReadingHint(state.strWhere));

    const double average = plainAverage(readings);
    state.lstView.addItem(QStringLiteral("Statistics for ") + state.fields.from + QStringLiteral(" to ") +
                          state.fields.to);
    state.lstView.addItem(QString());
    state.lstView.addItem(averageLine(QStringLiteral("Average"), average));

    const double timeWeighted = timeWeightedAverage(readings);
    state.lstView.addItem(QString());
    state.lstView.addItem(averageLine(QStringLiteral("Time Wt Average"), timeWeighted));
}

} // namespace reports
