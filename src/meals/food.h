// The food table as the meal builder uses it.
#pragma once

#include <QList>
#include <QString>

namespace meals {

struct Nutrients {
    double carbohydrate = 0; ///< g
    double fat = 0;          ///< g
    double protein = 0;      ///< g
    double energy = 0;       ///< kCal
    double cholesterol = 0;  ///< mg

    Nutrients& operator+=(const Nutrients& other);
    [[nodiscard]] Nutrients times(double factor) const;
};

struct Food {
    qint32 number = 0;    ///< `NDB_No`
    QString description;  ///< as shown
    Nutrients in100Grams; ///< what the table leaves open counts as 0
};

/// 3021 when there is no food of that number.
[[nodiscard]] Food foodNumbered(const QString& diaryPath, qint32 number);

struct FoundFood {
    QString description; ///< as shown
    qint32 number = 0;
};

/// The foods with the text anywhere in their description, in the reverse of the table's order. The text goes into the
/// search as typed: * ? # [ ] are its wildcards (93 for a list that is not closed), and an apostrophe is a syntax error
/// (3075).
[[nodiscard]] QList<FoundFood> searchFoods(const QString& diaryPath, const QString& text);

} // namespace meals
