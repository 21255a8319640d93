// A small file of our own with some of everything, for tests that break it, cut its writing short or change it at
// random.
#pragma once

#include "jet/database.h"

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace jet::test {

inline constexpr const char* kDiaryPath = "/diary/Nutrition.mdb";

/// Values of the columns of these names.
[[nodiscard]] std::vector<ColumnValue> values(const Table& table,
                                              std::initializer_list<std::pair<const char*, Value>> named);

/// Tables:
///   Readings   Id auto-number, primary key; When (indexed, descending); Level; Comment text; Notes memo;
///              Code text, unique, may be null
///   Meals      MealNo auto-number, primary key; When; Title text (indexed)
///   Foods      MealNo, Position (composite primary key); Name text (indexed with MealNo); Grams
/// An enforced relationship Meals -> Foods that cascades deletes, and a saved query "Menu" that joins the two.
[[nodiscard]] std::unique_ptr<Database> createSmallDiary(FileSystem& fileSystem, const std::string& path = kDiaryPath);

/// Five readings of a hundred that were entered (one with a memo of two pages, one with a memo of 500 characters, one that
/// moved to another page as it grew) and two meals of two foods each.
void fillSmallDiary(Database& diary);

} // namespace jet::test
