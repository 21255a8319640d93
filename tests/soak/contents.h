// What a diary holds, as plain values: the model that the file is compared with.
#pragma once

#include <QString>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace data {
class Database;
}

namespace soak {

/// Minutes since 30 December 1899: no time of the program's is finer.
using Minute = qint64;

[[nodiscard]] double daysOf(Minute minute);
/// As the program shows it: "05/03/2002 08:15:00", at midnight without the time.
[[nodiscard]] QString textOf(Minute minute);
/// "05/03/2002"
[[nodiscard]] QString dayOf(Minute minute);
/// "08:15"
[[nodiscard]] QString timeOf(Minute minute);

struct Reading {
    double level = 0;
    Minute time = 0;
    qint32 type = 0;
    QString comment;
};

struct Meal {
    Minute time = 0;
    qint32 type = 0;
    qint32 dose = 0;
};

struct Portion {
    qint32 food = 0;
    double grams = 0;
};

struct Food {
    QString description;
    bool isRecipe = false;
    bool isIngredient = false;
    std::optional<double> carbohydrate;
    std::optional<double> energy;
};

/// By number.
struct Contents {
    std::map<qint32, Reading> readings;
    std::map<qint32, Meal> meals;
    std::map<qint32, std::vector<Portion>> portions; ///< of the meal of that number
    std::map<qint32, Food> foods;
};

/// One line for each record, in an order that does not depend on where the record is stored; figures to 15 digits.
using Lines = std::vector<std::string>;
[[nodiscard]] Lines linesOf(const Contents& contents);

/// What the program reads.
[[nodiscard]] Lines linesIn(data::Database& database);
/// What mdb-export reads; none where it is not installed. It knows no character beyond the first 65,536; the diary may
/// hold none of those, no tab and no line end.
[[nodiscard]] std::optional<Lines> exportedLines(const QString& diaryPath);

/// The lines that only one of the two has; empty when they are alike.
[[nodiscard]] std::string difference(const Lines& expected, const Lines& found);

} // namespace soak
