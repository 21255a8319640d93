// The food table as a CSV file with a header line (share/foods/README.md describes the supplied one).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace data {

struct Food {
    int number = 0;                               ///< NDB_No
    std::u16string description;                   ///< Shrt_Desc
    std::vector<std::optional<double>> nutrients; ///< per 100 g, one for each of FoodTable::nutrients; none = not known
    std::optional<double> measureGrams1;          ///< GmWt_1
    std::optional<std::u16string> measure1;       ///< GmWt_Desc1
    std::optional<double> measureGrams2;          ///< GmWt_2
    std::optional<std::u16string> measure2;       ///< GmWt_Desc2
    std::optional<double> refusePercent;          ///< Refuse_Pct
};

struct FoodTable {
    /// The nutrient columns: every column that is none of those which Food names, in the file's order.
    std::vector<std::string> nutrients;
    std::vector<Food> foods;

    /// The position of that nutrient, or none.
    [[nodiscard]] std::optional<std::size_t> nutrient(const std::string& name) const;
};

/// The nutrients that the diary's queries read; a food table has them even when it holds no food.
[[nodiscard]] const std::vector<std::string>& requiredNutrients();

/// Reads UTF-8 text. Fields may be quoted, a quote inside doubled; an empty field is a value that is not known. Throws
/// runtime::RunTimeError 13, naming the line, for a figure that is none, a missing column, a line of another length or
/// a number that occurs twice.
[[nodiscard]] FoodTable parseFoods(const std::string& csv);

/// Reads the file; 53 when there is none, 3043 when it cannot be read.
[[nodiscard]] FoodTable readFoods(const std::string& path);

} // namespace data
