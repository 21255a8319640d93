#include "meals/food_diary.h"

#include "data/new_diary/diary_schema.h"
#include "jet/database.h"
#include "meals/exported_table.h"

#include <gtest/gtest.h>

#include <algorithm>

using jet::ColumnType;

namespace {

constexpr const char* kFoods = "NutritionalInformation";

void fill(jet::Table& table, const std::vector<int>& numbers)
{
    const std::vector<const jet::Column*> columns = table.definition().displayOrder();
    const auto key = std::find_if(columns.begin(), columns.end(),
                                  [](const jet::Column* column) { return column->name == "NDB_No"; });
    for (const int number : numbers) {
        const jet::ColumnValue value{(*key)->number, std::int32_t{number}};
        table.insert({&value, 1});
    }
}

} // namespace

FoodDiary::FoodDiary(const std::vector<jet::ColumnSpec>& columns, const std::vector<int>& foods)
    : path_(folder_.filePath(QStringLiteral("Nutrition.mdb"))), foodsAtFirst_(foods.size())
{
    const auto file = jet::Database::create(jet::posixFileSystem(), path_.toStdString(), jet::DateTime{46000});
    jet::IndexSpec key;
    key.name = "PrimaryKey";
    key.keys = {{"NDB_No"}};
    key.primaryKey = true;
    file->createTable({kFoods, columns, {key}});
    for (const jet::SavedQuery& query : data::diaryQueries()) {
        if (query.name == "Min(NDB)") {
            file->createQuery(query);
        }
    }
    fill(file->table(kFoods), foods);
}

std::vector<std::string> FoodDiary::foods() const
{
    return exportedTable(path_, kFoods);
}

std::vector<std::string> FoodDiary::addedFoods() const
{
    std::vector<std::string> lines = foods();
    EXPECT_GE(lines.size(), foodsAtFirst_);
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::min(foodsAtFirst_, lines.size())));
    return lines;
}

std::vector<jet::ColumnSpec> usualColumns(const std::vector<std::string>& nutrients)
{
    std::vector<jet::ColumnSpec> columns{keyColumn(), textColumn("Shrt_Desc", 20)};
    for (const std::string& nutrient : nutrients) {
        columns.push_back(numberColumn(nutrient));
    }
    for (const jet::ColumnSpec& column :
         {numberColumn("GmWt_1"), textColumn("GmWt_Desc1", 20), numberColumn("GmWt_2"), textColumn("GmWt_Desc2", 20),
          numberColumn("Refuse_Pct"), flagColumn("Recipe"), flagColumn("Ingredient")}) {
        columns.push_back(column);
    }
    return columns;
}

jet::ColumnSpec numberColumn(const std::string& name)
{
    return {name, ColumnType::Double};
}

jet::ColumnSpec keyColumn()
{
    return {"NDB_No", ColumnType::Long};
}

jet::ColumnSpec textColumn(const std::string& name, std::uint16_t characters)
{
    return {name, ColumnType::Text, characters};
}

jet::ColumnSpec flagColumn(const std::string& name)
{
    return {name, ColumnType::Boolean};
}
