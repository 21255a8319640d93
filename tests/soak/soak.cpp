#include "soak/soak.h"

#include "data/new_diary/diary_builder.h"
#include "soak/meal_actions.h"
#include "soak/reading_actions.h"

#include <QFile>

#include <array>
#include <functional>

namespace soak {

namespace {

struct SuppliedFood {
    qint32 number = 0;
    const char* description = nullptr;
    std::optional<double> carbohydrate;
    std::optional<double> energy;
};

const std::vector<SuppliedFood>& suppliedFoods()
{
    static const std::vector<SuppliedFood> foods{
        {1001, "BUTTER WITH SALT", 0.06, 717},
        {2001, "RICE WHITE CKD", 28.17, 130},
        {3001, "BREAD RYE", 48.3, 259},
        {3002, "BREAD WHITE TOASTED", 54.4, 293},
        {4001, "WATER TAP", 0, 0},
        {5001, "NOBODY KNOWS", std::nullopt, std::nullopt},
        {6001, "EGGS BOILED", 1.12, 155},
        {7001, "ORANGE JUICE RAW", 10.4, 45},
        {8001, "MILK 2% FAT", 4.8, 50},
        {9001, "SUGAR", 99.98, 387},
    };
    return foods;
}

void makeDiary(Scene& scene)
{
    const auto field = [](const std::optional<double>& value) {
        return value ? QByteArray::number(*value) : QByteArray();
    };
    const QString csvPath = scene.folder + QStringLiteral("/foods.csv");
    QFile csv(csvPath);
    require(csv.open(QIODevice::WriteOnly), "the foods cannot be written");
    csv.write("NDB_No,Shrt_Desc,Carbohydrt,Tot_Lipid,Protein,Energ_Kcal,Cholestrl\n");
    for (const SuppliedFood& food : suppliedFoods()) {
        csv.write(QByteArray::number(food.number) + ',' + food.description + ',' + field(food.carbohydrate) + ",2,3," +
                  field(food.energy) + ",\n");
        scene.expected.foods.emplace(
            food.number, Food{QString::fromLatin1(food.description), false, true, food.carbohydrate, food.energy});
    }
    csv.close();
    data::createDiary({scene.path, csvPath, 0}, runtime::FixedClock(runtime::Date{46000}));
}

/// What users do, and how often of a hundred times.
struct Habit {
    const char* name = nullptr;
    int share = 0;
    std::function<void()> act;
};

} // namespace

Soak::Soak(std::uint64_t seed)
    : seed_(seed),
      scene_{folder_.path(), folder_.filePath(QStringLiteral("Nutrition.mdb")), Dice(seed), {}, 0, 0, "make it", {}},
      reports_(scene_.path)
{
    makeDiary(scene_);
}

void Soak::step()
{
    ++steps_;
    try {
        act();
        checkFile();
    } catch (const Difference& difference) {
        throw located(difference.what());
    } catch (const runtime::RunTimeError& error) {
        throw located(error.text().toStdString());
    }
}

void Soak::act()
{
    const std::array habits{
        Habit{"type a reading", 14, [this] { typeReading(scene_); }},
        Habit{"type a wrong reading", 3, [this] { typeWrongReading(scene_); }},
        Habit{"import", 5, [this] { importReadings(scene_); }},
        Habit{"delete readings", 8, [this] { deleteReadings(scene_); }},
        Habit{"batch", 4, [this] { changeInBatch(scene_); }},
        Habit{"give a change up", 3, [this] { cancelChange(scene_); }},
        Habit{"count readings", 3, [this] { countReadings(scene_); }},
        Habit{"browse readings", 20, [this] { browser_.act(scene_); }},
        Habit{"save a meal", 10, [this] { saveMeal(scene_); }},
        Habit{"save a wrong meal", 2, [this] { saveWrongMeal(scene_); }},
        Habit{"delete meals", 4, [this] { deleteMeal(scene_); }},
        Habit{"edit a meal's time", 4, [this] { editMealTime(scene_); }},
        Habit{"add a food", 1, [this] { addFood(scene_); }},
        Habit{"search foods", 2, [this] { searchFoods(scene_); }},
        Habit{"filter", 4, [this] { reports_.filter(scene_); }},
        Habit{"basic report", 4, [this] { reports_.basicReport(scene_); }},
        Habit{"other report", 4, [this] { reports_.otherReport(scene_); }},
        Habit{"find", 3, [this] { reports_.find(scene_); }},
        Habit{"print", 2, [this] { reports_.print(scene_); }},
    };
    int drawn = scene_.dice.below(100);
    for (const Habit& habit : habits) {
        drawn -= habit.share;
        if (drawn < 0) {
            ++done_[habit.name];
            habit.act();
            break;
        }
    }
    mostReadings_ = std::max(mostReadings_, scene_.expected.readings.size());
    mostMeals_ = std::max(mostMeals_, scene_.expected.meals.size());
}

void Soak::checkFile()
{
    const data::Database::Faults faults = scene_.connection().check();
    require(faults.empty(), "the file is damaged:\n" + (faults.damage + faults.leftovers).join(u'\n').toStdString());
}

void Soak::compare()
{
    try {
        const Lines expected = linesOf(scene_.expected);
        data::Database database(scene_.path);
        const std::string read = difference(expected, linesIn(database));
        require(read.empty(), "the program reads something else:\n" + read);
        if (const std::optional<Lines> lines = exportedLines(scene_.path)) {
            exported_ = true;
            const std::string other = difference(expected, *lines);
            require(other.empty(), "mdb-export reads something else:\n" + other);
        }
    } catch (const Difference& difference) {
        throw located(difference.what());
    } catch (const runtime::RunTimeError& error) {
        throw located(error.text().toStdString());
    }
}

Difference Soak::located(const std::string& what) const
{
    return Difference("seed " + std::to_string(seed_) + ", step " + std::to_string(steps_) + ", " + scene_.action +
                      ":\n" + what);
}

} // namespace soak
