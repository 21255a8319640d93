#include "data/before_change.h"

#include "data/change_announcement.h"

#include <utility>

namespace data {

BeforeChange::BeforeChange(Call call) : outer_(std::exchange(callBeforeChange(), std::move(call))) {}

BeforeChange::~BeforeChange()
{
    callBeforeChange() = std::move(outer_);
}

} // namespace data
