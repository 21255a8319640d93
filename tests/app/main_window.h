// The main window on a diary of its own, for tests.
#pragma once

#include "app/frmMain.h"
#include "controls/mock_dialogs.h"
#include "controls/window_testing.h"
#include "runtime/clock.h"
#include "support/recording_printers.h"
#include "support/test_diary.h"

#include <QComboBox>
#include <QFrame>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include <optional>

namespace app {

class MainWindow : public testing::Test
{
protected:
    MainWindow();

    /// A fresh window, started at that moment.
    void open(const char* now);

    QLineEdit& field(const char* name) { return testing_windows::child<QLineEdit>(*window, name); }
    QPushButton& button(const char* name) { return testing_windows::child<QPushButton>(*window, name); }
    QWidget& list() { return testing_windows::child<QWidget>(*window, "lstView"); }
    reports::ReportState& state() { return window->state(); }
    [[nodiscard]] std::vector<std::string> lines();

    void click(const char* name) { QTest::mouseClick(&button(name), Qt::LeftButton); }
    /// Into the field, its text replaced.
    void type(const char* name, const char* text);
    QMenu& openMenu(const char* name);
    /// An entry of a menu, opened and clicked.
    void choose(const char* menu, const char* entry);
    void expectDateMessage();

    TestDiary diary;
    runtime::FixedClock clock{{}};
    controls::StrictDialogs dialogs;
    RecordingPrinters printers;
    QString fixedDiaryPath = diary.path();
    std::optional<frmMain> window;
};

} // namespace app
