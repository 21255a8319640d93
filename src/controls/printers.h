// Where print jobs go, as a dependency, so that tests can read what is printed.
#pragma once

#include "reports/printer.h"

#include <QString>

#include <memory>

class QWidget;

namespace controls {

class Printers
{
public:
    virtual ~Printers() = default;

    /// A printer for one document. Null when the user does not want one after all.
    [[nodiscard]] virtual std::unique_ptr<reports::Printer> open(QWidget* owner, const QString& documentName) = 0;
};

} // namespace controls
