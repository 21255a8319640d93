#include "reports/diary_hints.h"

#include "runtime/format.h"

namespace reports {
namespace {

QString shown(runtime::Date time)
{
    return runtime::format(time, QStringLiteral("dd mmm yyyy hh:mm"));
}

} // namespace

QString noLaterReadingHint(runtime::Date firstMeal, qsizetype readings, const QString& strWhere)
{
    QString what;
    if (readings == 0) {
        what =
            QStringLiteral("The first meal is at %1, and there is no blood sugar reading from the day before it on; ");
    } else if (readings == 1) {
        what = QStringLiteral("The first meal is at %1, and there is only one blood sugar reading from the day before "
                              "it on, where a diary takes one before the meal and one after it; ");
    } else {
        what = QStringLiteral("There is no blood sugar reading later than the first meal, which is at %1; ");
    }
    const QString wayOut =
        strWhere.isEmpty()
            ? QStringLiteral("add one from after that meal and choose the report again.")
            : QStringLiteral("add one from after that meal, or set an earlier From date and choose Apply, so that the "
                             "period begins with a meal that a reading follows.");
    return what.arg(shown(firstMeal)) + wayOut;
}

QString noLevelHint(runtime::Date reading)
{
    return QStringLiteral("The blood sugar reading of %1 has no value; enter it with Edit, Blood Sugar.")
        .arg(shown(reading));
}

QString noMealTimeHint()
{
    return QStringLiteral("A meal has no time; enter it with Edit, Meal Time.");
}

QString noDoseHint(runtime::Date meal)
{
    return QStringLiteral("The meal at %1 has no insulin dose, not even 0, and the meal builder cannot fetch it "
                          "to add one; set dates that leave the meal out.")
        .arg(shown(meal));
}

QString noQuantityHint(runtime::Date meal)
{
    return QStringLiteral("A food of the meal at %1 has no quantity, and the meal builder cannot fetch the "
                          "meal to add one; set dates that leave it out.")
        .arg(shown(meal));
}

QString noEnergyHint(runtime::Date meal)
{
    return QStringLiteral("The foods of the meal at %1 have no carbohydrate, fat or protein in the food table, so that "
                          "its shares of energy cannot be computed; set dates that leave it out, or choose Insulin "
                          "Diary, which shows no shares.")
        .arg(shown(meal));
}

QString noEnergyOfDayHint(runtime::Date lastMeal)
{
    return QStringLiteral("The meals of the day that ends with the one at %1 add up to no energy, so that its shares "
                          "cannot be computed; set dates that leave the day out.")
        .arg(shown(lastMeal));
}

} // namespace reports
