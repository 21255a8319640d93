#include "reports/daily_analysis.h"

#include "data/database.h"
#include "reports/modTabs.h"
#include "reports/readings_report.h"
#include "runtime/conversions.h"
#include "runtime/format.h"

#include <QStringList>

namespace reports {
namespace {

/// The readings of one meal in mmol/l. 0 is a reading not found: one of exactly 0 cannot be told from it.
struct MealGroup {
    double gettingUp = 0;
    double meal = 0;
    double mealPlus2 = 0;
    double mealPlus3 = 0;

    bool hasLaterReadings() const { return mealPlus2 != 0 && mealPlus3 != 0; }
    bool isComplete() const { return (gettingUp != 0 || meal != 0) && hasLaterReadings(); }
    /// A breakfast without a reading of its own begins at the one of getting up.
    double base() const { return meal != 0 ? meal : gettingUp; }
};

/// Walks the readings backwards in time, from the latest one, and lists what it finds.
class DailyAnalysis
{
public:
    DailyAnalysis(data::Recordset& readings, ReportList& list, const QString& strWhere)
        : readings_(readings), list_(list), strWhere_(strWhere)
    {
    }

    void run()
    {
        requireCurrent(readings_, noReadingHint(strWhere_));
        readings_.moveLast();
        while (!readings_.bof()) {
            const MealGroup group = nextGroup();
            if (groupDay_ != lastDayShown_) {
                lastDayShown_ = groupDay_;
                addDay(group);
            }
            addGroup(group);
        }
    }

private:
    MealGroup nextGroup()
    {
        MealGroup group;
        do {
            visitReading(group);
            readings_.movePrevious();
        } while (!readings_.bof() && !group.isComplete());
        return group;
    }

    void visitReading(MealGroup& group)
    {
        const double mmol = currentMmol();
        const QString type = runtime::toText(readings_.value(QStringLiteral("Type")));
        thisMorning_ = mmol;
        if (type == QStringLiteral("Getting Up")) {
            if (group.hasLaterReadings()) {
                group.gettingUp = mmol;
                takeGroupTime();
            }
        } else if (type == QStringLiteral("Meal")) {
            group.meal = mmol;
            takeGroupTime();
        } else if (type == QStringLiteral("Meal + 2")) {
            group.mealPlus2 = mmol;
        } else if (type == QStringLiteral("Meal + 3")) {
            // It belongs to an earlier meal than those found since the last group.
            group.mealPlus3 = mmol;
            group.meal = 0;
            group.mealPlus2 = 0;
        } else if (type == QStringLiteral("Calibration") && group.mealPlus3 == 0) {
            group.mealPlus3 = mmol;
        }
    }

    double currentMmol() const { return runtime::toDouble(readings_.value(QStringLiteral("Mmol"))); }

    void takeGroupTime()
    {
        const runtime::Date when = runtime::toDate(readings_.value(QStringLiteral("When")));
        groupTime_ = when;
        groupDay_ = runtime::format(when, QStringLiteral("dddd dd mmm yyyy"));
    }

    void addDay(const MealGroup& firstGroup)
    {
        list_.addItem(QString());
        list_.addItem(groupDay_);
        list_.addItem(QString());
        list_.addItem(overnightLine(firstGroup));
        list_.addItem(QString());
    }

    /// "Last night" is the reading before the last one visited, of whatever type.
    QString overnightLine(const MealGroup& firstGroup) const
    {
        requireCurrent(readings_, firstGroup.isComplete() ? noLastNightHint() : incompleteMealHint());
        const double lastNight = currentMmol();
        const auto shown = [](double mmol) { return runtime::format(mmol, QStringLiteral("#0.0")); };
        return QStringLiteral("This morning - ") + shown(thisMorning_) + QStringLiteral("   Last night - ") +
               shown(lastNight) + QStringLiteral("   Drop = ") + shown(lastNight - thisMorning_);
    }

    QString noLastNightHint() const
    {
        return QStringLiteral("There is no reading before the first meal of the period, so that its day has no \"Last "
                              "night\" value; ") +
               (strWhere_.isEmpty() ? QStringLiteral("add one from before that meal and choose the report again.")
                                    : QStringLiteral("set an earlier From date and choose Apply."));
    }

    /// The search for what a meal lacks goes back as far as there are readings, and leaves none for the night.
    QString incompleteMealHint() const
    {
        return QStringLiteral(
                   "The first meal of the period lacks a reading (before it, Meal + 2 or Meal + 3). Looking for "
                   "it took all earlier readings, so that none is left for \"Last night\"; ") +
               (strWhere_.isEmpty() ? QStringLiteral("add the missing reading and choose the report again.")
                                    : QStringLiteral("set an earlier From date and choose Apply."));
    }

    void addGroup(const MealGroup& group)
    {
        const auto level = [](double mmol) { return runtime::format(mmol, QStringLiteral("00.0")); };
        const auto rise = [](double mmol) { return runtime::format(mmol, QStringLiteral("#0.0")); };
        const QStringList columns = {runtime::format(groupTime_, QStringLiteral("dd mmm yyyy hh:mm")),
                                     level(group.base()),
                                     level(group.mealPlus2),
                                     level(group.mealPlus3),
                                     rise(group.mealPlus2 - group.base()),
                                     rise(group.mealPlus3 - group.base())};
        list_.addItem(columns.join(u'\t'));
    }

    data::Recordset& readings_;
    ReportList& list_;
    const QString& strWhere_;

    double thisMorning_ = 0;   ///< the last reading visited: after a group, its base
    runtime::Value groupTime_; ///< of the last base found; a group without one keeps it
    QString groupDay_;         ///< its day as shown, by which days are told apart
    QString lastDayShown_;
};

} // namespace

void buildDailyAnalysis(ReportState& state)
{
    state.ReportTitle = headingWith(QStringLiteral("Daily Blood Sugar Analysis"), state);

    data::Database database(state.strPath);
    data::Recordset readings = openReadings(database, state.strWhere);

    state.lstView.clear();
    SetListTabStops(state.lstView, {80, 115, 150, 185, 220});
    state.PrintTabs = {1000, 3000, 4000, 5000, 6000, 7000};

    state.lstView.addItem(QStringLiteral("Date / Time\tMeal\tMeal + 2\tMeal + 3\tDelta 2\tDelta 3"));
    DailyAnalysis(readings, state.lstView, state.strWhere).run();
}

} // namespace reports
