// An empty window of the same size up to its first painting: what Qt itself takes.
#include "quit_after_paint.h"

#include <QApplication>
#include <QWidget>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(900, 600);
    bench::QuitAfterPaint quit;
    window.installEventFilter(&quit);
    window.show();
    return QApplication::exec();
}
