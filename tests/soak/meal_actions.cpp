#include "soak/meal_actions.h"

#include "meals/carb_goal.h"
#include "meals/food.h"
#include "meals/meal_sheet.h"
#include "meals/meal_storage.h"
#include "meals/new_food.h"

#include <algorithm>
#include <cmath>

namespace soak {

namespace {

constexpr std::size_t kMostMeals = 80;
constexpr int kFirstFoodLine = 2;

/// The meal being composed, and what it must hold.
struct Composition {
    meals::MealSheet sheet = {};
    meals::MealEntry entry = {};
    std::vector<Portion> portions = {};
};

/// In tenths of a gram; one that is too small to show is none.
double anyGrams(Scene& scene)
{
    return scene.dice.oneIn(10) ? 0 : scene.dice.between(1, 4000) / 10.0;
}

void addAnyFood(Scene& scene, Composition& meal)
{
    const Portion portion{scene.dice.keyOf(scene.expected.foods), anyGrams(scene)};
    meals::AddIngredient(meal.sheet, scene.path,
                         portion.grams == 0 ? QStringLiteral("0.04") : QString::number(portion.grams, 'g', 15),
                         portion.food);
    meal.portions.push_back(portion);
}

void changeAnyQuantity(Scene& scene, Composition& meal)
{
    const int row = scene.dice.below(static_cast<int>(meal.portions.size()));
    const double grams = anyGrams(scene);
    meals::UpdateMenuListQty(meal.sheet, scene.path, grams / 100, kFirstFoodLine + row);
    meal.portions[static_cast<std::size_t>(row)].grams = grams;
}

void seekGoal(Scene& scene, Composition& meal, int dose)
{
    constexpr double kRatio = 11.55;
    const int row = scene.dice.below(static_cast<int>(meal.portions.size()));
    const int line = kFirstFoodLine + row;
    Portion& portion = meal.portions[static_cast<std::size_t>(row)];
    const meals::Food food = meals::foodNumbered(scene.path, portion.food);
    const std::optional<double> factor = meals::factorForRatio(meal.sheet, line, food, dose, kRatio);
    const double carbohydrate = scene.expected.foods.at(portion.food).carbohydrate.value_or(0);
    require(factor.has_value() == (carbohydrate != 0), "the goal seek takes the wrong foods");
    if (!factor)
        return;
    // Each line's quantity shows rounded; an unrounded one of an earlier goal seek stays in the sum.
    const double gained = (dose * kRatio - meal.sheet.totalCarbohydrate()) * 100 / carbohydrate;
    require(std::abs(*factor * 100 - (portion.grams + gained)) < 1e-6 * (1 + std::abs(gained)),
            "the goal seek gives another quantity");
    meals::UpdateMenuListQty(meal.sheet, scene.path, *factor, line);
    portion.grams = meal.sheet.gramsAt(line);
    require(std::abs(portion.grams - *factor * 100) <= 0.0500001, "the line shows another quantity");
}

std::vector<std::pair<qint32, double>> sorted(const std::vector<Portion>& portions)
{
    std::vector<std::pair<qint32, double>> pairs;
    for (const Portion& portion : portions)
        pairs.emplace_back(portion.food, portion.grams);
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

std::vector<Portion> portionsOn(const meals::MealSheet& sheet)
{
    std::vector<Portion> portions;
    for (int line = kFirstFoodLine; sheet.isFoodLine(line); ++line)
        portions.push_back({sheet.foodNumberAt(line), sheet.gramsAt(line)});
    return portions;
}

/// The selection of old meals; none where it cannot be chosen.
bool fetchAnyMeal(Scene& scene, Composition& meal)
{
    if (scene.expected.meals.empty()) {
        requireError(runtime::ErrorNumber::NoCurrentRecord, [&] { static_cast<void>(meals::storedMeals(scene.path)); });
        return false;
    }
    const QList<meals::StoredMeal> stored = meals::storedMeals(scene.path);
    require(stored.size() == static_cast<qsizetype>(scene.expected.meals.size()),
            "the selection has " + std::to_string(stored.size()) + " meals");
    const meals::StoredMeal& chosen = stored.at(scene.dice.below(static_cast<int>(stored.size())));
    scene.action += " from meal " + std::to_string(chosen.number);
    const Meal& old = scene.expected.meals.at(chosen.number);
    require(chosen.insulinDose == old.dose, "the selection has another dose");
    const auto portions = scene.expected.portions.find(chosen.number);
    const auto fetch = [&] { meals::fetchFoods(meal.sheet, scene.path, chosen.number); };
    if (portions == scene.expected.portions.end()) {
        requireError(runtime::ErrorNumber::NoCurrentRecord, fetch);
        return false;
    }
    fetch();
    meal.portions = portionsOn(meal.sheet);
    require(sorted(meal.portions) == sorted(portions->second), "other foods were fetched");
    meal.entry = meals::entryOf(chosen);
    require(meal.entry.date == dayOf(old.time) && meal.entry.time == timeOf(old.time), "another time was fetched");
    require(meal.entry.type == (old.type == 1 ? std::nullopt : std::optional(old.type)), "another type was fetched");
    return true;
}

void expectMeal(Scene& scene, qint32 number, const Meal& meal, const std::vector<Portion>& portions)
{
    require(number == scene.lastMeal + 1, "the new meal's number is " + std::to_string(number));
    scene.lastMeal = number;
    scene.expected.meals.emplace(number, meal);
    for (const Portion& portion : portions) {
        if (portion.grams != 0)
            scene.expected.portions[number].push_back(portion);
    }
}

void compose(Scene& scene, Composition& meal, int dose)
{
    for (int step = scene.dice.between(1, 5); step > 0; --step) {
        if (meal.portions.empty() || scene.dice.oneIn(2))
            addAnyFood(scene, meal);
        else if (scene.dice.oneIn(2))
            changeAnyQuantity(scene, meal);
        else
            seekGoal(scene, meal, dose);
    }
}

} // namespace

void saveMeal(Scene& scene)
{
    scene.action = "save a meal";
    Composition meal;
    const bool fetched = scene.dice.oneIn(2) && fetchAnyMeal(scene, meal);
    const bool replaces = fetched && scene.dice.oneIn(2);
    if (!replaces)
        meal.entry.replaces = 0;
    const Minute time = replaces ? scene.expected.meals.at(meal.entry.replaces).time : scene.moment();
    const qint32 type = scene.dice.between(1, 4);
    const int dose = scene.dice.between(type == 4 ? 0 : 1, 30);
    scene.action += replaces ? " in its place" : "";
    compose(scene, meal, dose);

    meal.entry.date = dayOf(time);
    meal.entry.time = timeOf(time);
    meal.entry.type.reset();
    require(meals::refusalOf(meal.entry, meal.sheet) == meals::Refusal::NoType, "no type is asked for");
    meal.entry.type = type;
    meal.entry.insulinDose = QString::number(dose);
    require(!meals::refusalOf(meal.entry, meal.sheet), "the meal is refused");

    const qint32 number = meals::saveMeal(scene.path, meal.entry, meal.sheet);
    if (replaces) {
        scene.expected.meals.erase(meal.entry.replaces);
        scene.expected.portions.erase(meal.entry.replaces);
    }
    expectMeal(scene, number, {time, type, dose}, meal.portions);
}

void saveWrongMeal(Scene& scene)
{
    scene.action = "save a meal with a wrong text";
    Composition meal;
    if (!fetchAnyMeal(scene, meal))
        return;
    meal.entry.type = scene.dice.between(1, 4);
    runtime::ErrorNumber error = runtime::ErrorNumber::TypeMismatch;
    switch (scene.dice.below(4)) {
    case 0:
        meal.entry.date = QStringLiteral("31/02/2026");
        break;
    case 1:
        meal.entry.time = QStringLiteral("noon");
        break;
    case 2:
        meal.entry.insulinDose = QStringLiteral("four");
        break;
    default:
        meal.entry.insulinDose = QStringLiteral("32768");
        error = runtime::ErrorNumber::Overflow;
    }
    requireError(error, [&] { static_cast<void>(meals::saveMeal(scene.path, meal.entry, meal.sheet)); });
}

void deleteMeal(Scene& scene)
{
    auto& meals = scene.expected.meals;
    for (std::size_t last = meals.size() > kMostMeals ? kMostMeals / 2 : meals.size() - 1;
         !meals.empty() && meals.size() > last;) {
        const qint32 number = scene.dice.keyOf(meals);
        scene.action = "delete meal " + std::to_string(number);
        data::Database& database = scene.connection();
        require(database.execute(QStringLiteral("Delete * from Meals where MealNo = %1").arg(number)) == 1,
                "the meal was not deleted");
        const auto portions = scene.expected.portions.extract(number);
        const std::size_t count = portions.empty() ? 0 : portions.mapped().size();
        require(database.execute(QStringLiteral("Delete * from MealContent where MealID =%1").arg(number)) ==
                    static_cast<qsizetype>(count),
                "not all of its foods were deleted");
        meals.erase(number);
    }
}

void addFood(Scene& scene)
{
    static const std::vector<QString> descriptions{QStringLiteral("STEW,HOME MADE"), QStringLiteral("Crème brûlée"),
                                                   QStringLiteral("100% juice"), QString(100, u'F')};
    scene.action = "add a food";
    meals::NewFood food{scene.dice.oneOf(descriptions), scene.dice.oneIn(2), scene.dice.oneIn(2), {}};
    const double carbohydrate = scene.dice.below(1000) / 10.0;
    const double energy = scene.dice.below(900);
    for (const QString& column : meals::nutrientColumns(scene.path)) {
        const QString text = column == u"Carbohydrt"   ? tenths(carbohydrate)
                             : column == u"Energ_Kcal" ? QString::number(energy)
                                                       : QString();
        food.values.append({column, text});
    }
    if (scene.dice.oneIn(4)) {
        const bool tooLong = scene.dice.oneIn(2);
        if (tooLong)
            food.description = QString(101, u'F');
        else
            food.values.last().text = QStringLiteral("a lot");
        requireError(tooLong ? runtime::ErrorNumber::FieldTooSmall : runtime::ErrorNumber::TypeMismatch,
                     [&] { static_cast<void>(meals::SaveIngredient(scene.path, food)); });
        return;
    }
    const qint32 number = meals::SaveIngredient(scene.path, food);
    require(number == scene.expected.foods.begin()->first - 1, "the food's number is " + std::to_string(number));
    scene.expected.foods.emplace(number,
                                 Food{food.description, food.isRecipe, food.isIngredient, carbohydrate, energy});
}

void searchFoods(Scene& scene)
{
    static const std::vector<QString> texts{QStringLiteral("bread"), QStringLiteral("ew,"), QStringLiteral("JUICE"),
                                            QStringLiteral("ff"), QStringLiteral("nothing like it")};
    const QString& text = scene.dice.oneOf(texts);
    scene.action = "search the foods for " + text.toStdString();
    std::vector<qint32> meant;
    for (const auto& [number, food] : scene.expected.foods) {
        if (food.description.contains(text, Qt::CaseInsensitive))
            meant.push_back(number);
    }
    std::vector<qint32> found;
    for (const meals::FoundFood& food : meals::searchFoods(scene.path, text))
        found.push_back(food.number);
    std::sort(found.begin(), found.end());
    require(found == meant,
            "the search finds " + std::to_string(found.size()) + " foods and not " + std::to_string(meant.size()));
}

} // namespace soak
