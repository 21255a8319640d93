#include "app/main_window.h"

#include "runtime/conversions.h"

#include <QMenu>
#include <QMenuBar>

namespace app {

MainWindow::MainWindow()
{
    open("03/03/2002 10:00");
}

void MainWindow::open(const char* now)
{
    clock.set(runtime::toDate(QString::fromLatin1(now)));
    window.emplace(World{.clock = clock,
                         .dialogs = dialogs,
                         .printers = printers,
                         .programFolder = {},
                         .fixedDiaryPath = fixedDiaryPath});
    state().strPath = diary.path();
    testing_windows::showActive(*window);
}

std::vector<std::string> MainWindow::lines()
{
    std::vector<std::string> lines;
    for (qsizetype line = 0; line < state().lstView.size(); ++line) {
        lines.push_back(state().lstView.at(line).text.toStdString());
    }
    return lines;
}

void MainWindow::type(const char* name, const char* text)
{
    QTest::mouseClick(&field(name), Qt::LeftButton);
    field(name).selectAll();
    QTest::keyClick(&field(name), Qt::Key_Backspace);
    QTest::keyClicks(&field(name), QLatin1String(text));
}

QMenu& MainWindow::openMenu(const char* name)
{
    auto& menu = testing_windows::child<QMenu>(*window, name);
    QMenuBar* bar = window->menuBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu.menuAction()).center());
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&menu));
    return menu;
}

void MainWindow::choose(const char* menu, const char* entry)
{
    QMenu& opened = openMenu(menu);
    auto& action = testing_windows::child<QAction>(opened, entry);
    QTest::mouseClick(&opened, Qt::LeftButton, {}, opened.actionGeometry(&action).center());
    opened.close();
}

void MainWindow::expectDateMessage()
{
    const testing::InSequence beepFirst;
    EXPECT_CALL(dialogs, beep());
    EXPECT_CALL(dialogs, showMessage(&*window, QString("From must be a valid date, use clear button to clear"),
                                     QString("Quillon")));
}

} // namespace app
