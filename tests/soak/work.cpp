#include "soak/work.h"

#include "data/database.h"
#include "meals/meal_sheet.h"
#include "meals/meal_storage.h"
#include "readings/meter_import.h"
#include "readings/reading_entry.h"
#include "runtime/conversions.h"
#include "soak/dice.h"

#include <QFile>
#include <QFileInfo>

#include <stdexcept>

namespace soak {

namespace {

constexpr Minute kFirst = 46000LL * 24 * 60;
constexpr qint32 kKeptReadings = 200;
constexpr double kCorrectedLevel = 33.3;

Reading anyReading(Dice& dice)
{
    return {dice.between(10, 250) / 10.0, kFirst + dice.below(60 * 24 * 60), 0, {}};
}

/// None where the table is empty.
qint32 largest(data::Database& database, const char* column, const char* table)
{
    const data::Recordset found = database.openRecordset(
        QStringLiteral("Select Max(%1) from %2").arg(QString::fromLatin1(column), QString::fromLatin1(table)));
    const runtime::Value value = found.value(0);
    return runtime::isNull(value) ? 0 : runtime::toLong(value);
}

void importReadings(const QString& diaryPath, const std::vector<Reading>& readings)
{
    const QString meterPath = QFileInfo(diaryPath).path() + QStringLiteral("/meter.csv");
    QFile file(meterPath);
    if (!file.open(QIODevice::WriteOnly))
        throw std::runtime_error("the meter's file cannot be written");
    for (const Reading& reading : readings) {
        const QString line = u' ' + dayOf(reading.time) + QStringLiteral(", ") + timeOf(reading.time) +
                             QStringLiteral(", ") + QString::number(reading.level, 'f', 1) + u'\n';
        file.write(line.toUtf8());
    }
    file.close();
    static_cast<void>(readings::ImportReadings({diaryPath, meterPath, QStringLiteral("01/01/2000")}));
}

void correctLatestReading(const QString& diaryPath)
{
    data::Database database(diaryPath);
    data::Recordset reading =
        database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = %1")
                                   .arg(largest(database, "BloodSugerNo", "BloodSugarLevels")));
    if (reading.eof())
        return;
    reading.edit();
    reading.set(QStringLiteral("BloodSugerLevel"), kCorrectedLevel);
    reading.update();
}

void deleteOldReadings(const QString& diaryPath)
{
    data::Database database(diaryPath);
    const qint32 latest = largest(database, "BloodSugerNo", "BloodSugarLevels");
    database.execute(
        QStringLiteral("Delete * from BloodSugarLevels where BloodSugerNo <= %1").arg(latest - kKeptReadings));
}

void saveMeal(const QString& diaryPath, const Work& work)
{
    meals::MealSheet sheet;
    for (const Portion& portion : work.portions)
        meals::AddIngredient(sheet, diaryPath, QString::number(portion.grams, 'g', 15), portion.food);
    meals::MealEntry entry{dayOf(work.meal.time), timeOf(work.meal.time), work.meal.type,
                           QString::number(work.meal.dose), 0};
    if (work.kind == Work::Kind::ReplaceLatestMeal) {
        data::Database database(diaryPath);
        entry.replaces = largest(database, "MealNo", "Meals");
    }
    static_cast<void>(meals::saveMeal(diaryPath, entry, sheet));
}

} // namespace

std::string Work::describe() const
{
    switch (kind) {
    case Kind::TypeReading:
        return "type a reading";
    case Kind::Import:
        return "import " + std::to_string(readings.size()) + " readings";
    case Kind::CorrectLatestReading:
        return "correct the latest reading";
    case Kind::DeleteOldReadings:
        return "delete old readings";
    case Kind::SaveMeal:
        return "save a meal of " + std::to_string(portions.size()) + " foods";
    case Kind::ReplaceLatestMeal:
        return "replace the latest meal";
    }
    return {};
}

Work workNumbered(std::uint64_t seed, int number)
{
    Dice dice(seed * 1'000'003 + static_cast<std::uint64_t>(number));
    static const std::vector<Work::Kind> kinds{
        Work::Kind::TypeReading,       Work::Kind::Import,   Work::Kind::CorrectLatestReading,
        Work::Kind::DeleteOldReadings, Work::Kind::SaveMeal, Work::Kind::ReplaceLatestMeal};
    Work work;
    work.kind = dice.oneOf(kinds);
    switch (work.kind) {
    case Work::Kind::TypeReading:
        work.readings = {anyReading(dice)};
        work.readings.front().type = dice.between(1, 8);
        break;
    case Work::Kind::Import:
        // The large ones write many pages at once.
        for (int count = dice.oneIn(2) ? dice.between(1, 60) : dice.between(500, 1000); count > 0; --count)
            work.readings.push_back(anyReading(dice));
        break;
    case Work::Kind::SaveMeal:
    case Work::Kind::ReplaceLatestMeal:
        work.meal = {kFirst + dice.below(60 * 24 * 60), dice.between(1, 4), dice.between(1, 20)};
        for (int count = dice.between(1, 6); count > 0; --count)
            work.portions.push_back({kWorkFood, dice.between(1, 3000) / 10.0});
        break;
    case Work::Kind::CorrectLatestReading:
    case Work::Kind::DeleteOldReadings:
        break;
    }
    return work;
}

void doWork(const QString& diaryPath, const Work& work)
{
    switch (work.kind) {
    case Work::Kind::TypeReading: {
        const Reading& reading = work.readings.front();
        readings::saveReading(diaryPath, {QString::number(reading.level, 'f', 1), dayOf(reading.time),
                                          timeOf(reading.time), reading.type, reading.comment});
        break;
    }
    case Work::Kind::Import:
        importReadings(diaryPath, work.readings);
        break;
    case Work::Kind::CorrectLatestReading:
        correctLatestReading(diaryPath);
        break;
    case Work::Kind::DeleteOldReadings:
        deleteOldReadings(diaryPath);
        break;
    case Work::Kind::SaveMeal:
    case Work::Kind::ReplaceLatestMeal:
        saveMeal(diaryPath, work);
        break;
    }
}

std::vector<DiaryState> statesDuring(const Work& work, const DiaryState& before)
{
    std::vector<DiaryState> states{before};
    DiaryState now = before;
    auto& readings = now.contents.readings;
    switch (work.kind) {
    case Work::Kind::TypeReading:
    case Work::Kind::Import: // all at once
        for (const Reading& reading : work.readings)
            readings.emplace(++now.lastReading, reading);
        states.push_back(now);
        break;
    case Work::Kind::CorrectLatestReading:
        if (!readings.empty())
            readings.rbegin()->second.level = kCorrectedLevel;
        states.push_back(now);
        break;
    case Work::Kind::DeleteOldReadings:
        if (!readings.empty()) {
            const qint32 last = readings.rbegin()->first - kKeptReadings;
            readings.erase(readings.begin(), readings.upper_bound(last));
        }
        states.push_back(now);
        break;
    case Work::Kind::ReplaceLatestMeal:
        if (!now.contents.meals.empty()) {
            const qint32 old = now.contents.meals.rbegin()->first;
            now.contents.meals.erase(old);
            states.push_back(now);
            now.contents.portions.erase(old);
            states.push_back(now);
        }
        [[fallthrough]];
    case Work::Kind::SaveMeal:
        now.contents.meals.emplace(++now.lastMeal, work.meal);
        states.push_back(now);
        for (const Portion& portion : work.portions) {
            now.contents.portions[now.lastMeal].push_back(portion);
            states.push_back(now);
        }
        break;
    }
    return states;
}

} // namespace soak
