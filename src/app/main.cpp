// Quillon: a diary for people who treat diabetes with insulin.
#include "app/diary_copies.h"
#include "app/frmMain.h"
#include "controls/qt_dialogs.h"
#include "controls/system_printers.h"
#include "data/diary_location.h"

#include <QApplication>
#include <QDir>

#include <cstdlib>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quillon"));
    QCoreApplication::setOrganizationName(QStringLiteral("Quillon"));

    const runtime::SystemClock clock;
    controls::QtDialogs dialogs;
    const app::DiaryCopies copies(clock, dialogs);
    controls::SystemPrinters printers(dialogs);
    const auto window =
        app::openMainWindow({.clock = clock,
                             .dialogs = dialogs,
                             .printers = printers,
                             .programFolder = QDir::toNativeSeparators(QCoreApplication::applicationDirPath()),
                             .fixedDiaryPath = data::fixedDiaryPath()});
    return window ? QApplication::exec() : EXIT_FAILURE;
}
