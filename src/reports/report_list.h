// The report list's content: lines of tab-separated columns, each with a style code.
#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace reports {

/// Bits of a line's style code. They have no effect on the screen; they form the printed line.
enum Style : int { Plain = 0, Bold = 1, Underlined = 2, Red = 4, Blue = 8, Green = 16 };

struct ReportLine {
    QString text;
    int style = Plain;
};

/// Made for a million lines: adding is cheap, and whoever shows the list is told of changes but draws only what is
/// seen.
class ReportList
{
public:
    void addItem(const QString& text, int style = Plain);
    void setText(qsizetype line, const QString& text); ///< its style stays; 9 subscript out of range
    void setStyle(qsizetype line, int style);          ///< 9 subscript out of range
    void removeLast(qsizetype count = 1);              ///< 9 when there are fewer lines; all stay then
    void clear();
    [[nodiscard]] qsizetype size() const { return lines_.size(); }
    [[nodiscard]] bool isEmpty() const { return lines_.isEmpty(); }
    [[nodiscard]] const ReportLine& at(qsizetype line) const; ///< 9 subscript out of range

    /// Tab stops in dialog units (a quarter of the average character width) from the left edge; kept over clear().
    void setTabStops(const QList<int>& dialogUnits);
    [[nodiscard]] const QList<int>& tabStops() const { return tabStops_; }

    /// Called after each change with the line that it is about: the first of those removed; -1 where all are meant. One
    /// listener at most.
    enum class Change { Added, Rewritten, Restyled, Removed, Cleared, TabStops };
    using Listener = std::function<void(Change change, qsizetype line)>;
    void setListener(Listener listener) { listener_ = std::move(listener); }

private:
    void tell(Change change, qsizetype line = -1);

    QList<ReportLine> lines_;
    QList<int> tabStops_;
    Listener listener_;
};

} // namespace reports
