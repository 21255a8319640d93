#include "cli/commands.h"
#include "cli/report_run.h"

namespace cli {
namespace {

const QString kStyles = QStringLiteral("styles");

void writeList(const reports::ReportList& list, bool styles, Output& output)
{
    for (qsizetype position = 0; position < list.size(); ++position) {
        const reports::ReportLine& line = list.at(position);
        output.writeLine(styles ? QStringLiteral("%1\t").arg(line.style) + line.text : line.text);
    }
    output.flush();
}

ExitStatus report(const Call& call)
{
    ReportRun run(call);
    writeList(run.state().lstView, call.options.isSet(kStyles), call.output);
    return run.tellErrors();
}

} // namespace

Command reportCommand()
{
    return {QStringLiteral("report"),
            QStringLiteral("Run reports one after the other, as in one window, and write the lines of the list."),
            reportArguments(),
            reportOptions() +
                QList{QCommandLineOption(kStyles, QStringLiteral("Write each line's style code and a tab before it."))},
            report};
}

} // namespace cli
