#include "meals/frmSelectMeal.h"

#include "controls/event_handlers.h"
#include "controls/named.h"
#include "controls/report_list_model.h"
#include "controls/report_list_view.h"
#include "meals/meal_type.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace meals {

using controls::named;

namespace {

/// Wide enough for the longest date, "Wednesday 25 September 2024", and its like in other languages.
constexpr int kDescriptionTabStop = 120;
constexpr int kLinesInSight = 15;

/// Room for both columns of any line, for the scroll bar, and to spare: the list counts a line's width in steps.
int widthFor(const controls::ReportListView& list)
{
    const double descriptions = list.tabStops().next(0);
    return static_cast<int>(descriptions) + 2 * list.fontMetrics().horizontalAdvance(mealTypes().first().name) +
           list.verticalScrollBar()->sizeHint().width();
}

} // namespace

frmSelectMeal::frmSelectMeal(QWidget* owner, controls::Dialogs& dialogs, const QString& diaryPath) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmSelectMeal"));
    setWindowTitle(QStringLiteral("Select Meal"));
    createControls();
    Form_Load(diaryPath);
    connectHandlers(dialogs);
}

frmSelectMeal::~frmSelectMeal() = default;

void frmSelectMeal::Form_Load(const QString& diaryPath)
{
    meals_ = storedMeals(diaryPath);
    lines_.setTabStops({kDescriptionTabStop});
    for (const StoredMeal& meal : meals_) {
        lines_.addItem(meal.line());
    }
    model_ = std::make_unique<controls::ReportListModel>(lines_);
    lstMeals->showLines(*model_);
    lstMeals->setCurrentIndex({}); // not the first by itself, so that the first arrow key selects it
    lstMeals->setMinimumSize(widthFor(*lstMeals), lstMeals->fontMetrics().lineSpacing() * kLinesInSight);
}

void frmSelectMeal::cmdOK_Click()
{
    if (const QList<int> selected = lstMeals->selectedLines(); !selected.isEmpty()) {
        chosen_ = meals_.at(selected.first());
    }
    accept();
}

void frmSelectMeal::cmdCancel_Click()
{
    reject();
}

void frmSelectMeal::createControls()
{
    lstMeals = named("lstMeals", new controls::ReportListView);
    lstMeals->setAccessibleName(QStringLiteral("Meals"));
    lstMeals->setSelectionMode(QAbstractItemView::SingleSelection);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    const auto addButton = [&](const char* name, const QString& caption) {
        auto* button = named(name, new QPushButton(caption));
        buttons->addWidget(button);
        return button;
    };
    cmdOK = addButton("cmdOK", QStringLiteral("OK"));
    cmdCancel = addButton("cmdCancel", QStringLiteral("Cancel"));
    cmdOK->setDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lstMeals);
    layout->addLayout(buttons);
}

void frmSelectMeal::connectHandlers(controls::Dialogs& dialogs)
{
    const controls::EventHandlers handlers(*this, dialogs);
    handlers.connect(lstMeals, &QListView::doubleClicked, &frmSelectMeal::cmdOK_Click);
    handlers.connect(cmdOK, &QPushButton::clicked, &frmSelectMeal::cmdOK_Click);
    handlers.connect(cmdCancel, &QPushButton::clicked, &frmSelectMeal::cmdCancel_Click);
}

} // namespace meals
