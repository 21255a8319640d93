#include "controls/event_handlers.h"

#include "controls/dialogs.h"
#include "runtime/run_time_error.h"

#include <exception>

namespace controls {

bool guarded(Dialogs& dialogs, QWidget* owner, const std::function<void()>& action)
{
    QString text;
    try {
        action();
        return true;
    } catch (const runtime::RunTimeError& error) {
        text = error.text();
    } catch (const std::exception& error) {
        text = QStringLiteral("Unexpected error:\n\n%1").arg(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        text = QStringLiteral("Unexpected error of an unknown kind.");
    }
    // Shown outside the catch clauses: by now all that the action held is released, a HourglassPointer too.
    dialogs.showError(owner, text);
    return false;
}

} // namespace controls
