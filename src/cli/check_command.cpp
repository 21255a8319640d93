#include "cli/commands.h"
#include "data/database.h"

namespace cli {
namespace {

ExitStatus check(const Call& call)
{
    const QString path = call.arguments.constFirst();
    const QStringList faults = data::Database(path).check();
    if (faults.isEmpty()) {
        call.output.writeLine(path + QStringLiteral(": sound"));
        return ExitStatus::Done;
    }
    for (const QString& fault : faults) {
        call.output.writeLine(fault);
    }
    call.output.flush();
    tell(path + (faults.size() == 1 ? QStringLiteral(": 1 fault") : QStringLiteral(": %1 faults").arg(faults.size())));
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
