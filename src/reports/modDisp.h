// Report lines from records, and report lines on paper.
#pragma once

#include "reports/printer.h"
#include "reports/report_list.h"

#include <QList>
#include <QString>

namespace data {
class Recordset;
}

namespace reports {

/// A line with this text alone is never printed: it ends the page.
inline const QString kPageSeparator = QString(57, u'=');

/// What is printed, and how.
struct PrintJob {
    const ReportList& list;
    QList<double> columns;    ///< horizontal positions in twips
    QString heading;          ///< of the pages that a page break begins; lines end in CR LF
    QList<int> selectedLines; ///< of the list, ascending; count only with `selectedOnly`
    bool selectedOnly = false;
    bool useStyles = true;

    /// Selected lines alone are wanted, and there are none: nothing at all is printed.
    [[nodiscard]] bool isVoid() const { return selectedOnly && selectedLines.isEmpty(); }
};

/// Prints one job and ends the document. `lineCounter` counts the lines on the page, headings left out; only a page
/// break sets it back, so that the next job goes on from what this one leaves. 9 for a line with more columns than
/// positions, 482 when the printer fails.
void PrintList(Printer& printer, const PrintJob& job, qint16& lineCounter);

/// Prints one line of a job, or ends the page where it is the page separator. A page is full after `linesPerPage` + 2
/// lines: then its number is printed at its foot and the heading on the next one.
void PrintReportLine(Printer& printer, const PrintJob& job, const ReportLine& line, qint16 linesPerPage,
                     qint16& lineCounter);

/// The heading's lines at the current position, the one before the last two pieces underlined ("A", "B", "", "": B).
void PrintHeading(Printer& printer, const QString& heading);

/// The current record as one line, a tab between each two fields: a field of type double as "00.0", any other as plain
/// text, null as nothing. 94 for a null in a field of type double, 3021 without a current record.
[[nodiscard]] QString FormatRecordLine(const data::Recordset& records);

} // namespace reports
