#include "cli/commands.h"
#include "data/safekeeping/safekeeping.h"

namespace cli {
namespace {

ExitStatus compact(const Call& call)
{
    const QString& diary = call.arguments.constFirst();
    const data::Compacted compacted = data::compact(diary);
    call.output.writeLine(diary +
                          QStringLiteral(": %1 bytes, before %2").arg(compacted.bytesAfter).arg(compacted.bytesBefore));
    return ExitStatus::Done;
}

} // namespace

Command compactCommand()
{
    return {QStringLiteral("compact"),
            QStringLiteral("Write the diary afresh without the room that deleted records left."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")}},
            {},
            compact};
}

} // namespace cli
