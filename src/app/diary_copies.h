// The dated copies of the diary while the window is open.
#pragma once

#include "controls/dialogs.h"
#include "data/before_change.h"
#include "data/safekeeping/dated_copies.h"
#include "runtime/clock.h"

#include <QObject>

namespace app {

/// As long as it lives, the first change of a day makes a copy. What goes wrong with it is shown in a box as soon as
/// the action in progress has come to its end, so that the entry is stored by then.
class DiaryCopies
{
public:
    /// Clock and dialogs must outlive this.
    DiaryCopies(const runtime::Clock& clock, controls::Dialogs& dialogs);

private:
    void tellLater(const QString& words);

    controls::Dialogs& dialogs_;
    QObject context_; ///< boxes that are still to be shown go with it
    data::DatedCopies copies_;
    data::BeforeChange hook_;
};

} // namespace app
