#include "reports/diary_report.h"

#include "data/database.h"
#include "reports/diary_hints.h"
#include "reports/diary_records.h"
#include "reports/diary_totals.h"
#include "reports/line_builder.h"
#include "reports/modDisp.h"
#include "reports/modTabs.h"
#include "reports/shown_description.h"
#include "runtime/calendar.h"
#include "runtime/conversions.h"
#include "runtime/date_pattern.h"
#include "runtime/format.h"
#include "runtime/number_pattern.h"
#include "runtime/run_time_error.h"

#include <cmath>
#include <utility>

namespace reports {
namespace {

using runtime::Date;
using runtime::ErrorNumber;
using runtime::RunTimeError;

/// What is shown of each meal beside its heading, its insulin and its readings.
enum class Detail { FoodsAndTotals, Totals, None };

/// Read once for all lines.
struct Patterns {
    runtime::NumberPattern oneDecimal{QStringLiteral("#0.0")};
    runtime::NumberPattern twoDecimals{QStringLiteral("#0.00")};
    runtime::DatePattern mealTime{QStringLiteral("dddd dd mmmm yyyy hh:mm")};
    runtime::DatePattern readingTime{QStringLiteral("dd mmm hh:mm")};
    runtime::DatePattern difference{QStringLiteral("h:mm")};
};

bool isSameDay(Date one, Date other)
{
    const runtime::DateParts left = runtime::partsOf(one);
    const runtime::DateParts right = runtime::partsOf(other);
    return left.day == right.day && left.month == right.month && left.year == right.year;
}

/// Of a reading after a meal, by its change from the one before it.
Style styleOf(double change)
{
    constexpr double largeChange = 3; // mmol/l
    return std::fabs(change) < largeChange ? Blue : Red;
}

/// Goes through meals and readings side by side, both in the order of time.
class Diary
{
public:
    Diary(ReportState& state, MealRecords& meals, HistoryRecords& history, Detail detail)
        : state_(state), list_(state.lstView), line_(state.lstView), totals_(state.lstView), meals_(meals),
          history_(history), detail_(detail)
    {
    }

    void run()
    {
        PositionRSBeforeLastMeal(meals_.time());
        while (!meals_.eof()) {
            addMeal();
        }
    }

private:
    void addMeal()
    {
        const Date time = meals_.time();
        const qint16 intIDose = meals_.dose();

        AddMealHeaderToDisplay(time);
        const NutrientTotals meal = addFoods(time);
        if (detail_ != Detail::None) {
            AddMealTotalToDisplay(meal, time);
        }
        AddInsulinDetailsToDisplay(intIDose, meal.carbohydrate);
        AddPostMealResultToDisplay(time);
        AddMealTotalToDay(meal);
        if (detail_ != Detail::None) {
            AddDayTotalToDisplay(time);
        }
    }

    /// Puts the history on the last reading at or before the meal. Its first reading counts as one, whenever it is.
    void PositionRSBeforeLastMeal(Date meal)
    {
        const auto requireReading = [&] {
            if (history_.eof()) {
                throw RunTimeError(ErrorNumber::NoCurrentRecord)
                    .withHint(noLaterReadingHint(meal, history_.count(), state_.strWhere));
            }
        };
        requireReading();
        history_.moveFirst();
        do {
            history_.moveNext();
            requireReading();
        } while (history_.time().days <= meal.days);
        history_.movePrevious();
    }

    void AddMealHeaderToDisplay(Date meal)
    {
        line_.add(meals_.type()).tab().add(meal, patterns_.mealTime);
        line_.add(u"\tkCal\tCarb\tFat\tProt\tGrams").finish(Bold);
        list_.addItem(QString());
    }

    /// Goes through the records of one meal, to the next meal or the end.
    NutrientTotals addFoods(Date time)
    {
        NutrientTotals meal;
        do {
            AddFoodToMealCalcs(meal);
            if (detail_ == Detail::FoodsAndTotals) {
                AddFoodToDisplay();
            }
            meals_.moveNext();
        } while (!meals_.eof() && meals_.time() == time);
        return meal;
    }

    void AddFoodToMealCalcs(NutrientTotals& meal) const { meals_.addTo(meal); }

    void AddFoodToDisplay()
    {
        const MealRecords::Portion portion = meals_.portion();
        line_.tab().add(shownDescription(meals_.description()));
        for (const runtime::Value& amount :
             {portion.energy, portion.carbohydrate, portion.fat, portion.protein, meals_.grams()}) {
            line_.tab().add(amount, patterns_.oneDecimal);
        }
        line_.finish();
    }

    void AddMealTotalToDisplay(const NutrientTotals& meal, Date time)
    {
        if (detail_ == Detail::FoodsAndTotals) {
            list_.addItem(QString());
        }
        totals_.add({QStringLiteral("Total"), QStringLiteral("Total %")}, meal, Plain,
                    [time] { return noEnergyHint(time); });
        list_.addItem(QString());
    }

    void AddInsulinDetailsToDisplay(qint16 intIDose, double dblCarb)
    {
        if (intIDose != 0) {
            line_.add(u"***\tInsulin (I) = ").add(QString::number(intIDose)).add(u" units, Carbs (C) = ");
            line_.add(dblCarb, patterns_.oneDecimal).add(u" g, C/I = ").add(dblCarb / intIDose, patterns_.twoDecimals);
        } else {
            line_.add(u"\tNo bosal insulin with this snack, Carbs = ").add(dblCarb, patterns_.oneDecimal);
        }
        line_.finish();
        list_.addItem(QStringLiteral("\t\tTime\tMmol\tDrop\tReading Type"));
    }

    /// From the reading under the cursor, which the others are compared with, to the next meal or, after the last meal,
    /// to the end of its day. The cursor stays on the last reading listed: the one before the next meal.
    void AddPostMealResultToDisplay(Date meal)
    {
        const double reference = history_.level();
        const double limit = meals_.eof() ? std::trunc(meal.days) + 1 : meals_.time().days;
        do {
            addReading(meal, reference);
            history_.moveNext();
        } while (!history_.eof() && history_.time().days < limit);
        history_.movePrevious();
        list_.addItem(QString());
    }

    void addReading(Date meal, double reference)
    {
        const Date time = history_.time();
        const Date difference{meal.days - time.days};
        const bool beforeMeal = difference.days >= 0;
        const double level = history_.level();
        const double change = level - reference;
        line_.tab().add(time, patterns_.readingTime).add(beforeMeal ? u" pre meal by" : u"");
        line_.tab().add(difference, patterns_.difference);
        line_.tab().add(level, patterns_.oneDecimal).tab().add(change, patterns_.oneDecimal);
        line_.tab().add(history_.type()).tab().add(history_.comment());
        line_.finish(beforeMeal ? Green : styleOf(change));
    }

    void AddMealTotalToDay(const NutrientTotals& meal) { state_.dayTotals += meal; }

    /// Once the day's last meal is there.
    void AddDayTotalToDisplay(Date meal)
    {
        if (meals_.eof() || !isSameDay(meals_.time(), meal)) {
            DisplayTotals(meal);
        }
    }

    void DisplayTotals(Date lastMeal)
    {
        list_.addItem(QString());
        totals_.add({QStringLiteral("Day Total kCal/gms/gms/gms"), QStringLiteral("Day Total %")}, state_.dayTotals,
                    Bold, [lastMeal] { return noEnergyOfDayHint(lastMeal); });
        list_.addItem(QString());
        list_.addItem(kPageSeparator);
        list_.addItem(QString());
        state_.dayTotals = {};
    }

    ReportState& state_;
    ReportList& list_;
    LineBuilder line_;
    TotalsLines totals_;
    Patterns patterns_;
    MealRecords& meals_;
    HistoryRecords& history_;
    Detail detail_;
};

/// The readings from the day before the first meal on.
QString historyFrom(Date firstMeal)
{
    return QStringLiteral("Select * from ExcelHistory where When > Cdate('") +
           runtime::format(Date{firstMeal.days - 1}, QStringLiteral("dd/mmm/yyyy")) + QStringLiteral("')");
}

void build(ReportState& state, Detail detail)
{
    data::Database database(state.strPath);
    SetListTabStops(state.lstView, {40, 210, 240, 270, 300, 330});
    state.PrintTabs = {500, 2000, 6000, 7000, 8000, 9000, 10000};

    data::Recordset records = database.openRecordset(filteredSource(QStringLiteral("MealDetails"), state.strWhere));
    if (records.recordCount() == 0) {
        return;
    }
    MealRecords meals(std::move(records));
    HistoryRecords history(database.openRecordset(historyFrom(meals.time())));
    Diary(state, meals, history, detail).run();
}

} // namespace

void DisplayDiary(ReportState& state, bool booDetail)
{
    build(state, booDetail ? Detail::FoodsAndTotals : Detail::Totals);
}

void DisplayInsulinDiary(ReportState& state)
{
    build(state, Detail::None);
}

} // namespace reports
