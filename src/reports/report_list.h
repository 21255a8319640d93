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
    void setStyle(qsizetype line, int style); ///< 9 subscript out of range
    void clear();
    [[nodiscard]] qsizetype size() const { return lines_.size(); }
    [[nodiscard]] bool isEmpty() const { return lines_.isEmpty(); }
    [[nodiscard]] const ReportLine& at(qsizetype line) const; ///< 9 subscript out of range

    /// Tab stops in dialog units (a quarter of the average character width) from the left edge; kept over clear().
    void setTabStops(const QList<int>& dialogUnits);
    [[nodiscard]] const QList<int>& tabStops() const { return tabStops_; }

    /// Called after each change; one listener at most.
    enum class Change { Added, Cleared, Restyled, TabStops };
    void setListener(std::function<void(Change)> listener) { listener_ = std::move(listener); }

private:
    void tell(Change change);

    QList<ReportLine> lines_;
    QList<int> tabStops_;
    std::function<void(Change)> listener_;
};

} // namespace reports
