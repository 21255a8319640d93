#include "reports/diary_report.h"

#include "data/database.h"
#include "reports/diary_hints.h"
#include "reports/diary_totals.h"
#include "reports/modDisp.h"
#include "reports/modTabs.h"
#include "reports/shown_description.h"
#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/run_time_error.h"

#include <QStringList>

#include <cmath>

namespace reports {
namespace {

using data::Recordset;
using runtime::Date;
using runtime::ErrorNumber;
using runtime::RunTimeError;
using runtime::Value;

/// What is shown of each meal beside its heading, its insulin and its readings.
enum class Detail { FoodsAndTotals, Totals, None };

Date timeOf(const Recordset& records)
{
    return runtime::toDate(records.value(QStringLiteral("When")));
}

Date mealTimeOf(const Recordset& meals)
{
    if (isNull(meals.value(QStringLiteral("When")))) {
        throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noMealTimeHint());
    }
    return timeOf(meals);
}

QString textOf(const Recordset& records, const QString& name)
{
    return runtime::toText(records.value(name));
}

QString dayOf(Date time)
{
    return runtime::format(time, QStringLiteral("dd/mmm/yyyy"));
}

QString oneDecimal(const Value& value)
{
    return runtime::format(value, QStringLiteral("#0.0"));
}

/// Of one food as eaten, from its figure for 100 g; null where there is none.
Value portionOf(const Value& in100Grams, const Value& grams)
{
    if (isNull(in100Grams) || isNull(grams)) {
        return runtime::Null{};
    }
    return runtime::toDouble(in100Grams) * runtime::toDouble(grams) / 100;
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
    Diary(ReportState& state, Recordset& meals, Recordset& history, Detail detail)
        : state_(state), list_(state.lstView), meals_(meals), history_(history), detail_(detail)
    {
    }

    void run()
    {
        PositionRSBeforeLastMeal(mealTimeOf(meals_));
        while (!meals_.eof()) {
            addMeal();
        }
    }

private:
    void addMeal()
    {
        const Date mealTime = mealTimeOf(meals_);
        const qint16 intIDose = currentDose(mealTime);
        const QString strThisMealDay = dayOf(mealTime);

        AddMealHeaderToDisplay(mealTime);
        const NutrientTotals meal = addFoods(mealTime);
        if (detail_ != Detail::None) {
            AddMealTotalToDisplay(meal, mealTime);
        }
        AddInsulinDetailsToDisplay(intIDose, meal.carbohydrate);
        AddPostMealResultToDisplay(mealTime);
        AddMealTotalToDay(meal);
        if (detail_ != Detail::None) {
            AddDayTotalToDisplay(strThisMealDay, mealTime);
        }
    }

    /// Puts the history on the last reading at or before the meal. Its first reading counts as one, whenever it is.
    void PositionRSBeforeLastMeal(Date mealTime)
    {
        const auto requireReading = [&] {
            if (history_.eof()) {
                throw RunTimeError(ErrorNumber::NoCurrentRecord)
                    .withHint(noLaterReadingHint(mealTime, history_.recordCount(), state_.strWhere));
            }
        };
        requireReading();
        history_.moveFirst();
        do {
            history_.moveNext();
            requireReading();
        } while (timeOf(history_).days <= mealTime.days);
        history_.movePrevious();
    }

    [[nodiscard]] qint16 currentDose(Date mealTime) const
    {
        const Value dose = meals_.value(QStringLiteral("InsulinDosage"));
        if (isNull(dose)) {
            throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noDoseHint(mealTime));
        }
        return runtime::toInteger(dose);
    }

    void AddMealHeaderToDisplay(Date mealTime)
    {
        list_.addItem(textOf(meals_, QStringLiteral("MealType")) + u'\t' +
                          runtime::format(mealTime, QStringLiteral("dddd dd mmmm yyyy hh:mm")) +
                          QStringLiteral("\tkCal\tCarb\tFat\tProt\tGrams"),
                      Bold);
        list_.addItem(QString());
    }

    /// Goes through the records of one meal, to the next meal or the end.
    NutrientTotals addFoods(Date mealTime)
    {
        NutrientTotals meal;
        do {
            AddFoodToMealCalcs(meal, mealTime);
            if (detail_ == Detail::FoodsAndTotals) {
                AddFoodToDisplay();
            }
            meals_.moveNext();
        } while (!meals_.eof() && mealTimeOf(meals_) == mealTime);
        return meal;
    }

    void AddFoodToMealCalcs(NutrientTotals& meal, Date mealTime) const
    {
        const Value grams = meals_.value(QStringLiteral("Quantity"));
        const auto add = [&](double& total, const QString& nutrient) {
            const Value in100Grams = meals_.value(nutrient);
            if (isNull(in100Grams)) {
                return;
            }
            if (isNull(grams)) {
                throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noQuantityHint(mealTime));
            }
            total += runtime::toDouble(portionOf(in100Grams, grams));
        };
        add(meal.carbohydrate, QStringLiteral("Carb"));
        add(meal.protein, QStringLiteral("Prot"));
        add(meal.fat, QStringLiteral("Fat"));
        add(meal.energy, QStringLiteral("kCal"));
    }

    void AddFoodToDisplay()
    {
        const Value grams = meals_.value(QStringLiteral("Quantity"));
        const auto portion = [&](const QString& nutrient) {
            return oneDecimal(portionOf(meals_.value(nutrient), grams));
        };
        addColumns({QString(), shownDescription(textOf(meals_, QStringLiteral("Desc"))),
                    portion(QStringLiteral("kCal")), portion(QStringLiteral("Carb")), portion(QStringLiteral("Fat")),
                    portion(QStringLiteral("Prot")), oneDecimal(grams)});
    }

    void AddMealTotalToDisplay(const NutrientTotals& meal, Date mealTime)
    {
        if (detail_ == Detail::FoodsAndTotals) {
            list_.addItem(QString());
        }
        addTotals(list_, {QStringLiteral("Total"), QStringLiteral("Total %")}, meal, Plain,
                  [mealTime] { return noEnergyHint(mealTime); });
        list_.addItem(QString());
    }

    void AddInsulinDetailsToDisplay(qint16 intIDose, double dblCarb)
    {
        if (intIDose != 0) {
            list_.addItem(QStringLiteral("***\tInsulin (I) = ") + QString::number(intIDose) +
                          QStringLiteral(" units, Carbs (C) = ") + oneDecimal(dblCarb) + QStringLiteral(" g, C/I = ") +
                          runtime::format(dblCarb / intIDose, QStringLiteral("#0.00")));
        } else {
            list_.addItem(QStringLiteral("\tNo bosal insulin with this snack, Carbs = ") + oneDecimal(dblCarb));
        }
        list_.addItem(QStringLiteral("\t\tTime\tMmol\tDrop\tReading Type"));
    }

    /// From the reading under the cursor, which the others are compared with, to the next meal or, after the last meal,
    /// to the end of its day. The cursor stays on the last reading listed: the one before the next meal.
    void AddPostMealResultToDisplay(Date mealTime)
    {
        const double reference = currentLevel();
        const double limit = meals_.eof() ? std::trunc(mealTime.days) + 1 : mealTimeOf(meals_).days;
        do {
            addReading(mealTime, reference);
            history_.moveNext();
        } while (!history_.eof() && timeOf(history_).days < limit);
        history_.movePrevious();
        list_.addItem(QString());
    }

    void addReading(Date mealTime, double reference)
    {
        const Date time = timeOf(history_);
        const Date difference{mealTime.days - time.days};
        const bool beforeMeal = difference.days >= 0;
        const double level = currentLevel();
        const double change = level - reference;
        addColumns({QString(),
                    runtime::format(time, QStringLiteral("dd mmm hh:mm")) +
                        (beforeMeal ? QStringLiteral(" pre meal by") : QString()),
                    runtime::format(difference, QStringLiteral("h:mm")), oneDecimal(level), oneDecimal(change),
                    textOf(history_, QStringLiteral("Type")), textOf(history_, QStringLiteral("Comment"))},
                   beforeMeal ? Green : styleOf(change));
    }

    [[nodiscard]] double currentLevel() const
    {
        const Value level = history_.value(QStringLiteral("Mmol"));
        if (isNull(level)) {
            throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noLevelHint(timeOf(history_)));
        }
        return runtime::toDouble(level);
    }

    void AddMealTotalToDay(const NutrientTotals& meal) { state_.dayTotals += meal; }

    void AddDayTotalToDisplay(const QString& strThisMealDay, Date mealTime)
    {
        if (meals_.eof() || dayOf(mealTimeOf(meals_)) != strThisMealDay) {
            DisplayTotals(mealTime);
        }
    }

    void DisplayTotals(Date mealTime)
    {
        list_.addItem(QString());
        addTotals(list_, {QStringLiteral("Day Total kCal/gms/gms/gms"), QStringLiteral("Day Total %")},
                  state_.dayTotals, Bold, [mealTime] { return noEnergyOfDayHint(mealTime); });
        list_.addItem(QString());
        list_.addItem(kPageSeparator);
        list_.addItem(QString());
        state_.dayTotals = {};
    }

    void addColumns(const QStringList& columns, Style style = Plain) { list_.addItem(columns.join(u'\t'), style); }

    ReportState& state_;
    ReportList& list_;
    Recordset& meals_;
    Recordset& history_;
    Detail detail_;
};

/// The readings from the day before the first meal on.
QString historyFrom(Date firstMeal)
{
    return QStringLiteral("Select * from ExcelHistory where When > Cdate('") + dayOf(Date{firstMeal.days - 1}) +
           QStringLiteral("')");
}

void build(ReportState& state, Detail detail)
{
    data::Database database(state.strPath);
    SetListTabStops(state.lstView, {40, 210, 240, 270, 300, 330});
    state.PrintTabs = {500, 2000, 6000, 7000, 8000, 9000, 10000};

    Recordset meals = database.openRecordset(filteredSource(QStringLiteral("MealDetails"), state.strWhere));
    if (meals.recordCount() == 0) {
        return;
    }
    Recordset history = database.openRecordset(historyFrom(mealTimeOf(meals)));
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
