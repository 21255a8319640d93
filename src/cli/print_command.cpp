#include "cli/commands.h"
#include "cli/report_run.h"
#include "printing/pdf_printer.h"
#include "reports/modDisp.h"

#include <QFile>
#include <QFileInfo>

namespace cli {
namespace {

const QString kPdf = QStringLiteral("pdf");

/// Whether printing there would cost what is no print: another diary or a copy of one, or a device.
bool standsInTheWay(const QFileInfo& there)
{
    if (!there.exists() || there.isDir()) { // a folder is refused when the file is made
        return false;
    }
    if (!there.isFile()) {
        return true;
    }
    if (there.size() == 0 || there.suffix().compare(kPdf, Qt::CaseInsensitive) == 0) {
        return false;
    }
    QFile file(there.filePath());
    return !file.open(QIODevice::ReadOnly) || !file.peek(5).startsWith("%PDF-");
}

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
    if (standsInTheWay(pdf)) {
        throw UsageError(
            QStringLiteral("--pdf names '%1', which is there and is no PDF file; it was left as it is.").arg(path));
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
