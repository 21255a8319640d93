#include "cli/commands.h"
#include "cli/tsv.h"
#include "data/database.h"
#include "runtime/run_time_error.h"

#include <algorithm>

namespace cli {
namespace {

bool hasTableOrQuery(const data::Database& database, const QString& name)
{
    const QList<data::Database::Query> queries = database.queries();
    return database.tableNames().contains(name, Qt::CaseInsensitive) ||
           std::any_of(queries.begin(), queries.end(), [&](const data::Database::Query& query) {
               return query.name.compare(name, Qt::CaseInsensitive) == 0;
           });
}

ExitStatus dump(const Call& call)
{
    data::Database database(call.arguments.at(0));
    const QString name = call.arguments.at(1);
    // An SQL text would open a recordset just as well; that is another command's business.
    if (!hasTableOrQuery(database, name)) {
        throw runtime::RunTimeError(runtime::ErrorNumber::UnknownTableOrQuery,
                                    QStringLiteral("Cannot find the table or query '%1'.").arg(name));
    }
    data::Recordset records = database.openRecordset(name);
    writeRecords(database, records, call.output);
    return ExitStatus::Done;
}

} // namespace

Command dumpCommand()
{
    return {QStringLiteral("dump"),
            QStringLiteral("Write the records of a table or saved query as tab-separated values."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")},
             {QStringLiteral("NAME"), QStringLiteral("A table or saved query.")}},
            {},
            dump};
}

} // namespace cli
