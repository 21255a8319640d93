#include "cli/commands.h"
#include "data/database.h"

namespace cli {
namespace {

ExitStatus tables(const Call& call)
{
    for (const QString& name : data::Database(call.arguments.constFirst()).tableNames()) {
        call.output.writeLine(name);
    }
    return ExitStatus::Done;
}

} // namespace

Command tablesCommand()
{
    return {QStringLiteral("tables"),
            QStringLiteral("List the tables, one name a line."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")}},
            {},
            tables};
}

} // namespace cli
