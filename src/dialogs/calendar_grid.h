// The grid of a calendar: the names of the days, below them the days of one month.
#pragma once

#include "dialogs/calendar_month.h"

#include <QTableWidget>

namespace dialogs {

/// One day is current. Arrow keys move to another day of the month, Home and End to its first and last; nothing moves
/// to a cell without a day.
class CalendarGrid : public QTableWidget
{
    Q_OBJECT

public:
    /// Shows the present month.
    explicit CalendarGrid(runtime::Date today);

    [[nodiscard]] const CalendarMonth& month() const { return month_; }
    /// Shows a month with its day current and today, where it is a day of that month, marked.
    void turnTo(const CalendarMonth& month, runtime::Date today);

    [[nodiscard]] QSize sizeHint() const override;
    /// Typing looks for no cell.
    void keyboardSearch(const QString& /*text*/) override {}

signals:
    void enterPressed(int row, int column);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    void createCells();
    void setCellSizes();
    void setCurrentDay(int day);

    CalendarMonth month_;
};

} // namespace dialogs
