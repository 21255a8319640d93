// What users do with meals and foods.
#pragma once

#include "soak/scene.h"

namespace soak {

/// New, based on an old meal, or in an old meal's place; with changed quantities and the goal seek.
void saveMeal(Scene& scene);
/// A date, time or dose that is none; nothing is deleted or stored.
void saveWrongMeal(Scene& scene);
/// By SQL, a meal with its foods.
void deleteMeal(Scene& scene);
void addFood(Scene& scene);
void searchFoods(Scene& scene);

} // namespace soak
