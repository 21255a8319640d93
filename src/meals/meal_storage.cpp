#include "meals/meal_storage.h"

#include "data/database.h"
#include "meals/meal_sheet.h"
#include "meals/meal_type.h"
#include "runtime/conversions.h"
#include "runtime/error_hints.h"
#include "runtime/format.h"

#include <algorithm>
#include <vector>

namespace meals {

namespace {

using runtime::RunTimeError;

/// The meal as a record that is not yet added.
data::Recordset newMeal(data::Database& database, const MealEntry& entry)
{
    data::Recordset meal = database.openRecordset(QStringLiteral("Select * from Meals where MealNo = -999999"));
    meal.addNew();
    const runtime::Date time = runtime::withHintOnError(QStringLiteral("The date or the time is not one."), [&] {
        return runtime::Date{runtime::toDate(entry.date).days + runtime::toDate(entry.time).days};
    });
    meal.set(QStringLiteral("MealTime"), time);
    meal.set(QStringLiteral("MealDescription"), qint32{entry.type.value_or(0)});
    runtime::withHintOnError(QStringLiteral("The insulin dose is not a number from -32768 to 32767."),
                             [&] { meal.set(QStringLiteral("Insulin Dosage"), entry.insulinDose); });
    return meal;
}

struct Portion {
    qint32 foodNumber = 0;
    double grams = 0;
};

std::vector<Portion> portionsOf(const MealSheet& sheet)
{
    std::vector<Portion> portions;
    for (int line = 1; line < static_cast<int>(sheet.lines().size()); ++line) {
        if (sheet.isFoodLine(line) && sheet.gramsAt(line) != 0) {
            portions.push_back({sheet.foodNumberAt(line), sheet.gramsAt(line)});
        }
    }
    return portions;
}

void addPortion(data::Recordset& content, qint32 mealNumber, const Portion& portion)
{
    content.addNew();
    content.set(QStringLiteral("NDB_No"), portion.foodNumber);
    content.set(QStringLiteral("Quantity"), portion.grams);
    content.set(QStringLiteral("MealID"), mealNumber);
    content.update();
}

StoredMeal mealIn(const data::Recordset& meals)
{
    StoredMeal meal;
    meal.number = runtime::toLong(meals.value(QStringLiteral("MealNo")));
    try {
        meal.time = runtime::toDate(meals.value(QStringLiteral("MTime")));
        meal.description = runtime::toText(meals.value(QStringLiteral("MDesc")));
        meal.insulinDose = runtime::toInteger(meals.value(QStringLiteral("IDose")));
    } catch (const RunTimeError& error) {
        throw error.withHint(
            QStringLiteral("The time or the insulin dose of meal number %1 is missing or out of range.")
                .arg(meal.number));
    }
    return meal;
}

} // namespace

QString textOf(Refusal refusal)
{
    switch (refusal) {
    case Refusal::NoType:
        return QStringLiteral("Must select meal type");
    case Refusal::DoseNotANumber:
        return QStringLiteral("Insulin dose must be a number");
    case Refusal::ZeroDose:
        return QStringLiteral("Zero Insulin only valid with Snacks");
    case Refusal::NoFood:
        break;
    }
    return QStringLiteral("Meal must contain food");
}

std::optional<Refusal> refusalOf(const MealEntry& entry, const MealSheet& sheet)
{
    if (!entry.type) {
        return Refusal::NoType;
    }
    if (!runtime::isNumeric(entry.insulinDose)) {
        return Refusal::DoseNotANumber;
    }
    if (runtime::toDouble(entry.insulinDose) == 0 && entry.type != kSnack) {
        return Refusal::ZeroDose;
    }
    if (!sheet.hasFood()) {
        return Refusal::NoFood;
    }
    return std::nullopt;
}

qint32 saveMeal(const QString& diaryPath, const MealEntry& entry, const MealSheet& sheet)
{
    try {
        data::Database database(diaryPath);
        data::Database::Batch batch(database);
        data::Recordset meal = newMeal(database, entry);
        const std::vector<Portion> portions = portionsOf(sheet);

        if (entry.replaces != 0) {
            const QString number = QString::number(entry.replaces);
            database.execute(QStringLiteral("Delete * from Meals where MealNo = ") + number);
            database.execute(QStringLiteral("Delete * from MealContent where MealID =") + number);
        }

        meal.update();
        meal.moveFirst();
        const qint32 mealNumber = runtime::toLong(meal.value(QStringLiteral("MealNo")));

        data::Recordset content =
            database.openRecordset(QStringLiteral("Select * from MealContent where MealID = -999999"));
        for (const Portion& portion : portions) {
            addPortion(content, mealNumber, portion);
        }
        batch.commit();
        return mealNumber;
    } catch (const RunTimeError& error) {
        throw error.withAddedHint(QStringLiteral("Nothing was stored."));
    }
}

QString StoredMeal::line() const
{
    return runtime::format(time, QStringLiteral("dddd dd mmmm yyyy")) + u'\t' + description;
}

QList<StoredMeal> storedMeals(const QString& diaryPath)
{
    data::Database database(diaryPath);
    data::Recordset meals = database.openRecordset(QStringLiteral("Select * from ExistingMeals order by MTime"));
    if (meals.eof()) {
        throw RunTimeError(runtime::ErrorNumber::NoCurrentRecord)
            .withHint(QStringLiteral("There is no stored meal yet."));
    }
    QList<StoredMeal> newestFirst;
    for (meals.moveLast(); !meals.bof(); meals.movePrevious()) {
        newestFirst.append(mealIn(meals));
    }
    return newestFirst;
}

MealEntry entryOf(const StoredMeal& meal)
{
    MealEntry entry;
    entry.date = runtime::format(meal.time, QStringLiteral("dd/mm/yyyy"));
    entry.time = runtime::format(meal.time, QStringLiteral("hh:mm"));
    entry.insulinDose = runtime::toText(qint32{meal.insulinDose});
    entry.replaces = meal.number;
    // Breakfast is left out, so that the user chooses it anew.
    const QList<MealType>& types = mealTypes();
    const auto type = std::find_if(types.begin() + 1, types.end(),
                                   [&](const MealType& candidate) { return candidate.name == meal.description; });
    if (type != types.end()) {
        entry.type = type->code;
    }
    return entry;
}

void fetchFoods(MealSheet& sheet, const QString& diaryPath, qint32 mealNumber)
{
    sheet.clear();
    data::Database database(diaryPath);
    data::Recordset content = database.openRecordset(QStringLiteral("Select * from MealContent where MealID = ") +
                                                     QString::number(mealNumber));
    if (content.eof()) {
        throw RunTimeError(runtime::ErrorNumber::NoCurrentRecord)
            .withHint(QStringLiteral("No foods are stored with this meal."));
    }
    try {
        for (; !content.eof(); content.moveNext()) {
            AddIngredient(sheet, diaryPath, runtime::toText(content.value(QStringLiteral("Quantity"))),
                          runtime::toLong(content.value(QStringLiteral("NDB_No"))));
        }
    } catch (const RunTimeError&) {
        sheet.clear();
        throw;
    }
}

} // namespace meals
