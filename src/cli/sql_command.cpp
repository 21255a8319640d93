#include "cli/commands.h"
#include "cli/tsv.h"
#include "data/database.h"

#include <QRegularExpression>

namespace cli {
namespace {

bool isDelete(const QString& sql)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*delete\\b"),
                                            QRegularExpression::CaseInsensitiveOption);
    return pattern.match(sql).hasMatch();
}

ExitStatus sql(const Call& call)
{
    data::Database database(call.arguments.at(0));
    const QString text = call.arguments.at(1);
    if (isDelete(text)) {
        const qsizetype count = database.execute(text);
        call.output.writeLine(count == 1 ? QStringLiteral("1 record deleted")
                                         : QStringLiteral("%1 records deleted").arg(count));
        return ExitStatus::Done;
    }
    data::Recordset records = database.openRecordset(text);
    writeRecords(database, records, call.output);
    return ExitStatus::Done;
}

} // namespace

Command sqlCommand()
{
    return {QStringLiteral("sql"),
            QStringLiteral("Write the records that a select statement yields, or run a delete statement."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")},
             {QStringLiteral("TEXT"), QStringLiteral("The statement, in Jet's dialect of SQL.")}},
            {},
            sql};
}

} // namespace cli
