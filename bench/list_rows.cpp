// A report of a million lines in the report list, beside Qt's own list of the same texts.

#include "comparison_rows.h"

#include "controls/report_list_model.h"
#include "controls/report_list_view.h"

#include <QApplication>
#include <QScrollBar>
#include <QStringListModel>

#include <malloc.h>

#include <memory>

namespace bench {

namespace {

constexpr int kLines = 1000000;
constexpr QSize kSize(900, 600);

QString line(int number)
{
    return QStringLiteral("\tBUTTER,WITH SALT %1\t12.3\t4.5\t6.7\t8.9\t10.0").arg(number);
}

/// Tells whether a widget was painted.
class Painted : public QObject
{
public:
    explicit Painted(QAbstractScrollArea& area) { area.viewport()->installEventFilter(this); }

    void wait()
    {
        while (!painted_) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        painted_ = false;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        painted_ = painted_ || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

private:
    bool painted_ = false;
};

/// A list in a window: shown when made, gone when destroyed.
class OurList
{
public:
    OurList()
    {
        list_.setTabStops({40, 210, 240, 270, 300, 330});
        for (int number = 0; number < kLines; ++number) {
            list_.addItem(line(number));
        }
    }
    QListView& makeView()
    {
        view_ = std::make_unique<controls::ReportListView>();
        model_ = std::make_unique<controls::ReportListModel>(list_);
        view_->showLines(*model_);
        return *view_;
    }
    void closeView()
    {
        view_.reset();
        model_.reset();
    }

private:
    reports::ReportList list_;
    std::unique_ptr<controls::ReportListModel> model_;
    std::unique_ptr<controls::ReportListView> view_;
};

class QtList
{
public:
    QtList()
    {
        for (int number = 0; number < kLines; ++number) {
            texts_.append(line(number));
        }
    }
    QListView& makeView()
    {
        view_ = std::make_unique<QListView>();
        view_->setUniformItemSizes(true);
        model_ = std::make_unique<QStringListModel>(texts_);
        view_->setModel(model_.get());
        return *view_;
    }
    void closeView()
    {
        view_.reset();
        model_.reset();
    }

private:
    QStringList texts_;
    std::unique_ptr<QStringListModel> model_;
    std::unique_ptr<QListView> view_;
};

void show(QListView& view)
{
    Painted painted(view);
    view.resize(kSize);
    static_cast<QWidget&>(view).show();
    painted.wait();
}

template <typename List>
double timeToShow(List& list)
{
    const double time = processorTimeOf([&] { show(list.makeView()); });
    list.closeView();
    return time;
}

template <typename List>
double timeToScroll(List& list)
{
    QListView& view = list.makeView();
    show(view);
    const double time = processorTimeOf([&] {
        Painted painted(view);
        view.scrollToBottom();
        painted.wait();
    });
    list.closeView();
    return time;
}

double bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// Of the texts, the model and the view.
template <typename List>
double memoryOfLine()
{
    const double before = bytesInUse();
    List list;
    show(list.makeView());
    return (bytesInUse() - before) / kLines;
}

} // namespace

void compareList(ComparisonTable& table)
{
    int argumentCount = 1;
    char name[] = "compare";
    char* arguments[] = {name, nullptr};
    const QApplication application(argumentCount, arguments);
    {
        OurList ours;
        QtList theirs;
        table.add({.what = "list of 1,000,000 lines, to show it",
                   .ours = [&] { return timeToShow(ours); },
                   .theirs = [&] { return timeToShow(theirs); },
                   .mostRatio = {},
                   .note = "from the lines to the first painting of the list that shows reports; theirs: a QListView "
                           "of the same texts with uniform items"});
        table.add({.what = "list of 1,000,000 lines, to scroll to its end",
                   .ours = [&] { return timeToScroll(ours); },
                   .theirs = [&] { return timeToScroll(theirs); },
                   .mostRatio = {},
                   .note = "to the painting of the last lines, in a list that was shown"});
    }
    table.add({.what = "list of 1,000,000 lines, memory a line",
               .ours = [] { return memoryOfLine<OurList>(); },
               .theirs = [] { return memoryOfLine<QtList>(); },
               .mostRatio = {},
               .note = "what the lines, their model and their view hold once shown, texts of 46 characters included",
               .rounds = 1,
               .unit = Unit::Bytes});
}

} // namespace bench
