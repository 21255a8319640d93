#include "cli/report_run.h"

#include "cli/run_time_error_text.h"
#include "reports/all_reports.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

namespace cli {
namespace {

const QString kFrom = QStringLiteral("from");
const QString kTo = QStringLiteral("to");
const QString kKeepGoing = QStringLiteral("keep-going");

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

/// What --from and --to say; both empty when neither is given.
reports::DateFilter filterFor(const QCommandLineParser& options)
{
    const bool hasFrom = options.isSet(kFrom);
    if (hasFrom != options.isSet(kTo)) {
        throw UsageError(QStringLiteral("--from and --to go together."));
    }
    if (!hasFrom) {
        return {};
    }
    const reports::DateFilter filter{options.value(kFrom), options.value(kTo)};
    for (const QString& date : {filter.from, filter.to}) {
        if (!runtime::isDate(date)) {
            throw UsageError(QStringLiteral("'%1' is no date; write it as dd/mm/yyyy.").arg(date));
        }
    }
    return filter;
}

} // namespace

QList<Command::Argument> reportArguments()
{
    return {{QStringLiteral("FILE"), QStringLiteral("The diary.")},
            {QStringLiteral("NAME[,NAME...]"), QStringLiteral("The reports: %1.").arg(knownNames())}};
}

QList<QCommandLineOption> reportOptions()
{
    const QString date = QStringLiteral("DATE");
    return {{kFrom, QStringLiteral("Only what is after this date (dd/mm/yyyy) ..."), date},
            {kTo, QStringLiteral("... and before this one. Without both, everything."), date},
            {kKeepGoing, QStringLiteral("Run the remaining reports when one has failed.")}};
}

ReportRun::ReportRun(const Call& call)
{
    const QList<const reports::Report*> chosen = reportsNamed(call.arguments.at(1));
    state_.strPath = call.arguments.at(0);
    state_.fields = filterFor(call.options);
    if (state_.fields.isComplete()) {
        state_.strWhere = state_.fields.strWhere();
    }

    for (const reports::Report* report : chosen) {
        titles_.append(report->title);
    }
    for (const reports::Report* report : chosen) {
        try {
            report->build(state_);
        } catch (const runtime::RunTimeError& error) {
            errors_.append(oneLineOf(error));
            if (!call.options.isSet(kKeepGoing)) {
                break;
            }
        }
    }
}

ExitStatus ReportRun::tellErrors() const
{
    for (const QString& error : errors_) {
        tell(error);
    }
    return hasFailed() ? ExitStatus::Fault : ExitStatus::Done;
}

} // namespace cli
