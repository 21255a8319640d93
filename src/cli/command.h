// What a command of quillonctl is.
#pragma once

#include "cli/exit_status.h"
#include "cli/output.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

#include <stdexcept>

namespace cli {

/// The command line makes no sense.
class UsageError : public std::runtime_error
{
public:
    explicit UsageError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

/// A command as it was called: its arguments, all of them there but the optional ones, and its options.
struct Call {
    QStringList arguments;
    const QCommandLineParser& options;
    Output& output;
};

struct Command {
    struct Argument {
        QString name;
        QString meaning;
        bool optional = false; ///< may be left out; so may those behind it
    };

    QString name;
    QString summary;
    QList<Argument> arguments;
    QList<QCommandLineOption> options;
    /// Writes its result to the call's output. Throws UsageError, runtime::RunTimeError, OutputError.
    ExitStatus (*run)(const Call& call);
    bool paintsPages = false; ///< needs a QGuiApplication
};

/// In the order in which the help lists them.
[[nodiscard]] const QList<Command>& allCommands();
/// Null when there is none of that name.
[[nodiscard]] const Command* findCommand(const QString& name);

} // namespace cli
