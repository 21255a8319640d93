#include "meals/new_food.h"

#include "data/database.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <algorithm>
#include <array>
#include <limits>

namespace meals {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

/// No food has this number: a search for it yields the table's columns and no row.
constexpr qint32 kNoFood = -999999;

/// Columns that hold something else than a nutrient.
constexpr std::array kFixedColumns{u"Shrt_Desc",  u"NDB_No",     u"GmWt_1", u"GmWt_2",    u"GmWt_Desc1",
                                   u"GmWt_Desc2", u"Refuse_Pct", u"Recipe", u"Ingredient"};

bool isFixed(const QString& column)
{
    return std::any_of(kFixedColumns.begin(), kFixedColumns.end(),
                       [&](const char16_t* fixed) { return QStringView(fixed) == column; });
}

data::Recordset openWithoutRows(data::Database& database)
{
    return database.openRecordset(QStringLiteral("Select * from NutritionalInformation where NDB_No = ") +
                                  QString::number(kNoFood));
}

qint32 smallestNumber(data::Database& database)
{
    data::Recordset minimum = database.openRecordset(QStringLiteral("Min(NDB)"));
    minimum.moveFirst();
    const runtime::Value number = minimum.value(0);
    if (runtime::isNull(number)) {
        throw RunTimeError(ErrorNumber::InvalidUseOfNull)
            .withHint(QStringLiteral("The diary has no foods yet, and a new food's number is counted down from theirs. "
                                     "Nothing was stored."));
    }
    return runtime::toLong(number);
}

qint32 nextNumber(data::Database& database)
{
    const qint32 smallest = smallestNumber(database);
    if (smallest == std::numeric_limits<qint32>::min()) {
        throw RunTimeError(ErrorNumber::Overflow)
            .withHint(QStringLiteral("No number is left for another food. Nothing was stored."));
    }
    const qint32 next = smallest - 1;
    return next == kNoFood ? next - 1 : next;
}

/// A column that is no nutrient. Weights, measures and refuse stay unset.
void setFixed(data::Recordset& row, const QString& column, const NewFood& food, qint32 number)
{
    if (column == u"Shrt_Desc") {
        row.set(column, food.description);
    } else if (column == u"NDB_No") {
        row.set(column, number);
    } else if (column == u"Recipe") {
        // As numbers, not as truth values: a flag kept in a number column is 1, and "true" would be -1 there.
        row.set(column, qint32{food.isRecipe});
    } else if (column == u"Ingredient") {
        row.set(column, qint32{food.isIngredient});
    }
}

void setNutrient(data::Recordset& row, const NewFood::Value& value)
{
    try {
        row.set(value.column, value.text.isEmpty() ? 0.0 : runtime::toDouble(value.text));
    } catch (const RunTimeError& error) {
        if (error.code() == ErrorNumber::ItemNotFound) {
            throw;
        }
        throw error.withHint(
            QStringLiteral("'%1' takes no such value: type a number. Nothing was stored.").arg(value.column));
    }
}

} // namespace

QStringList nutrientColumns(const QString& diaryPath)
{
    data::Database database(diaryPath);
    const data::Recordset foods = openWithoutRows(database);
    QStringList nutrients;
    for (int position = 0; position < foods.fieldCount(); ++position) {
        if (const QString& column = foods.field(position).name; !isFixed(column)) {
            nutrients.append(column);
        }
    }
    return nutrients;
}

int descriptionLength(const QString& diaryPath)
{
    data::Database database(diaryPath);
    return openWithoutRows(database).field(QStringLiteral("Shrt_Desc")).size;
}

qint32 SaveIngredient(const QString& diaryPath, const NewFood& food)
{
    data::Database database(diaryPath);
    const qint32 lngNDBNo = nextNumber(database);
    data::Recordset row = openWithoutRows(database);
    row.addNew();
    for (int position = 0; position < row.fieldCount(); ++position) {
        setFixed(row, row.field(position).name, food, lngNDBNo);
    }
    for (const NewFood::Value& value : food.values) {
        setNutrient(row, value);
    }
    row.update();
    return lngNDBNo;
}

} // namespace meals
