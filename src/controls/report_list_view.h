// lstView: the list box that shows a report.
#pragma once

#include "controls/tab_stops.h"

#include <QListView>

namespace controls {

class ReportListModel;

/// Lines of tab-separated columns, of which several can be selected: by click, Shift, Ctrl and keyboard. Ctrl+C copies
/// the selected lines as text.
class ReportListView : public QListView
{
    Q_OBJECT

public:
    explicit ReportListView(QWidget* parent = nullptr);

    /// The model outlives the view or is destroyed before it; both are fine.
    void showLines(ReportListModel& model);

    /// The first line in sight. Setting it stops at the list's ends: the last page stays full.
    [[nodiscard]] int topIndex() const;
    void setTopIndex(int line);

    /// From top to bottom.
    [[nodiscard]] QList<int> selectedLines() const;
    /// Makes a line the current one and selects it; what is selected already stays so.
    void addToSelection(int line);
    /// Makes a line the current and only selected one, in sight where the view scrolls by itself (autoScroll).
    void selectOnly(int line);
    /// The selected lines, each with a line break behind it.
    [[nodiscard]] QString selectedText() const;
    void copySelection() const;

    [[nodiscard]] const TabStops& tabStops() const { return tabStops_; }
    /// The column that is cut rather than pushing the next ones from their places (see layOutColumns).
    void setCutColumn(int column);
    [[nodiscard]] int cutColumn() const { return cutColumn_; }
    /// How wide an item must be for the widest line that was in sight so far.
    [[nodiscard]] int widestLine() const { return widest_; }

    void reset() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void takeTabStops();
    void measureLinesInSight();
    [[nodiscard]] ReportListModel* lines() const;

    TabStops tabStops_;
    int widest_ = 0;
    int cutColumn_ = kNoColumn;
};

} // namespace controls
