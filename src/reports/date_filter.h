// The date filter: two dates as typed, and the clause that they make.
#pragma once

#include "runtime/clock.h"

#include <QString>

namespace reports {

/// What the fields From and To hold; either may be empty. Nothing is checked here.
struct DateFilter {
    QString from;
    QString to;

    [[nodiscard]] bool isComplete() const { return !from.isEmpty() && !to.isEmpty(); }
    /// "where When > Cdate('...') and When < Cdate('...')": both bounds excluded, a bare date being its midnight.
    [[nodiscard]] QString strWhere() const;
};

/// The filter at the start of the program: today minus 2 days to today plus 1 day, so that it covers three days.
[[nodiscard]] DateFilter filterAtStart(const runtime::Clock& clock);

/// What a report opens: the saved query by its name when `strWhere` is empty, else a select from it with the clause.
[[nodiscard]] QString filteredSource(const QString& query, const QString& strWhere);

} // namespace reports
