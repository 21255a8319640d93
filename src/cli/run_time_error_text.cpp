#include "cli/run_time_error_text.h"

namespace cli {

QString oneLineOf(const runtime::RunTimeError& error)
{
    QString line = QStringLiteral("Run-time error '%1': ").arg(error.number()) + error.words();
    if (!error.hint().isEmpty()) {
        line += (line.endsWith(u'.') ? QStringLiteral(" ") : QStringLiteral(". ")) + error.hint();
    }
    return line;
}

} // namespace cli
