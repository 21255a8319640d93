// A picture of the main window on paper.
#pragma once

#include <QString>

class QMainWindow;

namespace reports {
class Printer;
}

namespace app {

/// Prints the window as it stands on one page: its picture in the middle, the caption above it, the menus named left
/// out. For that moment the window has the caption and the width of the page; it is what it was again on return, also
/// when the printer fails (482).
void printWindow(QMainWindow& window, const QString& caption, const QStringList& hiddenMenus,
                 reports::Printer& printer);

} // namespace app
