#include "meals/food.h"

#include "data/database.h"
#include "meals/known_foods.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace meals {
namespace {

TEST(Food, HasWhatTheTableSaysOfIt)
{
    const KnownFoods diary;
    const Food butter = foodNumbered(diary.path(), KnownFoods::kButter);
    EXPECT_EQ(butter.number, 1001);
    EXPECT_EQ(butter.description, QStringLiteral("Butter,with salt"));
    EXPECT_EQ(butter.in100Grams.carbohydrate, 0.06);
    EXPECT_EQ(butter.in100Grams.fat, 81.11);
    EXPECT_EQ(butter.in100Grams.protein, 0.85);
    EXPECT_EQ(butter.in100Grams.energy, 717);
    EXPECT_EQ(butter.in100Grams.cholesterol, 215);
}

TEST(Food, CholesterolThatIsNotKnownIs0AndLeavesTheOtherValues)
{
    const KnownFoods diary;
    const Food rice = foodNumbered(diary.path(), KnownFoods::kRice);
    EXPECT_EQ(rice.in100Grams.cholesterol, 0);
    EXPECT_EQ(rice.in100Grams.carbohydrate, 20);
    EXPECT_EQ(rice.in100Grams.fat, 1);
    EXPECT_EQ(rice.in100Grams.protein, 2);
    EXPECT_EQ(rice.in100Grams.energy, 100);
}

TEST(Food, NutrientsThatAreNotKnownAre0)
{
    const KnownFoods diary;
    const Food food = foodNumbered(diary.path(), KnownFoods::kUnknown);
    EXPECT_EQ(food.in100Grams.carbohydrate, 0);
    EXPECT_EQ(food.in100Grams.fat, 0);
    EXPECT_EQ(food.in100Grams.protein, 0);
    EXPECT_EQ(food.in100Grams.energy, 0);
    EXPECT_EQ(food.in100Grams.cholesterol, 0);
}

TEST(Food, OneWithoutADescriptionShowsNone)
{
    const KnownFoods diary;
    data::Database database(diary.path());
    data::Recordset foods = database.openRecordset(QStringLiteral("NutritionalInformation"));
    foods.addNew();
    foods.set(QStringLiteral("NDB_No"), 7001);
    foods.update();
    EXPECT_EQ(foodNumbered(diary.path(), 7001).description, QString());
}

TEST(Food, ANumberThatNoFoodHasIsNoCurrentRecord)
{
    const KnownFoods diary;
    for (const qint32 number : {0, 1002, -1}) {
        try {
            static_cast<void>(foodNumbered(diary.path(), number));
            ADD_FAILURE() << "there is a food " << number;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.number(), 3021);
            EXPECT_FALSE(error.hint().isEmpty());
        }
    }
}

TEST(Food, AFoodThatTheUserAddedHasANegativeNumber)
{
    const KnownFoods diary;
    data::Database database(diary.path());
    data::Recordset foods = database.openRecordset(QStringLiteral("NutritionalInformation"));
    foods.addNew();
    foods.set(QStringLiteral("NDB_No"), -1);
    foods.set(QStringLiteral("Shrt_Desc"), QStringLiteral("Gran's STEW"));
    foods.set(QStringLiteral("Carbohydrt"), 7.5);
    foods.update();
    const Food stew = foodNumbered(diary.path(), -1);
    EXPECT_EQ(stew.number, -1);
    EXPECT_EQ(stew.description, QStringLiteral("Gran's stew"));
    EXPECT_EQ(stew.in100Grams.carbohydrate, 7.5);
}

} // namespace
} // namespace meals
