#include "reports/diary_report.h"

#include "data/database.h"
#include "reports/diary_hints.h"
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

namespace reports {
namespace {

using data::Recordset;
using runtime::Date;
using runtime::ErrorNumber;
using runtime::RunTimeError;
using runtime::Value;

/// What is shown of each meal beside its heading, its insulin and its readings.
enum class Detail { FoodsAndTotals, Totals, None };

/// Where the fields of a meal's food stand, looked up once for all records.
struct MealFields {
    explicit MealFields(const Recordset& meals)
        : when(meals.positionOf(QStringLiteral("When"))), type(meals.positionOf(QStringLiteral("MealType"))),
          dose(meals.positionOf(QStringLiteral("InsulinDosage"))),
          description(meals.positionOf(QStringLiteral("Desc"))), quantity(meals.positionOf(QStringLiteral("Quantity"))),
          energy(meals.positionOf(QStringLiteral("kCal"))), carbohydrate(meals.positionOf(QStringLiteral("Carb"))),
          fat(meals.positionOf(QStringLiteral("Fat"))), protein(meals.positionOf(QStringLiteral("Prot")))
    {
    }

    int when;
    int type;
    int dose;
    int description;
    int quantity;
    // For 100 g.
    int energy;
    int carbohydrate;
    int fat;
    int protein;
};

/// And those of a reading.
struct HistoryFields {
    explicit HistoryFields(const Recordset& history)
        : when(history.positionOf(QStringLiteral("When"))), level(history.positionOf(QStringLiteral("Mmol"))),
          type(history.positionOf(QStringLiteral("Type"))), comment(history.positionOf(QStringLiteral("Comment")))
    {
    }

    int when;
    int level;
    int type;
    int comment;
};

/// Read once for all lines.
struct Patterns {
    runtime::NumberPattern oneDecimal{QStringLiteral("#0.0")};
    runtime::NumberPattern twoDecimals{QStringLiteral("#0.00")};
    runtime::DatePattern mealTime{QStringLiteral("dddd dd mmmm yyyy hh:mm")};
    runtime::DatePattern readingTime{QStringLiteral("dd mmm hh:mm")};
    runtime::DatePattern difference{QStringLiteral("h:mm")};
};

Date requireMealTime(const Value& time)
{
    if (isNull(time)) {
        throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noMealTimeHint());
    }
    return runtime::toDate(time);
}

bool isSameDay(Date one, Date other)
{
    const runtime::DateParts left = runtime::partsOf(one);
    const runtime::DateParts right = runtime::partsOf(other);
    return left.day == right.day && left.month == right.month && left.year == right.year;
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
        : state_(state), list_(state.lstView), line_(state.lstView), totals_(state.lstView), meals_(meals),
          history_(history), mealFields_(meals), historyFields_(history), detail_(detail)
    {
    }

    void run()
    {
        PositionRSBeforeLastMeal(mealTime());
        while (!meals_.eof()) {
            addMeal();
        }
    }

private:
    [[nodiscard]] Date mealTime() const { return requireMealTime(meals_.value(mealFields_.when)); }
    [[nodiscard]] Date readingTime() const { return runtime::toDate(history_.value(historyFields_.when)); }

    void addMeal()
    {
        const Date time = mealTime();
        const qint16 intIDose = currentDose(time);

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
                    .withHint(noLaterReadingHint(meal, history_.recordCount(), state_.strWhere));
            }
        };
        requireReading();
        history_.moveFirst();
        do {
            history_.moveNext();
            requireReading();
        } while (readingTime().days <= meal.days);
        history_.movePrevious();
    }

    [[nodiscard]] qint16 currentDose(Date meal) const
    {
        const Value dose = meals_.value(mealFields_.dose);
        if (isNull(dose)) {
            throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noDoseHint(meal));
        }
        return runtime::toInteger(dose);
    }

    void AddMealHeaderToDisplay(Date meal)
    {
        line_.add(runtime::toText(meals_.value(mealFields_.type))).tab().add(meal, patterns_.mealTime);
        line_.add(u"\tkCal\tCarb\tFat\tProt\tGrams").finish(Bold);
        list_.addItem(QString());
    }

    /// Goes through the records of one meal, to the next meal or the end.
    NutrientTotals addFoods(Date time)
    {
        NutrientTotals meal;
        do {
            AddFoodToMealCalcs(meal, time);
            if (detail_ == Detail::FoodsAndTotals) {
                AddFoodToDisplay();
            }
            meals_.moveNext();
        } while (!meals_.eof() && mealTime() == time);
        return meal;
    }

    void AddFoodToMealCalcs(NutrientTotals& meal, Date time) const
    {
        const Value grams = meals_.value(mealFields_.quantity);
        const auto add = [&](double& total, int nutrient) {
            const Value in100Grams = meals_.value(nutrient);
            if (isNull(in100Grams)) {
                return;
            }
            if (isNull(grams)) {
                throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noQuantityHint(time));
            }
            total += runtime::toDouble(portionOf(in100Grams, grams));
        };
        add(meal.carbohydrate, mealFields_.carbohydrate);
        add(meal.protein, mealFields_.protein);
        add(meal.fat, mealFields_.fat);
        add(meal.energy, mealFields_.energy);
    }

    void AddFoodToDisplay()
    {
        const Value grams = meals_.value(mealFields_.quantity);
        line_.tab().add(shownDescription(runtime::toText(meals_.value(mealFields_.description))));
        for (const int nutrient :
             {mealFields_.energy, mealFields_.carbohydrate, mealFields_.fat, mealFields_.protein}) {
            line_.tab().add(portionOf(meals_.value(nutrient), grams), patterns_.oneDecimal);
        }
        line_.tab().add(grams, patterns_.oneDecimal).finish();
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
        const double reference = currentLevel();
        const double limit = meals_.eof() ? std::trunc(meal.days) + 1 : mealTime().days;
        do {
            addReading(meal, reference);
            history_.moveNext();
        } while (!history_.eof() && readingTime().days < limit);
        history_.movePrevious();
        list_.addItem(QString());
    }

    void addReading(Date meal, double reference)
    {
        const Date time = readingTime();
        const Date difference{meal.days - time.days};
        const bool beforeMeal = difference.days >= 0;
        const double level = currentLevel();
        const double change = level - reference;
        line_.tab().add(time, patterns_.readingTime).add(beforeMeal ? u" pre meal by" : u"");
        line_.tab().add(difference, patterns_.difference);
        line_.tab().add(level, patterns_.oneDecimal).tab().add(change, patterns_.oneDecimal);
        for (const int field : {historyFields_.type, historyFields_.comment}) {
            line_.tab().add(runtime::toText(history_.value(field)));
        }
        line_.finish(beforeMeal ? Green : styleOf(change));
    }

    [[nodiscard]] double currentLevel() const
    {
        const Value level = history_.value(historyFields_.level);
        if (isNull(level)) {
            throw RunTimeError(ErrorNumber::InvalidUseOfNull).withHint(noLevelHint(readingTime()));
        }
        return runtime::toDouble(level);
    }

    void AddMealTotalToDay(const NutrientTotals& meal) { state_.dayTotals += meal; }

    /// Once the day's last meal is there.
    void AddDayTotalToDisplay(Date meal)
    {
        if (meals_.eof() || !isSameDay(mealTime(), meal)) {
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
    Recordset& meals_;
    Recordset& history_;
    MealFields mealFields_;
    HistoryFields historyFields_;
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

    Recordset meals = database.openRecordset(filteredSource(QStringLiteral("MealDetails"), state.strWhere));
    if (meals.recordCount() == 0) {
        return;
    }
    const Date firstMeal = requireMealTime(meals.value(QStringLiteral("When")));
    Recordset history = database.openRecordset(historyFrom(firstMeal));
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
