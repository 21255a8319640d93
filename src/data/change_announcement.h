// The one place that all changes of a diary pass before they begin.
#pragma once

namespace data {

class Session;

/// Calls what BeforeChange has set, unless the change is part of a transaction in progress or the file may only be
/// read.
void announceChange(Session& session);

} // namespace data
