// The one place that all changes of a diary pass before they begin.
#pragma once

#include "data/before_change.h"

namespace data {

class Session;

/// What the BeforeChange that lives has set; empty where none does.
[[nodiscard]] BeforeChange::Call& callBeforeChange();

/// Makes that call, unless the change is part of a transaction in progress or the file may only be read.
void announceChange(Session& session);

} // namespace data
