// The program up to its first painted window, then the end. Compare with first_paint_empty.
#include "quit_after_paint.h"

#include "app/frmMain.h"
#include "controls/qt_dialogs.h"
#include "controls/system_printers.h"
#include "data/diary_location.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const runtime::SystemClock clock;
    controls::QtDialogs dialogs;
    controls::SystemPrinters printers(dialogs);
    app::frmMain window({.clock = clock,
                         .dialogs = dialogs,
                         .printers = printers,
                         .programFolder = QCoreApplication::applicationDirPath(),
                         .fixedDiaryPath = data::fixedDiaryPath()});
    bench::QuitAfterPaint quit;
    window.installEventFilter(&quit);
    window.show();
    return QApplication::exec();
}
