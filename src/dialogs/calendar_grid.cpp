#include "dialogs/calendar_grid.h"

#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace dialogs {

namespace {

constexpr std::array kDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
static_assert(kDayNames.size() == CalendarMonth::kDaysAWeek);

constexpr int kPadding = 6; ///< pixels left and right of a cell's text

} // namespace

CalendarGrid::CalendarGrid(runtime::Date today)
    : QTableWidget(1 + CalendarMonth::kWeeks, CalendarMonth::kDaysAWeek), month_(today)
{
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    createCells();
    setCellSizes();
    turnTo(month_, today);
}

void CalendarGrid::turnTo(const CalendarMonth& month, runtime::Date today)
{
    month_ = month;
    const int dayOfToday = month.dayOf(today);
    for (int row = 1; row < rowCount(); ++row) {
        for (int column = 0; column < columnCount(); ++column) {
            const int day = month.dayAt({row, column});
            const bool isToday = day != 0 && day == dayOfToday;
            QFont face = font();
            face.setBold(isToday);
            QTableWidgetItem& cell = *item(row, column);
            cell.setText(day == 0 ? QString() : QString::number(day));
            cell.setFlags(day == 0 ? Qt::NoItemFlags : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            cell.setFont(face);
            cell.setToolTip(isToday ? QStringLiteral("Today") : QString());
        }
    }
    setCurrentDay(month.day());
}

QSize CalendarGrid::sizeHint() const
{
    return QSize(horizontalHeader()->length(), verticalHeader()->length()) + 2 * QSize(frameWidth(), frameWidth());
}

void CalendarGrid::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        emit enterPressed(currentRow(), currentColumn());
    } else {
        QTableWidget::keyPressEvent(event);
    }
}

QModelIndex CalendarGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers /*modifiers*/)
{
    const int current = month_.dayAt({currentRow(), currentColumn()});
    const auto target = [&] {
        switch (action) {
        case MoveLeft:
            return current - 1;
        case MoveRight:
            return current + 1;
        case MoveUp:
            return current - CalendarMonth::kDaysAWeek;
        case MoveDown:
            return current + CalendarMonth::kDaysAWeek;
        case MoveHome:
            return 1;
        case MoveEnd:
            return month_.daysInMonth();
        default:
            return current;
        }
    }();
    const bool inMonth = target >= 1 && target <= month_.daysInMonth();
    const Cell cell = month_.cellOf(inMonth ? target : current);
    return model()->index(cell.row, cell.column);
}

void CalendarGrid::createCells()
{
    for (int row = 0; row < rowCount(); ++row) {
        for (int column = 0; column < columnCount(); ++column) {
            auto* cell = new QTableWidgetItem;
            cell->setTextAlignment(Qt::AlignCenter);
            setItem(row, column, cell);
        }
    }
    for (int column = 0; column < columnCount(); ++column) {
        QTableWidgetItem& name = *item(0, column);
        name.setText(QLatin1String(kDayNames.at(static_cast<std::size_t>(column))));
        name.setFlags(Qt::NoItemFlags);
        name.setForeground(palette().buttonText());
        name.setBackground(palette().button());
    }
}

void CalendarGrid::setCellSizes()
{
    int widest = 0;
    for (const char* name : kDayNames) {
        widest = std::max(widest, fontMetrics().horizontalAdvance(QLatin1String(name)));
    }
    // Headers have smallest sizes of their own.
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->setMinimumSectionSize(1);
        header->setSectionResizeMode(QHeaderView::Fixed);
        header->hide();
    }
    horizontalHeader()->setDefaultSectionSize(widest + 2 * kPadding);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kPadding);
}

void CalendarGrid::setCurrentDay(int day)
{
    const Cell cell = month_.cellOf(day);
    setCurrentCell(cell.row, cell.column);
}

} // namespace dialogs
