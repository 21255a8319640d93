#include "printing/pdf_printer.h"

#include "printing/page_printer.h"
#include "runtime/run_time_error.h"

#include <QDir>
#include <QPageSize>
#include <QPdfWriter>
#include <QSaveFile>

namespace printing {
namespace {

/// Writes A4 pages. Nothing reaches the device before something is painted.
class A4Writer : public QPdfWriter
{
public:
    explicit A4Writer(QIODevice* device) : QPdfWriter(device)
    {
        setPageSize(QPageSize(QPageSize::A4));
        setPageMargins(kMargins, QPageLayout::Millimeter);
    }
};

[[noreturn]] void fail(const QString& hint)
{
    throw runtime::RunTimeError(runtime::ErrorNumber::PrinterError).withHint(hint);
}

void writeFile(const QString& path, const QString& documentName, const Pages& pages)
{
    const QString shownPath = QDir::toNativeSeparators(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        fail(QStringLiteral("The file '%1' cannot be written (%2). Choose another folder or name, then print again.")
                 .arg(shownPath, file.errorString()));
    }
    A4Writer writer(&file);
    writer.setTitle(documentName);
    writer.setCreator(QStringLiteral("Quillon"));
    // commit() does not notice that its own last flush failed.
    if (!paintPages(writer, pages) || !file.flush() || !file.commit()) {
        fail(QStringLiteral("The pages could not be written to '%1': the disk may be full. Free some space, then print "
                            "again.")
                 .arg(shownPath));
    }
}

} // namespace

std::unique_ptr<reports::Printer> pdfPrinter(const QString& path, const QString& documentName)
{
    return std::make_unique<PagePrinter>(metricsOf(A4Writer(nullptr)), [path, documentName](const Pages& pages) {
        writeFile(path, documentName, pages);
    });
}

} // namespace printing
