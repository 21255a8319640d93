#include "cli/command.h"
#include "cli/output.h"
#include "cli/program.h"

#include <QGuiApplication>

#include <algorithm>
#include <csignal>
#include <memory>
#include <span>

namespace {

/// Qt remarks on standard error on its own affairs (that the locale "C" is not UTF-8, for one); what our users must
/// know we tell them ourselves. Only why Qt ends the program is for it to say.
void dropRemark(QtMsgType type, const QMessageLogContext&, const QString& remark)
{
    if (type == QtFatalMsg) {
        cli::tell(remark);
    }
}

/// Painting takes fonts, and these an application with a platform; one without a display will do. All other commands
/// start without.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char* argv[])
{
    const cli::Command* command = argc > 1 ? cli::findCommand(QString::fromLocal8Bit(argv[1])) : nullptr;
    if (command == nullptr || !command->paintsPages) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    return std::make_unique<QGuiApplication>(argc, argv);
}

/// An argument that is no text of the locale would reach the commands as another one: the name of another file.
bool areTexts(std::span<char* const> arguments)
{
    return std::all_of(arguments.begin(), arguments.end(), [](const char* argument) {
        return QString::fromLocal8Bit(argument).toLocal8Bit() == QByteArray(argument);
    });
}

} // namespace

int main(int argc, char* argv[])
{
    cli::occupyStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a reader that left is an error of write()
    qInstallMessageHandler(dropRemark);
    if (!areTexts(std::span(argv, static_cast<std::size_t>(argc)))) {
        cli::tell(QStringLiteral("An argument is no valid UTF-8."));
        return static_cast<int>(cli::ExitStatus::Usage);
    }
    const auto application = makeApplication(argc, argv);
    return static_cast<int>(cli::run(QCoreApplication::arguments().mid(1)));
}
