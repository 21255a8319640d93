// Aggregate functions that SQLite has not.
#pragma once

#include "data/engine/pending_error.h"

namespace data {

/// agg_first, agg_last: of the rows in their order, null where the row's value is null. agg_stdev, agg_stdevp, agg_var,
/// agg_varp: null where there are too few values. agg_single: the only value; 3354 when there are several. The pending
/// error must live as long as the connection.
void registerAggregates(sqlite3* connection, PendingError& pending);

} // namespace data
