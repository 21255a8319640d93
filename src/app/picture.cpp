// quillon-picture PICTURE [DIARY]: saves a picture of the main window with the basic report of the last days. Needs no
// display.
#include "app/frmMain.h"
#include "controls/dialogs.h"
#include "controls/printers.h"
#include "data/diary_location.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>

#include <cstdio>

namespace {

/// There is nobody to answer: what a box would say goes to the standard error stream.
class PrintedDialogs : public controls::Dialogs
{
public:
    void beep() override {}
    void showMessage(QWidget*, const QString& text, const QString&) override { print(text); }
    void showError(QWidget*, const QString& text, const QString&) override { print(text); }
    [[nodiscard]] QString askText(QWidget*, const QString&, const QString&) override { return {}; }
    [[nodiscard]] QString askSavePath(QWidget*, const QString&, const QString&, const QString&) override { return {}; }

    bool printed = false;

private:
    void print(const QString& text)
    {
        std::fputs(qPrintable(text + u'\n'), stderr);
        printed = true;
    }
};

class NoPrinters : public controls::Printers
{
public:
    [[nodiscard]] std::unique_ptr<reports::Printer> open(QWidget*, const QString&) override { return nullptr; }
};

} // namespace

int main(int argc, char* argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("usage: quillon-picture PICTURE [DIARY]\n", stderr);
        return 2;
    }

    const QString diary = arguments.value(2, data::fixedDiaryPath());
    const runtime::SystemClock clock;
    PrintedDialogs dialogs;
    NoPrinters printers;
    app::frmMain window(
        {.clock = clock, .dialogs = dialogs, .printers = printers, .programFolder = {}, .fixedDiaryPath = diary});
    window.state().strPath = diary;
    window.show();
    window.menuBar()->findChild<QAction*>(QStringLiteral("mnuBasicBloodSugar"))->trigger();
    QCoreApplication::processEvents();
    if (!window.grab().save(arguments[1])) {
        std::fputs("quillon-picture: the picture cannot be written\n", stderr);
        return 1;
    }
    return dialogs.printed ? 1 : 0;
}
