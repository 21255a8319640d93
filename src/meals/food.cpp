#include "meals/food.h"

#include "data/database.h"
#include "reports/shown_description.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

namespace meals {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

double nutrient(const data::Recordset& food, const QString& column)
{
    const runtime::Value value = food.value(column);
    return runtime::isNull(value) ? 0 : runtime::toDouble(value);
}

QString descriptionOf(const data::Recordset& food)
{
    return reports::shownDescription(runtime::toText(food.value(QStringLiteral("Shrt_Desc"))));
}

qint32 numberOf(const data::Recordset& food)
{
    return runtime::toLong(food.value(QStringLiteral("NDB_No")));
}

/// What the user can do about a search text that the search cannot take.
RunTimeError searchFailed(const RunTimeError& error, const QString& text)
{
    const bool isMisread = error.code() == ErrorNumber::QuerySyntax || error.code() == ErrorNumber::TooFewParameters;
    if (isMisread && text.contains(u'\'')) {
        return error.withHint(
            QStringLiteral("An apostrophe ends the text to search for: type two of them in its place, "
                           "or a ?."));
    }
    if (error.code() == ErrorNumber::InvalidPattern) {
        return error.withHint(
            QStringLiteral("A [ begins a list of characters such as [ab] or [a-f], which a ] ends: type "
                           "[[] to search for the bracket itself."));
    }
    return error;
}

QList<FoundFood> lastToFirst(data::Recordset& foods)
{
    QList<FoundFood> found;
    if (foods.eof()) {
        return found;
    }
    for (foods.moveLast(); !foods.bof(); foods.movePrevious()) {
        found.append({descriptionOf(foods), numberOf(foods)});
    }
    return found;
}

} // namespace

Nutrients& Nutrients::operator+=(const Nutrients& other)
{
    carbohydrate += other.carbohydrate;
    fat += other.fat;
    protein += other.protein;
    energy += other.energy;
    cholesterol += other.cholesterol;
    return *this;
}

Nutrients Nutrients::times(double factor) const
{
    return {carbohydrate * factor, fat * factor, protein * factor, energy * factor, cholesterol * factor};
}

Food foodNumbered(const QString& diaryPath, qint32 number)
{
    data::Database database(diaryPath);
    data::Recordset row = database.openRecordset(
        QStringLiteral("Select * from NutritionalInformation where NDB_No = ") + QString::number(number));
    if (row.eof()) {
        throw RunTimeError(ErrorNumber::NoCurrentRecord)
            .withHint(QStringLiteral("The food table has no food of the number %1.").arg(number));
    }
    row.moveFirst();
    Food food;
    food.number = numberOf(row);
    food.description = descriptionOf(row);
    food.in100Grams.carbohydrate = nutrient(row, QStringLiteral("Carbohydrt"));
    food.in100Grams.fat = nutrient(row, QStringLiteral("Tot_Lipid"));
    food.in100Grams.protein = nutrient(row, QStringLiteral("Protein"));
    food.in100Grams.energy = nutrient(row, QStringLiteral("Energ_Kcal"));
    food.in100Grams.cholesterol = nutrient(row, QStringLiteral("Cholestrl"));
    return food;
}

QList<FoundFood> searchFoods(const QString& diaryPath, const QString& text)
{
    data::Database database(diaryPath);
    try {
        const data::Database::Reading reading(database); // thousands of records are read
        data::Recordset foods =
            database.openRecordset(QStringLiteral("Select * from NutritionalInformation where Shrt_Desc like '*") +
                                   text + QStringLiteral("*'"));
        return lastToFirst(foods);
    } catch (const RunTimeError& error) {
        throw searchFailed(error, text);
    }
}

} // namespace meals
