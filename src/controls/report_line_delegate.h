// Draws one line of the report list.
#pragma once

#include <QStyledItemDelegate>

namespace controls {

class ReportListView;

class ReportLineDelegate : public QStyledItemDelegate
{
public:
    explicit ReportLineDelegate(ReportListView& view);

    static constexpr int kMargin = 3; ///< left and right of the text

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const ReportListView& view_;
};

} // namespace controls
