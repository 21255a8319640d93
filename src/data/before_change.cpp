#include "data/before_change.h"

#include "data/change_announcement.h"
#include "data/engine/session.h"

#include <utility>

namespace data {
namespace {

BeforeChange::Call& installedCall()
{
    static BeforeChange::Call call;
    return call;
}

} // namespace

BeforeChange::BeforeChange(Call call) : outer_(std::exchange(installedCall(), std::move(call))) {}

BeforeChange::~BeforeChange()
{
    installedCall() = std::move(outer_);
}

void announceChange(Session& session)
{
    const jet::Database& file = session.database();
    if (installedCall() && !file.inTransaction() && !file.isReadOnly()) {
        installedCall()(session.path());
    }
}

} // namespace data
