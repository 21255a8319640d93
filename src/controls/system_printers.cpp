#include "controls/system_printers.h"

#include "controls/dialogs.h"
#include "printing/page_printer.h"
#include "printing/pdf_printer.h"
#include "runtime/run_time_error.h"

#include <QDir>
#include <QFileInfo>
#include <QPrinter>
#include <QPrinterInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <utility>

namespace controls {
namespace {

const QString kSuffix = QStringLiteral(".pdf");

void printOn(QPrinter& printer, const printing::Pages& pages)
{
    if (printing::paintPages(printer, pages) && printer.printerState() != QPrinter::Error) {
        return;
    }
    throw runtime::RunTimeError(runtime::ErrorNumber::PrinterError)
        .withHint(QStringLiteral("The printer '%1' did not take the pages. Make sure that it is switched on and "
                                 "connected, then print again.")
                      .arg(printer.printerName()));
}

std::unique_ptr<reports::Printer> onPaper(std::shared_ptr<QPrinter> printer, const QString& documentName)
{
    // A printer that needs wider margins keeps its own.
    printer->setPageMargins(printing::kMargins, QPageLayout::Millimeter);
    printer->setDocName(documentName);
    printer->setCreator(kTitle);
    const printing::PageMetrics metrics = printing::metricsOf(*printer);
    return std::make_unique<printing::PagePrinter>(
        metrics, [printer = std::move(printer)](const printing::Pages& pages) { printOn(*printer, pages); });
}

/// Report titles hold what file names cannot, such as the slashes of a date.
QString proposedPath(const QString& documentName)
{
    static const QRegularExpression notInFileNames(QStringLiteral(R"([/\\:*?"<>|[:cntrl:]]+)"));
    const QString name = QString(documentName).replace(notInFileNames, QStringLiteral("-")).trimmed();
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QDir folder(QFileInfo(documents).isDir() ? documents : QDir::homePath());
    return folder.filePath((name.isEmpty() ? kTitle : name) + kSuffix);
}

} // namespace

std::shared_ptr<QPrinter> usualPrinter()
{
    QPrinterInfo info = QPrinterInfo::defaultPrinter();
    if (info.isNull()) {
        const QStringList names = QPrinterInfo::availablePrinterNames();
        if (names.isEmpty()) {
            return nullptr;
        }
        info = QPrinterInfo::printerInfo(names.first());
    }
    return std::make_shared<QPrinter>(info, QPrinter::HighResolution);
}

SystemPrinters::SystemPrinters(Dialogs& dialogs, FindPrinter findPrinter)
    : dialogs_(dialogs), findPrinter_(std::move(findPrinter))
{
}

std::unique_ptr<reports::Printer> SystemPrinters::open(QWidget* owner, const QString& documentName)
{
    if (std::shared_ptr<QPrinter> printer = findPrinter_()) {
        return onPaper(std::move(printer), documentName);
    }
    const QString path = askPath(owner, documentName);
    return path.isEmpty() ? nullptr : printing::pdfPrinter(path, documentName);
}

QString SystemPrinters::askPath(QWidget* owner, const QString& documentName)
{
    QString proposal = proposedPath(documentName);
    for (;;) {
        const QString path =
            dialogs_.askSavePath(owner, QStringLiteral("There is no printer: save the pages as a PDF file"), proposal,
                                 QStringLiteral("Pages (*.pdf)"));
        if (path.isEmpty() || path.endsWith(kSuffix, Qt::CaseInsensitive)) {
            return path;
        }
        const QString completed = path + kSuffix;
        if (!QFileInfo::exists(completed)) {
            return completed;
        }
        // The box asked whether to replace `path`, not this file: it asks again when the user confirms the whole name.
        proposal = completed;
    }
}

} // namespace controls
