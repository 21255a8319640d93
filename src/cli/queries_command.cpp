#include "cli/commands.h"
#include "cli/tsv.h"
#include "data/database.h"

namespace cli {
namespace {

ExitStatus queries(const Call& call)
{
    for (const data::Database::Query& query : data::Database(call.arguments.constFirst()).queries()) {
        call.output.writeLine(escaped(query.name) + u'\t' + escaped(query.sql));
    }
    return ExitStatus::Done;
}

} // namespace

Command queriesCommand()
{
    return {QStringLiteral("queries"),
            QStringLiteral("List the saved queries: name, a tab, SQL."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")}},
            {},
            queries};
}

} // namespace cli
