#include "cli/output.h"
#include "cli/program.h"

#include <QCoreApplication>

#include <csignal>

namespace {

/// Qt remarks on standard error on its own affairs (that the locale "C" is not UTF-8, for one); what our users must
/// know we tell them ourselves.
void dropRemark(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

int main(int argc, char* argv[])
{
    cli::occupyStandardStreams();
    std::signal(SIGPIPE, SIG_IGN); // a reader that left is an error of write()
    qInstallMessageHandler(dropRemark);
    const QCoreApplication application(argc, argv);
    return static_cast<int>(cli::run(QCoreApplication::arguments().mid(1)));
}
