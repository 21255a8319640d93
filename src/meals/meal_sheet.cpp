#include "meals/meal_sheet.h"

#include "reports/nutrient_totals.h"
#include "runtime/conversions.h"
#include "runtime/error_hints.h"
#include "runtime/format.h"

#include <QStringList>

#include <cmath>

namespace meals {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

constexpr int kFirstFoodLine = 2; // below the heading and an empty line
constexpr int kClosingLines = 3;  // below the last food

QString oneDecimal(double number)
{
    return runtime::format(number, QStringLiteral("#0.0"));
}

/// The part that a nutrient's energy has in the total.
QString share(double energy, double totalEnergy)
{
    return runtime::format(totalEnergy == 0 ? 0 : energy / totalEnergy, QStringLiteral("#0%"));
}

double gramsIn(const QString& typed)
{
    return runtime::withHintOnError(QStringLiteral("The quantity \"%1\" is not a number of grams.").arg(typed),
                                    [&] { return runtime::toDouble(typed); });
}

QString firstColumn(const QString& line)
{
    return line.section(u'\t', 0, 0);
}

QString foodLine(const Food& food, double factor, const Nutrients& portion)
{
    return QStringList{oneDecimal(factor * 100), food.description, oneDecimal(portion.carbohydrate),
                       oneDecimal(portion.fat), oneDecimal(portion.protein)}
        .join(u'\t');
}

QString gramsLine(const Nutrients& total)
{
    return QStringList{QStringLiteral("Total grams"), oneDecimal(total.carbohydrate), oneDecimal(total.fat),
                       oneDecimal(total.protein)}
        .join(u'\t');
}

QString energyLine(const Nutrients& total)
{
    const reports::EnergySplit energy(
        {.carbohydrate = total.carbohydrate, .protein = total.protein, .fat = total.fat, .energy = total.energy});
    return QStringList{QStringLiteral("Total kCal ") + oneDecimal(total.energy) + QStringLiteral(" Cholestrol - ") +
                           oneDecimal(total.cholesterol),
                       share(energy.carbohydrate, total.energy), share(energy.fat, total.energy),
                       share(energy.protein, total.energy)}
        .join(u'\t');
}

bool isFinite(const Nutrients& nutrients)
{
    return std::isfinite(nutrients.carbohydrate) && std::isfinite(nutrients.fat) && std::isfinite(nutrients.protein) &&
           std::isfinite(nutrients.energy) && std::isfinite(nutrients.cholesterol);
}

} // namespace

MealSheet::MealSheet()
{
    clear();
}

void MealSheet::clear()
{
    rows_.clear();
    lines_.clear();
    lines_.addItem(QStringLiteral("Qty gms\tFood Description\tCarb\tFat\tProtein"));
    lines_.addItem(QString());
    lines_.addItem(QStringLiteral("Total\t\t00.0\t00.0\t00.0"));
}

void MealSheet::add(const Food& food, double factor)
{
    const Nutrients portion = food.in100Grams.times(factor);
    std::vector<Row> rows = rows_;
    rows.push_back({food.number, portion});
    const Nutrients total = totalOf(rows);

    const int closingLines = hasFood() ? kClosingLines : 1;
    rows_ = std::move(rows);
    lines_.removeLast(closingLines);
    lines_.addItem(foodLine(food, factor, portion));
    lines_.addItem(QString());
    lines_.addItem(gramsLine(total));
    lines_.addItem(energyLine(total));
}

void MealSheet::change(int line, const Food& food, double factor)
{
    const Nutrients portion = food.in100Grams.times(factor);
    std::vector<Row> rows = rows_;
    rows[rowOf(line)] = {food.number, portion};
    const Nutrients total = totalOf(rows);

    rows_ = std::move(rows);
    lines_.setText(line, foodLine(food, factor, portion));
    lines_.setText(lines_.size() - 2, gramsLine(total));
    lines_.setText(lines_.size() - 1, energyLine(total));
}

bool MealSheet::isFoodLine(int line) const
{
    return line >= kFirstFoodLine && line < kFirstFoodLine + static_cast<int>(rows_.size());
}

bool MealSheet::beginsWithNumber(const QString& line)
{
    if (line.isEmpty()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange)
            .withHint(QStringLiteral("An empty line of the meal is selected: select a food's line to change its "
                                     "quantity."));
    }
    return runtime::isNumeric(firstColumn(line));
}

double MealSheet::gramsAt(int line) const
{
    static_cast<void>(rowOf(line));
    return runtime::toDouble(firstColumn(lines_.at(line).text));
}

qint32 MealSheet::foodNumberAt(int line) const
{
    return isFoodLine(line) ? rows_[rowOf(line)].foodNumber : 0;
}

double MealSheet::totalCarbohydrate() const
{
    return totalOf(rows_).carbohydrate;
}

std::size_t MealSheet::rowOf(int line) const
{
    if (!isFoodLine(line)) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange);
    }
    return static_cast<std::size_t>(line - kFirstFoodLine);
}

Nutrients MealSheet::totalOf(const std::vector<Row>& rows)
{
    Nutrients total;
    for (const Row& row : rows) {
        total += row.portion;
    }
    if (!isFinite(total)) {
        throw RunTimeError(ErrorNumber::Overflow).withHint(QStringLiteral("The quantity is too large."));
    }
    return total;
}

void AddIngredient(MealSheet& sheet, const QString& diaryPath, const QString& strQty, qint32 lngNDBNo)
{
    const Food food = foodNumbered(diaryPath, lngNDBNo);
    sheet.add(food, gramsIn(strQty) / 100);
}

void UpdateMenuListQty(MealSheet& sheet, const QString& diaryPath, double dblFactor, int intSel)
{
    sheet.change(intSel, foodNumbered(diaryPath, sheet.foodNumberAt(intSel)), dblFactor);
}

} // namespace meals
