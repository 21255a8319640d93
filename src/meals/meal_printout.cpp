#include "meals/meal_printout.h"

#include "meals/meal_sheet.h"
#include "reports/modDisp.h"
#include "runtime/format.h"

namespace meals {

namespace {

/// Of a food line's columns, in twips. Total lines have a column less before their figures, which so stand one place
/// further left. No line reaches the last one.
const QList<double>& printPositions()
{
    static const QList<double> positions{1000, 2000, 4000, 5500, 6500, 7500};
    return positions;
}

} // namespace

void printMeal(reports::Printer& printer, const MealSheet& sheet, runtime::Date now, qint16& lineCounter)
{
    const QString heading =
        QStringLiteral("Meal Compiled - ") + runtime::format(now, QStringLiteral("dddd dd mmmm yyyy hh:mm"));
    const reports::PrintJob job{.list = sheet.lines(),
                                .columns = printPositions(),
                                .heading = heading,
                                .selectedLines = {},
                                .selectedOnly = false,
                                .useStyles = false};
    reports::PrintList(printer, job, lineCounter);
}

} // namespace meals
