// Foods that the user adds to the food table.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace meals {

/// The columns of the food table that hold a nutrient, in the table's order: all but number, description, household
/// weights, refuse and the two flags.
[[nodiscard]] QStringList nutrientColumns(const QString& diaryPath);
/// The most characters that a description holds; 0 where there is no limit.
[[nodiscard]] int descriptionLength(const QString& diaryPath);

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

/// Adds the food with the number (`NDB_No`) below all in use, and returns that; -999999, which no food ever has, is
/// passed over. The food is stored durably on return. On an error nothing is stored: 13 for a text that is no number,
/// the hint naming its column; 3163 for a description longer than its column; 94 when there is no food to count down
/// from; 6 when no number is left.
qint32 SaveIngredient(const QString& diaryPath, const NewFood& food);

} // namespace meals
