// The meal being composed: the lines of its list, and the nutrients behind them.
#pragma once

#include "meals/food.h"
#include "reports/report_list.h"

#include <QString>

#include <vector>

namespace meals {

/// The list always has a heading, an empty line, the foods in the order added, and closing lines: a single "Total" line
/// before the first food, else an empty line, the totals in grams, and the totals in kCal with their shares. A food
/// line begins with its grams ("#0.0"), by which it is told from the others; that text is what counts as its quantity.
class MealSheet
{
public:
    MealSheet();
    // Not copied: who shows the lines listens to those of one sheet.
    MealSheet(const MealSheet&) = delete;
    MealSheet& operator=(const MealSheet&) = delete;

    [[nodiscard]] const reports::ReportList& lines() const { return lines_; }
    [[nodiscard]] reports::ReportList& lines() { return lines_; } ///< for who shows them
    /// As at the beginning.
    void clear();

    // `factor` is grams / 100. 6 overflow for a quantity that is too large; nothing changes then.
    void add(const Food& food, double factor);
    /// Rebuilds a food line with another quantity; 9 for other lines.
    void change(int line, const Food& food, double factor);

    [[nodiscard]] bool hasFood() const { return !rows_.empty(); }
    [[nodiscard]] bool isFoodLine(int line) const; ///< of any number: -1 is none
    /// Whether the first column of a line is a number; 9 for an empty line, which has no column.
    [[nodiscard]] static bool beginsWithNumber(const QString& line);
    [[nodiscard]] double gramsAt(int line) const;      ///< of a food line, as it shows; 9 for other lines
    [[nodiscard]] qint32 foodNumberAt(int line) const; ///< 0 for other lines
    /// Of all foods, in grams.
    [[nodiscard]] double totalCarbohydrate() const;

private:
    struct Row {
        qint32 foodNumber = 0;
        Nutrients portion;
    };

    /// The place of a food line's row; 9 for other lines.
    [[nodiscard]] std::size_t rowOf(int line) const;
    [[nodiscard]] static Nutrients totalOf(const std::vector<Row>& rows);

    reports::ReportList lines_;
    std::vector<Row> rows_; ///< one for each food line
};

// An error leaves the sheet as it was.

/// Reads the food (3021 when there is none of that number) and adds so many grams of it to the sheet: text as typed, 13
/// for no number.
void AddIngredient(MealSheet& sheet, const QString& diaryPath, const QString& strQty, qint32 lngNDBNo);
/// Gives the food line `intSel` another quantity (`dblFactor` is grams / 100) and what the food table now says of its
/// food.
void UpdateMenuListQty(MealSheet& sheet, const QString& diaryPath, double dblFactor, int intSel);

} // namespace meals
