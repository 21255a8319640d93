#include "controls/report_list_view.h"

#include "controls/report_line_delegate.h"
#include "controls/report_list_model.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace controls {

namespace {
// The content's width grows in steps, since each growth lays out the list anew.
constexpr int kWidthStep = 64;
} // namespace

ReportListView::ReportListView(QWidget* parent) : QListView(parent)
{
    setItemDelegate(new ReportLineDelegate(*this));
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    setFocusPolicy(Qt::StrongFocus);
    takeTabStops();
}

void ReportListView::showLines(ReportListModel& model)
{
    setModel(&model);
    connect(&model, &ReportListModel::tabStopsChanged, this, &ReportListView::takeTabStops);
    takeTabStops();
}

ReportListModel* ReportListView::lines() const
{
    return qobject_cast<ReportListModel*>(model());
}

int ReportListView::topIndex() const
{
    return verticalScrollBar()->value();
}

void ReportListView::setTopIndex(int line)
{
    if (ReportListModel* model = lines()) {
        model->showAdded();
    }
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(std::max(line, 0));
}

QList<int> ReportListView::selectedLines() const
{
    QList<int> result;
    if (const QItemSelectionModel* selected = selectionModel()) {
        const QItemSelection ranges = selected->selection();
        for (const QItemSelectionRange& range : ranges) {
            for (int row = range.top(); row <= range.bottom(); ++row) {
                result.append(row);
            }
        }
    }
    std::sort(result.begin(), result.end());
    return result;
}

void ReportListView::addToSelection(int line)
{
    ReportListModel* model = lines();
    if (model == nullptr) {
        return;
    }
    model->showAdded();
    selectionModel()->setCurrentIndex(model->index(line), QItemSelectionModel::Select);
}

void ReportListView::selectOnly(int line)
{
    ReportListModel* model = lines();
    if (model == nullptr) {
        return;
    }
    model->showAdded();
    executeDelayedItemsLayout(); // else it scrolls as far as the lines before
    selectionModel()->setCurrentIndex(model->index(line), QItemSelectionModel::ClearAndSelect);
}

QString ReportListView::selectedText() const
{
    QString text;
    if (const ReportListModel* model = lines()) {
        for (const int line : selectedLines()) {
            text += model->text(line) + u'\n';
        }
    }
    return text;
}

void ReportListView::copySelection() const
{
    if (const QString text = selectedText(); !text.isEmpty()) {
        QGuiApplication::clipboard()->setText(text);
    }
}

void ReportListView::setCutColumn(int column)
{
    cutColumn_ = column;
    takeTabStops();
}

void ReportListView::reset()
{
    widest_ = 0;
    QListView::reset();
    scrollToTop();
}

void ReportListView::paintEvent(QPaintEvent* event)
{
    measureLinesInSight();
    QListView::paintEvent(event);
}

void ReportListView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        event->accept();
    } else {
        QListView::keyPressEvent(event);
    }
}

void ReportListView::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        takeTabStops();
    }
}

void ReportListView::takeTabStops()
{
    const ReportListModel* model = lines();
    const double characterWidth = averageCharacterWidth(QFontMetricsF(font()));
    tabStops_ = TabStops(model != nullptr ? model->tabStops() : QList<int>(), characterWidth);
    widest_ = 0;
    scheduleDelayedItemsLayout();
}

void ReportListView::measureLinesInSight()
{
    const ReportListModel* model = lines();
    if (model == nullptr || model->rowCount() == 0) {
        return;
    }
    const QFontMetricsF metrics(font());
    const int first = topIndex();
    const int height = std::max(visualRect(model->index(first)).height(), 1);
    const int last = std::min(first + viewport()->height() / height + 1, model->rowCount() - 1);
    double width = 0;
    for (int row = first; row <= last; ++row) {
        width = std::max(width, layOutColumns(model->text(row), tabStops_, metrics, cutColumn_).width);
    }
    const int needed = static_cast<int>(std::ceil(width)) + 2 * ReportLineDelegate::kMargin;
    if (needed > widest_) {
        widest_ = (needed / kWidthStep + 1) * kWidthStep;
        scheduleDelayedItemsLayout();
    }
}

} // namespace controls
