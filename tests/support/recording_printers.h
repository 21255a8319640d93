// Printers for tests: what is printed on any of them can be read here.
#pragma once

#include "controls/printers.h"
#include "support/recording_printer.h"

#include <QSize>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Pages of A4 with margins of about an inch, as high as 64 lines.
class RecordingPrinters : public controls::Printers
{
public:
    Printout printout;
    std::vector<std::string> documents; ///< the names of those asked for
    bool cancelled = false;             ///< the user wants no printer after all
    int failAtOutput = 0;               ///< of the next printer; 0: none fails

    [[nodiscard]] std::unique_ptr<reports::Printer> open(QWidget*, const QString& documentName) override
    {
        documents.push_back(documentName.toStdString());
        if (cancelled)
            return nullptr;
        auto printer = std::make_unique<RecordingPrinter>(
            printout, RecordingPrinter::Measures{.width = 9000, .height = 64 * 200, .lineHeight = 200});
        printer->failAtOutput(std::exchange(failAtOutput, 0));
        return printer;
    }

    /// Of the only document, which has been printed; the test fails where there is more or less.
    [[nodiscard]] const PrintedPage& onlyPage() const
    {
        static const PrintedPage none;
        if (printout.size() != 1 || printout[0].pages.size() != 1) {
            ADD_FAILURE() << "not one document of one page";
            return none;
        }
        EXPECT_TRUE(printout[0].isPrinted());
        return printout[0].pages[0];
    }
};
