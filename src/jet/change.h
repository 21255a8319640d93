// A change that is a transaction by itself unless one is in progress.
#pragma once

#include "jet/disk/pager.h"

namespace jet {

/// Runs the change; what it throws leaves the transaction that was in progress, if any, to its owner. The change must
/// undo itself when it throws (ChangeScope).
template <typename Change>
void runChange(Pager& pager, Change&& change)
{
    if (pager.inTransaction()) {
        change();
        return;
    }
    pager.begin();
    try {
        change();
    } catch (...) {
        pager.rollback();
        throw;
    }
    pager.commit();
}

} // namespace jet
