#include "data/new_diary/sample_diary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace data {

namespace {

using Menu = std::vector<SampleMeal::Portion>; // numbers of the USDA table

// Each kind of meal in three variants.
const std::array<std::array<Menu, 3>, 4> kMenus{{
    {{
        {{8121, 250}, {1174, 150}, {9040, 100}}, // porridge, milk, banana
        {{18075, 70}, {1009, 25}, {9200, 130}},  // wholemeal bread, cheddar, orange
        {{8020, 40}, {1174, 180}, {9003, 120}},  // corn flakes, milk, apple
    }},
    {{
        {{18075, 90}, {7028, 50}, {11529, 80}, {9003, 130}}, // bread, ham, tomato, apple
        {{6559, 300}, {18060, 80}, {1009, 30}},              // tomato soup, rye bread, cheddar
        {{20121, 200}, {23560, 90}, {11529, 100}},           // pasta, minced beef, tomato
    }},
    {{
        {{11367, 220}, {5064, 130}, {11091, 120}},  // potatoes, chicken breast, broccoli
        {{20045, 200}, {15237, 140}, {11313, 90}},  // rice, salmon, peas
        {{20121, 230}, {23560, 110}, {11125, 100}}, // pasta, minced beef, carrots
    }},
    {{
        {{9040, 110}},               // banana
        {{18179, 30}, {14209, 200}}, // oatmeal cookie, coffee
        {{1117, 150}, {12061, 15}},  // yogurt, almonds
    }},
}};

enum MealType { Breakfast = 1, Lunch = 2, Dinner = 3, Snack = 4 };
enum ReadingType { GettingUp = 1, Meal = 2, MealPlus2 = 3, MealPlus3 = 4, PreBed = 5, Calibration = 6 };

/// Numbers that depend on the day alone, on every machine: only the engine of <random> is fixed by the standard.
class Dice
{
public:
    explicit Dice(int day) : engine_(static_cast<std::mt19937::result_type>(day) * 2654435761U + 1U) {}
    /// A whole number from low to high, both included.
    int between(int low, int high)
    {
        return low + static_cast<int>(engine_() % static_cast<std::mt19937::result_type>(high - low + 1));
    }
    double real(double low, double high) { return low + (high - low) * between(0, 10000) / 10000.0; }

private:
    std::mt19937 engine_;
};

/// To one decimal, within what a meter of use to somebody alive shows.
double shown(double mmol)
{
    return std::round(std::clamp(mmol, 2.4, 19.8) * 10) / 10;
}

/// One invented day; the blood sugar wanders with carbohydrate, insulin and chance.
class DayWriter
{
public:
    DayWriter(int day, const std::map<int, double>& carbohydrate)
        : dice_(day), carbohydrate_(carbohydrate), mmol_(dice_.real(4.2, 8.6)), weekday_(day % 7)
    {
    }

    SampleDay write()
    {
        const int rising = 6 * 60 + 50 + dice_.between(0, 40);
        read(rising, GettingUp);
        if (weekday_ == 1) {
            read(rising + 2, Calibration, u"control solution");
        }
        eat(Breakfast, rising + 25 + dice_.between(0, 25), true);
        eat(Lunch, 12 * 60 + 30 + dice_.between(0, 50), dice_.between(0, 2) == 0);
        if (dice_.between(0, 2) == 0) {
            eat(Snack, 15 * 60 + 50 + dice_.between(0, 40), false);
        }
        eat(Dinner, 18 * 60 + 20 + dice_.between(0, 45), dice_.between(0, 1) == 0);
        mmol_ += dice_.real(-1.2, 0.8);
        read(22 * 60 + 20 + dice_.between(0, 50), PreBed, dice_.between(0, 9) == 0 ? u"tired" : u"");
        std::stable_sort(day_.readings.begin(), day_.readings.end(),
                         [](const SampleReading& a, const SampleReading& b) { return a.minute < b.minute; });
        return std::move(day_);
    }

private:
    void read(int minute, ReadingType type, std::u16string comment = {})
    {
        day_.readings.push_back({minute, type, shown(mmol_), std::move(comment)});
    }

    void eat(MealType type, int minute, bool thirdHour)
    {
        SampleMeal meal{minute, type, 0, {}};
        double carbohydrate = 0;
        const Menu& menu = kMenus[static_cast<std::size_t>(type - 1)][static_cast<std::size_t>(dice_.between(0, 2))];
        for (const SampleMeal::Portion& portion : menu) {
            const double grams = 5.0 * std::round(portion.grams * dice_.real(0.8, 1.2) / 5.0);
            if (const auto food = carbohydrate_.find(portion.food); food != carbohydrate_.end()) {
                meal.foods.push_back({portion.food, grams});
                carbohydrate += food->second * grams / 100;
            }
        }
        // One unit for each 10 g of carbohydrate; a small snack goes without.
        meal.insulin = static_cast<int>(std::lround(carbohydrate / 10));
        if (type == Snack && carbohydrate < 20) {
            meal.insulin = 0;
        } else if (type != Snack) {
            meal.insulin = std::max(meal.insulin, 1);
        }

        read(minute - dice_.between(1, 6), Meal);
        const double rise = carbohydrate * 0.16 - meal.insulin * 1.5 + dice_.real(-3.2, 2.4);
        mmol_ = std::clamp(mmol_ + rise, 3.2, 15.5);
        if (type != Snack) {
            read(minute + 115 + dice_.between(0, 12), MealPlus2,
                 mmol_ > 13 ? u"high after meal" : (mmol_ < 3.8 ? u"took two biscuits" : u""));
        }
        mmol_ += dice_.real(-1.5, 0.4) - (mmol_ > 10 ? 1.5 : 0.0);
        mmol_ = std::clamp(mmol_, 3.4, 14.0);
        if (thirdHour) {
            read(minute + 178 + dice_.between(0, 8), MealPlus3);
        }
        if (!meal.foods.empty()) {
            day_.meals.push_back(std::move(meal));
        }
        // Back towards the usual level until the next meal.
        mmol_ += (6.2 - mmol_) * 0.5 + dice_.real(-0.8, 0.8);
    }

    Dice dice_;
    const std::map<int, double>& carbohydrate_;
    double mmol_;
    int weekday_;
    SampleDay day_;
};

} // namespace

SampleDay sampleDay(int day, const std::map<int, double>& carbohydratePer100g)
{
    return DayWriter(day, carbohydratePer100g).write();
}

} // namespace data
