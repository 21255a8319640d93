#include "cli/commands.h"
#include "readings/meter_import.h"
#include "runtime/conversions.h"

#include <cmath>
#include <optional>

namespace cli {
namespace {

const QString kAfter = QStringLiteral("after");

/// What --after says; without it the import goes on after the latest reading, of which there must be one.
std::optional<QString> cutOffFor(const Call& call)
{
    if (!call.options.isSet(kAfter)) {
        if (readings::latestReading(call.arguments.at(0)).isEmpty()) {
            throw UsageError(QStringLiteral("The diary has no reading yet: say with --after \"dd/mm/yyyy hh:mm\" after "
                                            "which moment to import."));
        }
        return std::nullopt;
    }
    const QString typed = call.options.value(kAfter);
    // A time alone would be one of day 0, in 1899.
    if (!runtime::isDate(typed) || std::trunc(runtime::toDate(typed).days) == 0) {
        throw UsageError(QStringLiteral("'%1' is no date and time; write it as dd/mm/yyyy hh:mm.").arg(typed));
    }
    return typed;
}

ExitStatus import(const Call& call)
{
    const int added = readings::ImportReadings({call.arguments.at(0), call.arguments.at(1), cutOffFor(call)});
    call.output.writeLine(QStringLiteral("%1 readings added").arg(added));
    return ExitStatus::Done;
}

} // namespace

Command importCommand()
{
    return {
        QStringLiteral("import"),
        QStringLiteral("Add the readings of a blood glucose meter's file that are later than the latest in the diary."),
        {{QStringLiteral("FILE"), QStringLiteral("The diary.")},
         {QStringLiteral("METER.csv"), QStringLiteral("The meter's file: lines of date, time and mmol/l.")}},
        {{kAfter, QStringLiteral("Add what is later than this moment (dd/mm/yyyy hh:mm) instead."),
          QStringLiteral("DATE")}},
        import};
}

} // namespace cli
