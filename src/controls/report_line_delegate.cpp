#include "controls/report_line_delegate.h"

#include "controls/report_list_view.h"

#include <QApplication>
#include <QPainter>

namespace controls {

ReportLineDelegate::ReportLineDelegate(ReportListView& view) : QStyledItemDelegate(&view), view_(view) {}

void ReportLineDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    // The style draws an empty item: background, selection and focus.
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    item.text.clear();
    view_.style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, &view_);

    const bool selected = item.state.testFlag(QStyle::State_Selected);
    const auto group = item.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    painter->save();
    painter->setClipRect(item.rect);
    painter->setFont(item.font);
    painter->setPen(item.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    const QFontMetricsF metrics(item.font);
    const double left = item.rect.left() + kMargin;
    const double baseline = item.rect.top() + (item.rect.height() - metrics.height()) / 2 + metrics.ascent();
    for (const Column& column :
         layOutColumns(index.data().toString(), view_.tabStops(), metrics, view_.cutColumn()).columns) {
        painter->drawText(QPointF(left + column.x, baseline), column.text);
    }
    painter->restore();
}

QSize ReportLineDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    return {view_.widestLine(), option.fontMetrics.lineSpacing() + 2};
}

} // namespace controls
