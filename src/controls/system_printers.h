// The printer of the user's system, and a PDF file where the system has none.
#pragma once

#include "controls/printers.h"

#include <functional>

class QPrinter;

namespace controls {

class Dialogs;

/// The system's default printer, else the first one there is; null where there is none.
[[nodiscard]] std::shared_ptr<QPrinter> usualPrinter();

class SystemPrinters : public Printers
{
public:
    using FindPrinter = std::function<std::shared_ptr<QPrinter>()>;

    /// Looks for a printer each time one is opened. `dialogs` outlives this.
    explicit SystemPrinters(Dialogs& dialogs, FindPrinter findPrinter = usualPrinter);

    /// Where there is no printer, asks for the PDF file that takes its place, and does not replace a file that the user
    /// was not asked about.
    [[nodiscard]] std::unique_ptr<reports::Printer> open(QWidget* owner, const QString& documentName) override;

private:
    [[nodiscard]] QString askPath(QWidget* owner, const QString& documentName);

    Dialogs& dialogs_;
    FindPrinter findPrinter_;
};

} // namespace controls
