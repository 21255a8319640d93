// Changes that are made in full or not at all.
#pragma once

#include "jet/stored_table.h"

namespace jet {

/// A part of a transaction that is taken back unless it is kept.
class ChangeScope
{
public:
    explicit ChangeScope(StoredTables& tables) : tables_(&tables), savepoint_(tables.pager().savepoint()) {}
    ChangeScope(const ChangeScope&) = delete;
    ChangeScope& operator=(const ChangeScope&) = delete;
    ~ChangeScope()
    {
        if (!kept_) {
            tables_->pager().rollbackTo(savepoint_);
            tables_->pager().release(savepoint_);
            tables_->forget();
        }
    }
    void keep()
    {
        tables_->pager().release(savepoint_);
        kept_ = true;
    }

private:
    StoredTables* tables_;
    Pager::Savepoint savepoint_;
    bool kept_ = false;
};

/// Runs the change, as a transaction by itself unless one is in progress. One that is in progress is left to its owner
/// when the change throws; so the change must take itself back (ChangeScope).
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
