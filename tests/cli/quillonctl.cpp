#include "cli/quillonctl.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <sstream>

Outcome quillonctl(const QStringList& arguments, const Circumstances& circumstances)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* variable : {"LC_ALL", "LANG"}) {
        environment.insert(QString::fromLatin1(variable), circumstances.locale);
    }
    process.setProcessEnvironment(environment);
    if (circumstances.beforeStart) {
        process.setChildProcessModifier(circumstances.beforeStart);
    }
    process.start(QStringLiteral(QUILLONCTL), arguments, QIODevice::ReadOnly);
    const bool ended = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}
