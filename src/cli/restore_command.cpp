#include "cli/commands.h"
#include "data/safekeeping/safekeeping.h"
#include "runtime/clock.h"

namespace cli {
namespace {

ExitStatus restore(const Call& call)
{
    const QString& backup = call.arguments.at(0);
    const QString& diary = call.arguments.at(1);
    const data::Restored restored = data::restore(backup, diary, runtime::SystemClock());
    call.output.writeLine(diary + QStringLiteral(" is restored from ") + backup);
    if (!restored.kept.isEmpty()) {
        call.output.writeLine((restored.wasDamaged ? QStringLiteral("The damaged file that was there is now ")
                                                   : QStringLiteral("The diary that was there is kept as ")) +
                              restored.kept);
    }
    return ExitStatus::Done;
}

} // namespace

Command restoreCommand()
{
    return {QStringLiteral("restore"),
            QStringLiteral("Put a copy of a backup in the place of the diary. What was there is kept."),
            {{QStringLiteral("BACKUP"), QStringLiteral("The backup; it is only read.")},
             {QStringLiteral("FILE"), QStringLiteral("The diary.")}},
            {},
            restore};
}

} // namespace cli
