#include "data/change_announcement.h"

#include "data/engine/session.h"

namespace data {

BeforeChange::Call& callBeforeChange()
{
    static BeforeChange::Call call;
    return call;
}

void announceChange(Session& session)
{
    const jet::Database& file = session.database();
    if (callBeforeChange() && !file.inTransaction() && !file.isReadOnly()) {
        callBeforeChange()(session.path());
    }
}

} // namespace data
