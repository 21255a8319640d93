// The main program of every test program with windows.
#include "controls/window_testing.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

namespace testing_windows {

void showActive(QWidget& window)
{
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

void typeOver(QLineEdit& field, const QString& text)
{
    field.selectAll();
    QTest::keyClicks(&field, text);
}

void handlePostedEvents()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

void whenModal(std::function<void(QWidget&)> act)
{
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
        const QPointer<QWidget> modal = QApplication::activeModalWidget();
        if (modal == nullptr) {
            whenModal(act); // not yet
            return;
        }
        EXPECT_TRUE(QTest::qWaitForWindowActive(modal));
        act(*modal);
        if (modal != nullptr) {
            modal->close();
        }
    });
}

} // namespace testing_windows

namespace {

/// QVERIFY and its kin do not fail a test of GoogleTest by themselves.
class QtFailures : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo&) override
    {
        EXPECT_FALSE(QTest::currentTestFailed());
        EXPECT_EQ(QApplication::topLevelWidgets().count(), 0) << "a window outlives its test";
    }
};

} // namespace

int main(int argc, char* argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new QtFailures);
    return RUN_ALL_TESTS();
}
