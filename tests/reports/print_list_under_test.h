// Report lines printed on a recorded printer, for tests.
#pragma once

#include "reports/modDisp.h"
#include "support/recording_printer.h"
#include "support/run_time_errors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace reports {

// A page of ten lines takes 10 - 3 + 2 = 9 lines of a report from a counter of 0; the tenth is the footer.
inline constexpr int kLinesOfAPage = 9;
inline constexpr double kLine = 240;
inline constexpr double kFooter = 9 * kLine;

class PrintListTest : public testing::Test
{
protected:
    void add(const char* text, int style = Plain) { list_.addItem(QString::fromLatin1(text), style); }
    void addSeparator(int style = Plain) { list_.addItem(kPageSeparator, style); }

    /// Adds lines "1", "2", ...
    void addNumbered(int count)
    {
        for (int number = 1; number <= count; ++number) {
            list_.addItem(QString::number(number));
        }
    }

    PrintJob job() const { return {list_, columns_, heading_, {}, false, true}; }

    PrintJob selected(const QList<int>& lines) const
    {
        PrintJob job = this->job();
        job.selectedOnly = true;
        job.selectedLines = lines;
        return job;
    }

    void print(const PrintJob& job)
    {
        RecordingPrinter printer(printout_, measures_);
        PrintList(printer, job, lineCounter_);
    }

    void print() { print(job()); }

    /// Prints on this printer; the number of the error that it ends with.
    int errorOfPrinting(Printer& printer)
    {
        return errorNumberOf([&] { PrintList(printer, job(), lineCounter_); });
    }

    const std::vector<PrintedPage>& pages() const { return printout_.back().pages; }
    const std::vector<PrintedText>& textsOfPage(std::size_t number) const { return pages().at(number - 1).texts; }
    std::vector<std::string> wordsOfPage(std::size_t number) const { return pages().at(number - 1).words(); }

    ReportList list_;
    QList<double> columns_{1000, 3000, 4000};
    QString heading_ = QStringLiteral("Title\r\nPrinted\r\n\r\n");
    RecordingPrinter::Measures measures_;
    qint16 lineCounter_ = 0;
    Printout printout_;
};

} // namespace reports
