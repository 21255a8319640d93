#include "reports/find_in_report.h"

#include "runtime/run_time_error.h"

#include <limits>

namespace reports {

std::optional<qsizetype> FindInReport::find(const ReportList& list, const QString& text)
{
    text_ = text;
    position_ = 0;
    return search(list);
}

std::optional<qsizetype> FindInReport::findNext(const ReportList& list)
{
    advance();
    return search(list);
}

std::optional<qsizetype> FindInReport::search(const ReportList& list)
{
    const QString wanted = text_.toLower();
    while (position_ < list.size()) {
        if (list.at(position_).text.toLower().contains(wanted)) {
            return position_;
        }
        advance();
    }
    return std::nullopt;
}

void FindInReport::advance()
{
    if (position_ == std::numeric_limits<qint16>::max()) {
        throw runtime::RunTimeError(runtime::ErrorNumber::Overflow)
            .withHint(QStringLiteral("Find looks no further than line 32,768 of the list; set a shorter filter and "
                                     "choose the report again to reach the rest."));
    }
    ++position_;
}

} // namespace reports
