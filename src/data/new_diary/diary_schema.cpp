#include "data/new_diary/diary_schema.h"

#include <utility>

namespace data {

namespace {

using jet::ColumnSpec;
using jet::ColumnType;
using jet::IndexSpec;
using jet::TableSpec;

constexpr std::uint16_t kCommentLength = 50;
constexpr std::uint16_t kTypeTextLength = 50;
constexpr std::uint16_t kFoodNameLength = 100;    // the longest of the USDA's has 60; a recipe's may be longer
constexpr std::uint16_t kMeasureNameLength = 120; // as the USDA's own definition has it

ColumnSpec column(std::string name, ColumnType type)
{
    ColumnSpec spec;
    spec.name = std::move(name);
    spec.type = type;
    return spec;
}

ColumnSpec counter(std::string name)
{
    ColumnSpec spec = column(std::move(name), ColumnType::Long);
    spec.autoNumber = true;
    return spec;
}

ColumnSpec text(std::string name, std::uint16_t characters)
{
    ColumnSpec spec = column(std::move(name), ColumnType::Text);
    spec.characters = characters;
    return spec;
}

IndexSpec primaryKey(std::string columnName)
{
    IndexSpec spec;
    spec.name = "PrimaryKey";
    spec.keys = {{std::move(columnName), true}};
    spec.primaryKey = true;
    return spec;
}

IndexSpec indexOn(const std::string& columnName)
{
    IndexSpec spec;
    spec.name = columnName;
    spec.keys = {{columnName, true}};
    return spec;
}

// --- Saved queries, row by row (FORMAT.md, "Saved queries") ---

using namespace jet::query_attribute;

/// Builds the rows of a select query in the order in which they are stored.
class SelectRows
{
public:
    explicit SelectRows(std::string name)
    {
        query_.name = std::move(name);
        add(kStart, {});
        add(kType, {}).flag = 1;
    }
    SelectRows& from(const char16_t* table)
    {
        add(kInput, {}).name1 = table;
        return *this;
    }
    SelectRows& output(const char16_t* expression, const char16_t* alias)
    {
        jet::QueryRow& row = add(kOutput, expression);
        row.flag = 0;
        row.name1 = alias;
        return *this;
    }
    enum class Join : std::int16_t { Inner = 1, Left = 2 };
    SelectRows& join(Join kind, const char16_t* left, const char16_t* right, const char16_t* condition)
    {
        jet::QueryRow& row = add(kJoin, condition);
        row.flag = static_cast<std::int16_t>(kind);
        row.name1 = left;
        row.name2 = right;
        return *this;
    }
    SelectRows& orderBy(const char16_t* expression)
    {
        add(kOrderBy, expression);
        return *this;
    }
    jet::SavedQuery done()
    {
        add(kEnd, {});
        return std::move(query_);
    }

private:
    /// Rows are counted from 1 within each attribute; the calls come in ascending order of the attribute.
    jet::QueryRow& add(std::uint8_t attribute, std::optional<std::u16string> expression)
    {
        const bool first = query_.rows.empty() || query_.rows.back().attribute != attribute;
        jet::QueryRow row;
        row.attribute = attribute;
        row.order = first ? 1 : query_.rows.back().order + 1;
        row.expression = std::move(expression);
        return query_.rows.emplace_back(std::move(row));
    }

    jet::SavedQuery query_;
};

jet::SavedQuery excelHistory()
{
    // Readings of the same minute follow each other as they were entered.
    return SelectRows("ExcelHistory")
        .from(u"BloodSugarLevels")
        .from(u"BloodSugarReadingTypes")
        .output(u"[BloodSugarLevels].[BloodSugerLevel]", u"Mmol")
        .output(u"[BloodSugarLevels].[ReadingTime]", u"When")
        .output(u"IIf([BloodSugarReadingTypes].[Text] Is Null,\"Unclassified\",[BloodSugarReadingTypes].[Text])",
                u"Type")
        .output(u"[BloodSugarLevels].[Comment]", u"Comment")
        .join(SelectRows::Join::Left, u"BloodSugarLevels", u"BloodSugarReadingTypes",
              u"[BloodSugarLevels].[ReadingType] = [BloodSugarReadingTypes].[Type]")
        .orderBy(u"[BloodSugarLevels].[ReadingTime]")
        .orderBy(u"[BloodSugarLevels].[BloodSugerNo]")
        .done();
}

constexpr const char16_t* kMealTypeText =
    u"IIf([Meals].[MealDescription]=1,\"Breakfast\",IIf([Meals].[MealDescription]=2,\"Lunch\","
    u"IIf([Meals].[MealDescription]=3,\"Dinner\",IIf([Meals].[MealDescription]=4,\"Snack\",\"\"))))";

jet::SavedQuery mealDetails()
{
    // The foods are joined loosely: a meal must not lose a line because its food has gone from the table.
    return SelectRows("MealDetails")
        .from(u"Meals")
        .from(u"MealContent")
        .from(u"NutritionalInformation")
        .output(u"[Meals].[MealTime]", u"When")
        .output(kMealTypeText, u"MealType")
        .output(u"[Meals].[Insulin Dosage]", u"InsulinDosage")
        .output(u"[MealContent].[Quantity]", u"Quantity")
        .output(u"IIf([NutritionalInformation].[Shrt_Desc] Is Null,\"Food number \" & [MealContent].[NDB_No],"
                u"[NutritionalInformation].[Shrt_Desc])",
                u"Desc")
        .output(u"[NutritionalInformation].[Energ_Kcal]", u"kCal")
        .output(u"[NutritionalInformation].[Carbohydrt]", u"Carb")
        .output(u"[NutritionalInformation].[Tot_Lipid]", u"Fat")
        .output(u"[NutritionalInformation].[Protein]", u"Prot")
        .join(SelectRows::Join::Inner, u"Meals", u"MealContent", u"[Meals].[MealNo] = [MealContent].[MealID]")
        .join(SelectRows::Join::Left, u"MealContent", u"NutritionalInformation",
              u"[MealContent].[NDB_No] = [NutritionalInformation].[NDB_No]")
        .orderBy(u"[Meals].[MealTime]")
        .orderBy(u"[Meals].[MealNo]")
        .done();
}

jet::SavedQuery existingMeals()
{
    return SelectRows("ExistingMeals")
        .from(u"Meals")
        .output(u"[Meals].[MealTime]", u"MTime")
        .output(kMealTypeText, u"MDesc")
        .output(u"[Meals].[MealNo]", u"MealNo")
        .output(u"[Meals].[Insulin Dosage]", u"IDose")
        .orderBy(u"[Meals].[MealTime]")
        .orderBy(u"[Meals].[MealNo]")
        .done();
}

} // namespace

const std::vector<ReadingType>& readingTypes()
{
    static const std::vector<ReadingType> types{{1, u"Getting Up"}, {2, u"Meal"},    {3, u"Meal + 2"},
                                                {4, u"Meal + 3"},   {5, u"Pre Bed"}, {6, u"Calibration"},
                                                {7, u"Exercise"},   {8, u"Other"}};
    return types;
}

std::vector<TableSpec> diaryTables(const std::vector<std::string>& nutrients)
{
    TableSpec readings{"BloodSugarLevels",
                       {counter("BloodSugerNo"), column("BloodSugerLevel", ColumnType::Double),
                        column("ReadingTime", ColumnType::DateTime), column("ReadingType", ColumnType::Long),
                        text("Comment", kCommentLength)},
                       {primaryKey("BloodSugerNo"), indexOn("ReadingTime")}};
    TableSpec types{"BloodSugarReadingTypes",
                    {column("Type", ColumnType::Long), text("Text", kTypeTextLength)},
                    {primaryKey("Type")}};
    TableSpec meals{"Meals",
                    {counter("MealNo"), column("MealTime", ColumnType::DateTime),
                     column("MealDescription", ColumnType::Integer), column("Insulin Dosage", ColumnType::Integer)},
                    {primaryKey("MealNo"), indexOn("MealTime")}};
    TableSpec content{"MealContent",
                      {column("MealID", ColumnType::Long), column("NDB_No", ColumnType::Long),
                       column("Quantity", ColumnType::Double)},
                      {indexOn("MealID"), indexOn("NDB_No")}};

    TableSpec foods{"NutritionalInformation",
                    {column("NDB_No", ColumnType::Long), text("Shrt_Desc", kFoodNameLength)},
                    {primaryKey("NDB_No")}};
    for (const std::string& nutrient : nutrients) {
        foods.columns.push_back(column(nutrient, ColumnType::Double));
    }
    for (ColumnSpec& spec :
         std::vector<ColumnSpec>{column("GmWt_1", ColumnType::Double), text("GmWt_Desc1", kMeasureNameLength),
                                 column("GmWt_2", ColumnType::Double), text("GmWt_Desc2", kMeasureNameLength),
                                 column("Refuse_Pct", ColumnType::Double), column("Recipe", ColumnType::Boolean),
                                 column("Ingredient", ColumnType::Boolean)}) {
        foods.columns.push_back(std::move(spec));
    }
    return {std::move(readings), std::move(types), std::move(meals), std::move(content), std::move(foods)};
}

std::vector<jet::Relationship> diaryRelationships()
{
    const auto relationship = [](std::string name, std::string many, std::string manyColumn, std::string one,
                                 std::string oneColumn) {
        jet::Relationship result;
        result.name = std::move(name);
        result.referencingTable = std::move(many);
        result.referencedTable = std::move(one);
        result.columns = {{std::move(manyColumn), std::move(oneColumn)}};
        return result;
    };
    return {
        relationship("BloodSugarReadingTypesBloodSugarLevels", "BloodSugarLevels", "ReadingType",
                     "BloodSugarReadingTypes", "Type"),
        relationship("MealsMealContent", "MealContent", "MealID", "Meals", "MealNo"),
        relationship("NutritionalInformationMealContent", "MealContent", "NDB_No", "NutritionalInformation", "NDB_No"),
    };
}

std::vector<jet::SavedQuery> diaryQueries()
{
    return {
        excelHistory(),
        mealDetails(),
        existingMeals(),
        SelectRows("LastBldReading")
            .from(u"BloodSugarLevels")
            .output(u"Max([BloodSugarLevels].[ReadingTime])", u"LastReading")
            .done(),
        SelectRows("Min(NDB)")
            .from(u"NutritionalInformation")
            .output(u"Min([NutritionalInformation].[NDB_No])", u"MinOfNDB_No")
            .done(),
    };
}

} // namespace data
