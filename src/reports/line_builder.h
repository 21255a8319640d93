// Lines of a report put together column by column.
#pragma once

#include "reports/report_list.h"
#include "runtime/date_pattern.h"
#include "runtime/number_pattern.h"
#include "runtime/value.h"

#include <QString>
#include <QStringView>

namespace reports {

/// Puts all lines together in one buffer: a report has hundreds of thousands of them, and each then takes just the
/// memory of its text.
class LineBuilder
{
public:
    explicit LineBuilder(ReportList& list) : list_(list) {} ///< the list outlives this

    /// Ends a column. A line that begins with this has an empty first one.
    LineBuilder& tab();
    // These go on with the column at hand.
    LineBuilder& add(QStringView text);
    LineBuilder& add(double number, const runtime::NumberPattern& pattern);
    LineBuilder& add(const runtime::Value& value, const runtime::NumberPattern& pattern); ///< nothing for null
    LineBuilder& add(runtime::Date date, const runtime::DatePattern& pattern);

    /// Adds the line to the list and begins the next one.
    void finish(int style = Plain);

private:
    ReportList& list_;
    QString line_;
};

} // namespace reports
