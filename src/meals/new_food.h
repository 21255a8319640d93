// Foods that the user adds to the food table.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace meals {

/// The columns of the food table that hold a nutrient, in the table's order: all but number, description, household
/// weights, refuse and the two flags.
[[nodiscard]] QStringList nutrientColumns(const QString& diaryPath);

struct NewFood {
    QString description;
    bool isRecipe = false;
    bool isIngredient = false;
    struct Value {
        QString column;
        QString text; ///< as typed; an empty one counts as 0
    };
    QList<Value> values;
};

/// Adds the food below all numbers in use and returns its number (`NDB_No`). 13 for a text that is no number, the hint
/// naming its column; nothing is stored then.
qint32 SaveIngredient(const QString& diaryPath, const NewFood& food);

} // namespace meals
