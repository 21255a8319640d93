// Reports run one after the other, as in one window: what the commands on reports have in common.
#pragma once

#include "cli/command.h"
#include "reports/report_state.h"
#include "runtime/clock.h"

#include <QStringList>

namespace cli {

/// The diary and the names of the reports; dates, and whether to go on after a failure.
[[nodiscard]] QList<Command::Argument> reportArguments();
[[nodiscard]] QList<QCommandLineOption> reportOptions();

class ReportRun
{
public:
    /// Throws UsageError before any report is run. A report that fails throws nothing: what it has added to the list
    /// stays, and its error is kept.
    explicit ReportRun(const Call& call);
    ReportRun(const ReportRun&) = delete;
    ReportRun& operator=(const ReportRun&) = delete;

    /// What the reports have left. Lives as long as the run.
    [[nodiscard]] reports::ReportState& state() { return state_; }
    /// As the menu calls them.
    [[nodiscard]] const QStringList& titles() const { return titles_; }
    [[nodiscard]] bool hasFailed() const { return !errors_.isEmpty(); }
    /// Tells the errors on standard error.
    [[nodiscard]] ExitStatus tellErrors() const;

private:
    runtime::SystemClock clock_;
    reports::ReportState state_{clock_};
    QStringList titles_;
    QStringList errors_;
};

} // namespace cli
