#include "cli/commands.h"
#include "data/safekeeping/safekeeping.h"
#include "runtime/clock.h"

namespace cli {
namespace {

ExitStatus backUp(const Call& call)
{
    const QString diary = call.arguments.constFirst();
    const data::BackUp made = call.arguments.size() > 1 ? data::backUp(diary, call.arguments.at(1))
                                                        : data::backUpToday(diary, runtime::SystemClock());
    call.output.writeLine(diary + QStringLiteral(" is copied to ") + made.path);
    if (made.damage.isEmpty()) {
        return ExitStatus::Done;
    }
    call.output.flush();
    tell(QStringLiteral(
             "The diary is damaged, and so is the copy; 'quillonctl check' lists the faults. The first is: ") +
         made.damage.constFirst());
    return ExitStatus::Fault;
}

} // namespace

Command backUpCommand()
{
    return {QStringLiteral("backup"),
            QStringLiteral("Copy the diary as it is now. An existing file is never overwritten."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")},
             {QStringLiteral("DEST"),
              QStringLiteral("The file to make; else one in the folder backups, named by the day."), true}},
            {},
            backUp};
}

} // namespace cli
