#include "support/diary_content.h"

#include "data/database.h"
#include "runtime/conversions.h"

namespace reports {
namespace {

template <typename Inner>
runtime::Value valueOf(const std::optional<Inner>& known)
{
    return known ? runtime::Value{*known} : runtime::Null{};
}

} // namespace

void addFood(const QString& diaryPath, qint32 number, const FoodRow& food)
{
    data::Database database(diaryPath);
    data::Recordset foods = database.openRecordset(QStringLiteral("NutritionalInformation"));
    foods.addNew();
    foods.set(QStringLiteral("NDB_No"), number);
    foods.set(QStringLiteral("Shrt_Desc"), food.description);
    foods.set(QStringLiteral("Energ_Kcal"), valueOf(food.energy));
    foods.set(QStringLiteral("Carbohydrt"), valueOf(food.carbohydrate));
    foods.set(QStringLiteral("Tot_Lipid"), valueOf(food.fat));
    foods.set(QStringLiteral("Protein"), valueOf(food.protein));
    foods.update();
}

void addMeal(const QString& diaryPath, const MealRow& meal)
{
    data::Database database(diaryPath);
    data::Recordset meals = database.openRecordset(QStringLiteral("Select * from Meals where MealNo = -999999"));
    meals.addNew();
    if (!meal.when.isEmpty()) {
        meals.set(QStringLiteral("MealTime"), runtime::toDate(meal.when));
    }
    meals.set(QStringLiteral("MealDescription"), qint32{meal.type});
    meals.set(QStringLiteral("Insulin Dosage"), valueOf(meal.dose));
    meals.update();
    meals.moveFirst();

    data::Recordset content = database.openRecordset(QStringLiteral("MealContent"));
    for (const MealRow::Portion& portion : meal.portions) {
        content.addNew();
        content.set(QStringLiteral("MealID"), meals.value(QStringLiteral("MealNo")));
        content.set(QStringLiteral("NDB_No"), portion.food);
        content.set(QStringLiteral("Quantity"), valueOf(portion.grams));
        content.update();
    }
}

} // namespace reports
