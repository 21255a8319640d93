// The one place where an error that no handler expects becomes a box.
#pragma once

#include <QObject>
#include <QWidget>

#include <functional>

namespace controls {

class Dialogs;

/// Runs an action of `owner`. An exception ends the action and is shown in an error box; the program goes on.
/// Returns whether the action came to its end.
bool guarded(Dialogs& dialogs, QWidget* owner, const std::function<void()>& action);

/// Binds signals to a form's handlers, each of them guarded: no exception ever reaches Qt's event loop.
template <typename Form>
class EventHandlers
{
public:
    EventHandlers(Form& form, Dialogs& dialogs) : form_(&form), dialogs_(&dialogs) {}

    /// The signal's arguments go to the handler as far as it takes them; a handler without parameters takes none.
    template <typename Sender, typename Signal, typename... Parameters>
    void connect(const Sender* sender, Signal signal, void (Form::*handler)(Parameters...)) const
    {
        QObject::connect(sender, signal, form_, [form = form_, dialogs = dialogs_, handler](Parameters... values) {
            guarded(*dialogs, form, [&] { (form->*handler)(values...); });
        });
    }

    /// A handler as a function that throws nothing, for what calls back without a signal.
    [[nodiscard]] std::function<void()> function(void (Form::*handler)()) const
    {
        return [form = form_, dialogs = dialogs_, handler] { guarded(*dialogs, form, [&] { (form->*handler)(); }); };
    }

private:
    Form* form_;
    Dialogs* dialogs_;
};

} // namespace controls
