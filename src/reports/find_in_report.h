// Find and Find Next in the report list.
#pragma once

#include "reports/report_list.h"

#include <QString>

#include <optional>

namespace reports {

/// Remembers what was last searched for, and where. A line matches when it holds the text, without regard to case; an
/// empty text is in every line. There is no way round from the last line to the first.
class FindInReport
{
public:
    /// The first line that matches; none: the search is at its end.
    std::optional<qsizetype> find(const ReportList& list, const QString& text);
    /// The next line that matches. Before the first find: every line but the first one matches.
    std::optional<qsizetype> findNext(const ReportList& list);

private:
    std::optional<qsizetype> search(const ReportList& list);
    void advance();

    QString text_;
    qint16 position_ = 0; ///< of the line last looked at; 6 overflow where a search goes beyond 32,767
};

} // namespace reports
