#include "readings/reading_entry.h"

#include "data/database.h"
#include "runtime/calendar.h"
#include "runtime/conversions.h"
#include "runtime/error_hints.h"

namespace readings {

namespace {

constexpr int kGettingUp = 1;
constexpr int kMeal = 2;
constexpr int kPreBed = 5;

} // namespace

const QList<ReadingType>& readingTypes()
{
    static const QList<ReadingType> types = {{kGettingUp, QStringLiteral("Getting Up")},
                                             {kMeal, QStringLiteral("Meal")},
                                             {3, QStringLiteral("Meal + 2")},
                                             {4, QStringLiteral("Meal + 3")},
                                             {kPreBed, QStringLiteral("Pre Bed")},
                                             {6, QStringLiteral("Calibration")},
                                             {7, QStringLiteral("Exercise")},
                                             {8, QStringLiteral("Other")}};
    return types;
}

int likelyReadingType(runtime::Date now)
{
    const int hour = runtime::partsOf(now).hour;
    if (hour < 9) {
        return kGettingUp;
    }
    return hour < 22 ? kMeal : kPreBed;
}

void saveReading(const QString& diaryPath, const ReadingEntry& entry)
{
    data::Database database(diaryPath);
    data::Recordset reading =
        database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = -1"));
    reading.addNew();
    const double level =
        runtime::withHintOnError(QStringLiteral("The blood sugar level is not a number. Nothing was stored."),
                                 [&] { return runtime::toDouble(entry.level); });
    const runtime::Date day =
        runtime::withHintOnError(QStringLiteral("The date is not one: type day, month and year. Nothing was stored."),
                                 [&] { return runtime::toDate(entry.date); });
    const runtime::Date timeOfDay =
        runtime::withHintOnError(QStringLiteral("The time is not one: type hours and minutes. Nothing was stored."),
                                 [&] { return runtime::toDate(entry.time); });
    reading.set(QStringLiteral("BloodSugerLevel"), level);
    reading.set(QStringLiteral("ReadingTime"), runtime::Date{day.days + timeOfDay.days});
    reading.set(QStringLiteral("ReadingType"), qint32{entry.type});
    reading.set(QStringLiteral("Comment"), entry.comment);
    reading.update();
}

} // namespace readings
