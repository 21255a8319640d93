// Pages as a PDF file.
#pragma once

#include "reports/printer.h"

#include <QString>

#include <memory>

namespace printing {

/// Writes a document of A4 pages to a file, which is there whole once endDocument() has returned; before that, and when
/// the document is discarded, a file of that name stays what it was. 482 when the file cannot be written. Needs a
/// QGuiApplication.
[[nodiscard]] std::unique_ptr<reports::Printer> pdfPrinter(const QString& path, const QString& documentName);

} // namespace printing
