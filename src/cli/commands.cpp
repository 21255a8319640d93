#include "cli/commands.h"

#include <algorithm>

namespace cli {

const QList<Command>& allCommands()
{
    static const QList<Command> commands = {createCommand(), checkCommand(),  tablesCommand(),  queriesCommand(),
                                            dumpCommand(),   sqlCommand(),    reportCommand(),  printCommand(),
                                            importCommand(), backUpCommand(), restoreCommand(), compactCommand()};
    return commands;
}

const Command* findCommand(const QString& name)
{
    const QList<Command>& commands = allCommands();
    const auto found =
        std::find_if(commands.begin(), commands.end(), [&](const Command& command) { return command.name == name; });
    return found == commands.end() ? nullptr : &*found;
}

} // namespace cli
