#include "controls/report_list_model.h"

#include <limits>

namespace controls {

using Change = reports::ReportList::Change;

namespace {

int rowsOf(const reports::ReportList& list)
{
    return static_cast<int>(qMin<qsizetype>(list.size(), std::numeric_limits<int>::max()));
}

} // namespace

ReportListModel::ReportListModel(reports::ReportList& list) : list_(list)
{
    added_.setSingleShot(true);
    connect(&added_, &QTimer::timeout, this, &ReportListModel::showAdded);
    list_.setListener([this](Change change, qsizetype line) { follow(change, line); });
    showAdded();
}

ReportListModel::~ReportListModel()
{
    list_.setListener({});
}

int ReportListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : shown_;
}

QVariant ReportListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    if (index.row() >= list_.size()) {
        return {}; // views are being told that the line is gone
    }
    const reports::ReportLine& line = list_.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return line.text;
    case StyleRole:
        return line.style;
    default:
        return {};
    }
}

void ReportListModel::showAdded()
{
    added_.stop();
    const int size = rowsOf(list_);
    if (size <= shown_) {
        return;
    }
    beginInsertRows({}, shown_, size - 1);
    shown_ = size;
    endInsertRows();
}

void ReportListModel::showRemoved()
{
    const int size = rowsOf(list_);
    if (size >= shown_) {
        return;
    }
    beginRemoveRows({}, size, shown_ - 1);
    shown_ = size;
    endRemoveRows();
}

void ReportListModel::follow(Change change, qsizetype line)
{
    switch (change) {
    case Change::Added:
        if (!added_.isActive()) {
            added_.start();
        }
        break;
    case Change::Rewritten:
        if (line < shown_) {
            emit dataChanged(index(static_cast<int>(line)), index(static_cast<int>(line)), {Qt::DisplayRole});
        }
        break;
    case Change::Removed:
        showRemoved();
        break;
    case Change::Cleared:
        beginResetModel();
        added_.stop();
        shown_ = 0;
        endResetModel();
        break;
    case Change::TabStops:
        emit tabStopsChanged();
        break;
    case Change::Restyled:
        break; // a style does not show on the screen
    }
}

} // namespace controls
