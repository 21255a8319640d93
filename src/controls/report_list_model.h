// The report list's content as a model that a view can show.
#pragma once

#include "reports/report_list.h"

#include <QAbstractListModel>
#include <QTimer>

namespace controls {

/// Follows a report list. Lines that are added one by one are told to views together, once the event loop is reached,
/// so that a report of a million lines costs its views no more than one of ten.
class ReportListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { StyleRole = Qt::UserRole }; ///< a line's style code

    /// Is the list's listener for as long as it lives.
    explicit ReportListModel(reports::ReportList& list);
    ~ReportListModel() override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] const QString& text(int row) const { return list_.at(row).text; }
    [[nodiscard]] const QList<int>& tabStops() const { return list_.tabStops(); }

    /// Tells views of the lines added until now, without waiting for the event loop.
    void showAdded();

signals:
    void tabStopsChanged();

private:
    void follow(reports::ReportList::Change change, qsizetype line);
    void showRemoved();

    reports::ReportList& list_;
    int shown_ = 0; ///< lines that views know of
    QTimer added_;
};

} // namespace controls
