#include "cli/program.h"

#include "cli/command.h"
#include "cli/run_time_error_text.h"
#include "data/before_change.h"
#include "data/safekeeping/dated_copies.h"
#include "runtime/run_time_error.h"

#include <algorithm>

namespace cli {
namespace {

const QString kHelp = QStringLiteral("help");

QString usageOf(const QCommandLineOption& option)
{
    const QString usage = QStringLiteral("--") + option.names().constFirst();
    return option.valueName().isEmpty() ? usage : usage + u' ' + option.valueName();
}

QString usageOf(const Command& command)
{
    QString usage = command.name;
    for (const Command::Argument& argument : command.arguments) {
        usage += argument.optional ? QStringLiteral(" [%1]").arg(argument.name) : u' ' + argument.name;
    }
    for (const QCommandLineOption& option : command.options) {
        usage += QStringLiteral(" [%1]").arg(usageOf(option));
    }
    return usage;
}

void writeHelp(Output& output)
{
    output.writeLine(QStringLiteral("Usage: quillonctl COMMAND [ARGUMENT...]"));
    output.writeLine(QStringLiteral("Make, check, read and report a Quillon diary without a window."));
    for (const Command& command : allCommands()) {
        output.writeLine(QString());
        output.writeLine(QStringLiteral("  ") + usageOf(command));
        output.writeLine(QStringLiteral("      ") + command.summary);
    }
    output.writeLine(QString());
    output.writeLine(
        QStringLiteral("'quillonctl COMMAND --help' tells more of a command, 'man quillonctl' everything."));
    output.writeLine(QStringLiteral("Exit status: 0 done, 1 a fault or a run-time error, 2 wrong usage."));
}

void writeTerm(const QString& term, const QString& meaning, Output& output)
{
    constexpr int kTermWidth = 18;
    output.writeLine(QStringLiteral("  ") + term.leftJustified(kTermWidth) + meaning);
}

void writeHelp(const Command& command, Output& output)
{
    output.writeLine(QStringLiteral("Usage: quillonctl ") + usageOf(command));
    output.writeLine(command.summary);
    output.writeLine(QString());
    for (const Command::Argument& argument : command.arguments) {
        writeTerm(argument.name, argument.meaning, output);
    }
    for (const QCommandLineOption& option : command.options) {
        writeTerm(usageOf(option), option.description(), output);
    }
}

ExitStatus call(const Command& command, const QStringList& arguments, Output& output)
{
    QCommandLineParser parser;
    parser.addOption(QCommandLineOption(kHelp));
    parser.addOptions(command.options);
    if (!parser.parse(QStringList{command.name} + arguments)) {
        throw UsageError(parser.errorText());
    }
    if (parser.isSet(kHelp)) {
        writeHelp(command, output);
        return ExitStatus::Done;
    }
    const QStringList positional = parser.positionalArguments();
    const auto required = std::count_if(command.arguments.cbegin(), command.arguments.cend(),
                                        [](const Command::Argument& argument) { return !argument.optional; });
    if (positional.size() < required || positional.size() > command.arguments.size() ||
        positional.contains(QString())) {
        throw UsageError(QStringLiteral("Usage: quillonctl ") + usageOf(command));
    }
    return command.run({positional, parser, output});
}

ExitStatus dispatch(const QStringList& arguments, Output& output)
{
    if (arguments.isEmpty()) {
        throw UsageError(QStringLiteral("A command is missing."));
    }
    const QString& name = arguments.constFirst();
    if (name == u"--help" || name == u"-h" || name == u"help") {
        writeHelp(output);
        return ExitStatus::Done;
    }
    if (name == u"--version") {
        output.writeLine(QStringLiteral("quillonctl " QUILLON_VERSION));
        return ExitStatus::Done;
    }
    const Command* command = findCommand(name);
    if (command == nullptr) {
        throw UsageError(QStringLiteral("There is no command '%1'.").arg(name));
    }
    return call(*command, arguments.mid(1), output);
}

ExitStatus runAndFlush(const QStringList& arguments, Output& output)
{
    try {
        const ExitStatus status = dispatch(arguments, output);
        output.flush();
        return status;
    } catch (const runtime::RunTimeError&) {
        output.flush(); // the records before the error count
        throw;
    }
}

} // namespace

ExitStatus run(const QStringList& arguments)
{
    Output output;
    const runtime::SystemClock clock;
    data::DatedCopies copies(clock, [](const QString& words) { tell(words.simplified()); });
    const data::BeforeChange copying([&copies](const QString& diary) { copies.beforeChange(diary); });
    try {
        return runAndFlush(arguments, output);
    } catch (const UsageError& error) {
        tell(QString::fromUtf8(error.what()) + QStringLiteral("\nTry 'quillonctl --help'."));
        return ExitStatus::Usage;
    } catch (const OutputError& error) {
        tell(QStringLiteral("Cannot write the output: ") + QString::fromLocal8Bit(error.what()));
    } catch (const runtime::RunTimeError& error) {
        tell(oneLineOf(error));
    } catch (const std::exception& error) {
        tell(QString::fromLocal8Bit(error.what()));
    }
    return ExitStatus::Fault;
}

} // namespace cli
