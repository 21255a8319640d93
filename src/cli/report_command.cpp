#include "cli/commands.h"
#include "cli/run_time_error_text.h"
#include "reports/date_filter.h"
#include "reports/report_runner.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

namespace cli {
namespace {

QString knownNames()
{
    QStringList names;
    for (const reports::Report& report : reports::allReports()) {
        names.append(report.name);
    }
    return names.join(QStringLiteral(", "));
}

QList<const reports::Report*> reportsNamed(const QString& names)
{
    QList<const reports::Report*> found;
    for (const QString& name : names.split(u',')) {
        const reports::Report* report = reports::findReport(name);
        if (report == nullptr) {
            throw UsageError(QStringLiteral("There is no report '%1'. The reports are: %2.").arg(name, knownNames()));
        }
        found.append(report);
    }
    return found;
}

QString strWhereFor(const QCommandLineParser& options)
{
    const bool hasFrom = options.isSet(QStringLiteral("from"));
    if (hasFrom != options.isSet(QStringLiteral("to"))) {
        throw UsageError(QStringLiteral("--from and --to go together."));
    }
    if (!hasFrom) {
        return {};
    }
    const reports::DateFilter filter{options.value(QStringLiteral("from")), options.value(QStringLiteral("to"))};
    for (const QString& date : {filter.from, filter.to}) {
        if (!runtime::isDate(date)) {
            throw UsageError(QStringLiteral("'%1' is no date; write it as dd/mm/yyyy.").arg(date));
        }
    }
    return filter.strWhere();
}

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
    const QList<const reports::Report*> chosen = reportsNamed(call.arguments.at(1));
    const runtime::SystemClock clock;
    reports::ReportState state;
    state.strPath = call.arguments.at(0);
    state.strWhere = strWhereFor(call.options);
    state.clock = &clock;

    QStringList errors;
    for (const reports::Report* next : chosen) {
        try {
            next->build(state);
        } catch (const runtime::RunTimeError& error) {
            errors.append(oneLineOf(error));
            if (!call.options.isSet(QStringLiteral("keep-going"))) {
                break;
            }
        }
    }

    writeList(state.lstView, call.options.isSet(QStringLiteral("styles")), call.output);
    for (const QString& error : errors) {
        tell(error);
    }
    return errors.isEmpty() ? ExitStatus::Done : ExitStatus::Fault;
}

} // namespace

Command reportCommand()
{
    const QString date = QStringLiteral("DATE");
    return {QStringLiteral("report"),
            QStringLiteral("Run reports one after the other, as in one window, and write the lines of the list."),
            {{QStringLiteral("FILE"), QStringLiteral("The diary.")},
             {QStringLiteral("NAME[,NAME...]"), QStringLiteral("The reports: %1.").arg(knownNames())}},
            {{QStringLiteral("from"), QStringLiteral("Only what is after this date (dd/mm/yyyy) ..."), date},
             {QStringLiteral("to"), QStringLiteral("... and before this one. Without both, everything."), date},
             {QStringLiteral("styles"), QStringLiteral("Write each line's style code and a tab before it.")},
             {QStringLiteral("keep-going"), QStringLiteral("Run the remaining reports when one has failed.")}},
            report};
}

} // namespace cli
