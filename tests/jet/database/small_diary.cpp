#include "jet/database/small_diary.h"

#include "jet/database/builders.h"

#include <stdexcept>

namespace jet::test {

namespace {

SavedQuery menuQuery()
{
    SavedQuery query;
    query.name = "Menu";
    query.rows = {
        {0, 1, 0, {}, {}, {}},
        {1, 1, 1, {}, {}, {}},
        {3, 1, 0, {}, {}, {}},
        {5, 1, {}, {}, u"Meals", {}},
        {5, 2, {}, {}, u"Foods", {}},
        {6, 1, 0, u"Meals.Title", {}, {}},
        {6, 2, 0, u"Foods.Name", u"Food", {}},
        {7, 1, 1, u"Meals.MealNo = Foods.MealNo", u"Meals", u"Foods"},
        {11, 1, {}, u"Meals.MealNo", {}, {}},
        {255, 1, {}, {}, {}, {}},
    };
    return query;
}

} // namespace

std::vector<ColumnValue> values(const Table& table, std::initializer_list<std::pair<const char*, Value>> named)
{
    std::vector<ColumnValue> result;
    for (const auto& [name, value] : named) {
        const Column* found = table.definition().columnByName(name);
        if (found == nullptr) {
            throw std::logic_error(std::string("No such column: ") + name);
        }
        result.push_back({found->number, value});
    }
    return result;
}

std::unique_ptr<Database> createSmallDiary(FileSystem& fileSystem, const std::string& path)
{
    auto diary = Database::create(fileSystem, path, DateTime{36900.5});
    diary->begin();
    diary->createTable({"Readings",
                        {counter("Id"), column("When", ColumnType::DateTime), column("Level", ColumnType::Double),
                         column("Comment", ColumnType::Text, 200), column("Notes", ColumnType::Memo),
                         column("Code", ColumnType::Text, 20)},
                        {primaryKey({{"Id"}}), index("When", {{"When", false}}), uniqueIndex("Code", {{"Code"}})}});
    diary->createTable(
        {"Meals",
         {counter("MealNo"), column("When", ColumnType::DateTime), column("Title", ColumnType::Text, 50)},
         {primaryKey({{"MealNo"}}), index("Title", {{"Title"}})}});
    diary->createTable({"Foods",
                        {column("MealNo", ColumnType::Long), column("Position", ColumnType::Integer),
                         column("Name", ColumnType::Text, 100), column("Grams", ColumnType::Single)},
                        {primaryKey({{"MealNo"}, {"Position"}}), index("Name", {{"Name"}, {"MealNo", false}})}});
    Relationship menu = relationship("MealsFoods", "Foods", "MealNo", "Meals", "MealNo");
    menu.cascadeDeletes = true;
    diary->createRelationship(menu);
    diary->createQuery(menuQuery());
    diary->commit();
    return diary;
}

void fillSmallDiary(Database& diary)
{
    diary.begin();
    Table& readings = diary.table("Readings");
    std::vector<RowPointer> addresses;
    for (int i = 0; i < 100; ++i) {
        addresses.push_back(readings.insert(values(
            readings, {{"When", DateTime{36900.25 + i}}, {"Level", 4.0 + 0.1 * i}, {"Comment", u"before breakfast"}})));
    }
    readings.update(addresses[1], values(readings, {{"Notes", std::u16string(5000, u'n')}, {"Code", u"long"}}));
    readings.update(addresses[2], values(readings, {{"Notes", std::u16string(500, u's')}, {"Code", u"short"}}));
    // Longer than the full page has room for.
    readings.update(addresses[3], values(readings, {{"Comment", std::u16string(200, u'\u0101')}}));
    for (std::size_t i = 5; i < addresses.size(); ++i) {
        readings.erase(addresses[i]);
    }
    Table& meals = diary.table("Meals");
    Table& foods = diary.table("Foods");
    for (const std::int32_t meal : {1, 2}) {
        meals.insert(values(meals, {{"When", DateTime{36900.5 + meal}}, {"Title", meal == 1 ? u"Lunch" : u"Dinner"}}));
        for (const std::int16_t position : {std::int16_t{1}, std::int16_t{2}}) {
            foods.insert(values(foods, {{"MealNo", meal},
                                        {"Position", position},
                                        {"Name", position == 1 ? u"Bread" : u"Cheese"},
                                        {"Grams", 50.0F * static_cast<float>(position)}}));
        }
    }
    diary.commit();
}

} // namespace jet::test
