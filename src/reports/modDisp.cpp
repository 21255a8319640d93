#include "reports/modDisp.h"

#include "reports/modTabs.h"
#include "runtime/conversions.h"

#include <QStringList>

namespace reports {
namespace {

double lineHeight(const Printer& printer)
{
    return printer.textHeight(QStringLiteral("I"));
}

Printer::Colour colourOf(int style)
{
    if ((style & Green) != 0) {
        return Printer::Colour::Green;
    }
    if ((style & Blue) != 0) {
        return Printer::Colour::Blue;
    }
    return (style & Red) != 0 ? Printer::Colour::Red : Printer::Colour::Black;
}

void setStyle(Printer& printer, int style)
{
    printer.setBold((style & Bold) != 0);
    printer.setUnderlined((style & Underlined) != 0);
    printer.setColour(colourOf(style));
}

void printFooter(Printer& printer)
{
    printer.setCurrentY(printer.scaleHeight() - lineHeight(printer));
    printer.print(QStringLiteral("Page - %1").arg(printer.page()));
}

/// A line's style holds until after it: where the line ends the page, footer and heading have it, too.
void endPage(Printer& printer, const QString& heading, qint16& lineCounter)
{
    lineCounter = 0;
    printFooter(printer);
    printer.newPage();
    PrintHeading(printer, heading);
}

} // namespace

void PrintList(Printer& printer, const PrintJob& job, qint16& lineCounter)
{
    if (job.isVoid()) {
        return;
    }
    const double top = printer.currentY();
    const qint16 linesPerPage = runtime::toInteger((printer.scaleHeight() - top) / lineHeight(printer) - 3);

    const auto printLine = [&](qsizetype line) {
        PrintReportLine(printer, job, job.list.at(line), linesPerPage, lineCounter);
    };
    if (job.selectedOnly) {
        for (const int line : job.selectedLines) {
            printLine(line);
        }
    } else {
        for (qsizetype line = 0; line < job.list.size(); ++line) {
            printLine(line);
        }
    }
    printFooter(printer);
    printer.endDocument();
}

void PrintReportLine(Printer& printer, const PrintJob& job, const ReportLine& line, qint16 linesPerPage,
                     qint16& lineCounter)
{
    if (job.useStyles) {
        setStyle(printer, line.style);
    }
    if (line.text == kPageSeparator) {
        endPage(printer, job.heading, lineCounter);
    } else {
        PrintTabbedLine(printer, line.text.isEmpty() ? QStringLiteral(" ") : line.text, job.columns);
        if (lineCounter <= linesPerPage) {
            lineCounter = runtime::toInteger(lineCounter + 1);
        } else {
            endPage(printer, job.heading, lineCounter);
        }
    }
    setStyle(printer, Plain);
}

void PrintHeading(Printer& printer, const QString& heading)
{
    if (heading.isEmpty()) {
        return;
    }
    const QStringList pieces = heading.split(QStringLiteral("\r\n"));
    const qsizetype underlined = pieces.size() - 3;
    for (qsizetype piece = 0; piece < pieces.size(); ++piece) {
        if (piece == underlined) {
            printer.setUnderlined(true);
        }
        printer.print(pieces.at(piece));
        if (piece == underlined) {
            printer.setUnderlined(false);
        }
    }
}

} // namespace reports
