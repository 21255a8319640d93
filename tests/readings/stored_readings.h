// What a diary file holds, for tests.
#pragma once

#include <QString>

#include <string>
#include <vector>

/// The readings in stored order as "level | time | type | comment".
[[nodiscard]] std::vector<std::string> storedReadings(const QString& diaryPath);
