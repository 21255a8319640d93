#include "cli/commands.h"

namespace cli {

const QList<Command>& allCommands()
{
    static const QList<Command> commands = {createCommand(), checkCommand(), tablesCommand(), queriesCommand(),
                                            dumpCommand(),   sqlCommand(),   reportCommand(), importCommand()};
    return commands;
}

} // namespace cli
