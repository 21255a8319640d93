// Work on a diary that two processes know alike: the one that does it, and is killed, and the one that then looks what
// became of it.
#pragma once

#include "soak/contents.h"

#include <cstdint>
#include <string>
#include <vector>

namespace soak {

/// What a diary holds, and the numbers that it will give next.
struct DiaryState {
    Contents contents;
    qint32 lastReading = 0;
    qint32 lastMeal = 0;
};

struct Work {
    enum class Kind { TypeReading, Import, CorrectLatestReading, DeleteOldReadings, SaveMeal, ReplaceLatestMeal };

    Kind kind = Kind::TypeReading;
    std::vector<Reading> readings;
    Meal meal;
    std::vector<Portion> portions; ///< each of more than 0 g

    [[nodiscard]] std::string describe() const;
};

/// The number of the only food that meals are made of.
inline constexpr qint32 kWorkFood = 1001;

/// The same seed and number always give the same.
[[nodiscard]] Work workNumbered(std::uint64_t seed, int number);

/// Through what windows call; files that are needed go to the diary's folder.
void doWork(const QString& diaryPath, const Work& work);

/// The state before, and after each step of the work that is durable by itself.
[[nodiscard]] std::vector<DiaryState> statesDuring(const Work& work, const DiaryState& before);

} // namespace soak
