#include "reports/report_list.h"

#include "runtime/run_time_error.h"

namespace reports {
namespace {

void checkSubscript(qsizetype line, qsizetype count)
{
    if (line < 0 || line >= count) {
        throw runtime::RunTimeError(runtime::ErrorNumber::SubscriptOutOfRange);
    }
}

} // namespace

void ReportList::addItem(const QString& text, int style)
{
    lines_.append({text, style});
    tell(Change::Added, lines_.size() - 1);
}

void ReportList::setText(qsizetype line, const QString& text)
{
    checkSubscript(line, lines_.size());
    lines_[line].text = text;
    tell(Change::Rewritten, line);
}

void ReportList::setStyle(qsizetype line, int style)
{
    checkSubscript(line, lines_.size());
    lines_[line].style = style;
    tell(Change::Restyled, line);
}

void ReportList::removeLast(qsizetype count)
{
    const qsizetype kept = lines_.size() - count;
    checkSubscript(kept, lines_.size() + 1); // all may go, and none
    lines_.resize(kept);
    tell(Change::Removed, kept);
}

void ReportList::clear()
{
    lines_.clear();
    tell(Change::Cleared);
}

const ReportLine& ReportList::at(qsizetype line) const
{
    checkSubscript(line, lines_.size());
    return lines_[line];
}

void ReportList::setTabStops(const QList<int>& dialogUnits)
{
    tabStops_ = dialogUnits;
    tell(Change::TabStops);
}

void ReportList::tell(Change change, qsizetype line)
{
    if (listener_) {
        listener_(change, line);
    }
}

} // namespace reports
