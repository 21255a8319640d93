#include "data/new_diary/sample_diary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

constexpr int kSomeDay = 46347; // 21 November 2026
constexpr int kDays = 400;

/// Every food has 20 g of carbohydrate in 100 g.
const std::map<int, double>& someFoods()
{
    static const std::map<int, double> foods = [] {
        std::map<int, double> result;
        for (int number = 1; number < 30000; ++number) {
            result[number] = 20;
        }
        return result;
    }();
    return foods;
}

TEST(SampleDiary, ADayIsAlwaysTheSame)
{
    const data::SampleDay first = data::sampleDay(kSomeDay, someFoods());
    const data::SampleDay again = data::sampleDay(kSomeDay, someFoods());
    ASSERT_EQ(first.readings.size(), again.readings.size());
    for (std::size_t i = 0; i < first.readings.size(); ++i) {
        EXPECT_EQ(first.readings[i].minute, again.readings[i].minute);
        EXPECT_EQ(first.readings[i].mmol, again.readings[i].mmol);
    }
    ASSERT_EQ(first.meals.size(), again.meals.size());
}

TEST(SampleDiary, ReadingsArePlausibleInTimeOrderAndOfTypesOneToSix)
{
    std::set<int> types;
    for (int day = kSomeDay; day < kSomeDay + kDays; ++day) {
        int last = 0;
        for (const data::SampleReading& reading : data::sampleDay(day, someFoods()).readings) {
            types.insert(reading.type);
            EXPECT_GE(reading.minute, last);
            EXPECT_LT(reading.minute, 24 * 60);
            EXPECT_GE(reading.mmol, 2.0);
            EXPECT_LE(reading.mmol, 20.0);
            EXPECT_NEAR(reading.mmol * 10, std::round(reading.mmol * 10), 1e-9) << "one decimal, as a meter shows";
            last = reading.minute;
        }
    }
    EXPECT_EQ(types, (std::set<int>{1, 2, 3, 4, 5, 6}));
}

TEST(SampleDiary, AMealHasFoodAReadingBeforeItAndInsulinUnlessItIsASnack)
{
    for (int day = kSomeDay; day < kSomeDay + kDays; ++day) {
        const data::SampleDay sample = data::sampleDay(day, someFoods());
        EXPECT_GE(sample.meals.size(), 3U);
        for (const data::SampleMeal& meal : sample.meals) {
            EXPECT_FALSE(meal.foods.empty());
            EXPECT_TRUE(meal.insulin > 0 || meal.type == 4);
            EXPECT_LE(sample.readings.front().minute, meal.minute);
        }
    }
}

TEST(SampleDiary, AMealWhoseFoodsAreUnknownIsLeftOut)
{
    const data::SampleDay sample = data::sampleDay(kSomeDay, {});
    EXPECT_TRUE(sample.meals.empty());
    EXPECT_FALSE(sample.readings.empty());
}

} // namespace
