#include "cli/commands.h"
#include "data/database.h"

namespace cli {
namespace {

ExitStatus check(const Call& call)
{
    const QString path = call.arguments.constFirst();
    const data::Database::Faults faults = data::Database(path).check();
    for (const QString& fault : faults.damage) {
        call.output.writeLine(fault);
    }
    for (const QString& leftover : faults.leftovers) {
        call.output.writeLine(QStringLiteral("Left by another program, harmless: ") + leftover);
    }
    const qsizetype damage = faults.damage.size();
    if (damage == 0) {
        call.output.writeLine(path + QStringLiteral(": sound"));
        return ExitStatus::Done;
    }
    call.output.flush();
    tell(path + (damage == 1 ? QStringLiteral(": 1 fault") : QStringLiteral(": %1 faults").arg(damage)));
    return ExitStatus::Fault;
}

} // namespace

Command checkCommand()
{
    return {QStringLiteral("check"),
            QStringLiteral("Check the structure of the whole file and list its faults."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")}},
            {},
            check};
}

} // namespace cli
