// A diary file whose food table has the columns that a test wants, read back by an independent program.
#pragma once

#include "jet/schema.h"

#include <QString>
#include <QTemporaryDir>

#include <string>
#include <vector>

class FoodDiary
{
public:
    /// The food table with these columns in this order, `NDB_No` its key, and a food for each number; all else is left
    /// open.
    FoodDiary(const std::vector<jet::ColumnSpec>& columns, const std::vector<int>& foods);

    [[nodiscard]] const QString& path() const { return path_; }
    /// As exportedTable() tells them.
    [[nodiscard]] std::vector<std::string> foods() const;
    /// Those whose number is not among the ones that the table was made with.
    [[nodiscard]] std::vector<std::string> addedFoods() const;

private:
    QTemporaryDir folder_;
    QString path_;
    std::size_t foodsAtFirst_;
};

/// NDB_No, Shrt_Desc of 20 characters, these nutrients, the household weights, refuse and flags.
[[nodiscard]] std::vector<jet::ColumnSpec> usualColumns(const std::vector<std::string>& nutrients);
/// What a food that a user adds has in the five columns before the flags.
inline const std::string kNoHouseholdWeights = "null | null | null | null | null";

[[nodiscard]] jet::ColumnSpec numberColumn(const std::string& name);
[[nodiscard]] jet::ColumnSpec keyColumn();
[[nodiscard]] jet::ColumnSpec textColumn(const std::string& name, std::uint16_t characters);
[[nodiscard]] jet::ColumnSpec flagColumn(const std::string& name);
