#include "cli/commands.h"
#include "cli/report_run.h"
#include "printing/pdf_printer.h"
#include "reports/modDisp.h"

#include <QFileInfo>

namespace cli {
namespace {

const QString kPdf = QStringLiteral("pdf");

QString pdfFor(const Call& call)
{
    const QString path = call.options.value(kPdf);
    if (path.isEmpty()) {
        throw UsageError(QStringLiteral("--pdf takes the name of the file to write."));
    }
    const QFileInfo pdf(path);
    if (pdf.exists() && pdf == QFileInfo(call.arguments.at(0))) {
        throw UsageError(QStringLiteral("--pdf names the diary itself."));
    }
    return path;
}

ExitStatus print(const Call& call)
{
    const QString path = pdfFor(call);
    ReportRun run(call);
    const ExitStatus status = run.tellErrors();

    reports::ReportState& state = run.state();
    if (!state.lstView.isEmpty() || !run.hasFailed()) {
        const auto printer = printing::pdfPrinter(path, run.titles().join(QStringLiteral(", ")));
        const reports::PrintJob job{state.lstView, state.PrintTabs, state.ReportTitle, {}, false, true};
        reports::PrintList(*printer, job, state.printedLines);
    }
    return status;
}

} // namespace

Command printCommand()
{
    return {QStringLiteral("print"),
            QStringLiteral("Run reports one after the other, as in one window, and print the list as a PDF file."),
            reportArguments(),
            QList{QCommandLineOption(kPdf, QStringLiteral("The file to write; never left out."),
                                     QStringLiteral("OUT.pdf"))} +
                reportOptions(),
            print,
            true};
}

} // namespace cli
