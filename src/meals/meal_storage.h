// Meals in the diary: storing the one composed, and fetching old ones.
#pragma once

#include "runtime/value.h"

#include <QList>
#include <QString>

#include <optional>

namespace meals {

class MealSheet;

/// What the meal builder's controls hold beside the sheet; texts as typed.
struct MealEntry {
    QString date;
    QString time;
    std::optional<int> type; ///< code; none is chosen
    QString insulinDose;
    qint32 replaces = 0; ///< `MealNo` of the meal that this one takes the place of; 0: none
};

/// Why a meal cannot be saved.
enum class Refusal { NoType, DoseNotANumber, ZeroDose, NoFood };
[[nodiscard]] QString textOf(Refusal refusal);
/// The first of them that holds; none: the meal may be saved.
[[nodiscard]] std::optional<Refusal> refusalOf(const MealEntry& entry, const MealSheet& sheet);

/// Deletes the meal that is replaced, then its foods, then adds the meal and a record for each food line that is not
/// 0 g. All of that is one change, durable on return: an error leaves the diary as it was, with the meal that was to be
/// replaced. Returns the new `MealNo`. Errors are 13 where a text is no date or number, 6 for a dose beyond 16 bits,
/// and those of the diary. A dose is rounded half to even.
qint32 saveMeal(const QString& diaryPath, const MealEntry& entry, const MealSheet& sheet);

struct StoredMeal {
    qint32 number = 0; ///< `MealNo`
    runtime::Date time;
    QString description; ///< its type's name
    qint16 insulinDose = 0;

    /// As the selection shows it: "Tuesday 05 March 2024", a tab, the description.
    [[nodiscard]] QString line() const;
};

/// The newest first. 3021 when there is none.
[[nodiscard]] QList<StoredMeal> storedMeals(const QString& diaryPath);

/// What the builder's fields become with a stored meal, which the next saving replaces. A breakfast comes back without
/// its type, and so does a meal of no known type.
[[nodiscard]] MealEntry entryOf(const StoredMeal& meal);

/// Clears the sheet and fills it with the foods of a stored meal. 3021 for a meal without foods, and for one with a
/// food that is no longer in the table. After an error the sheet is empty: a part of a meal must not pass for the
/// whole.
void fetchFoods(MealSheet& sheet, const QString& diaryPath, qint32 mealNumber);

} // namespace meals
