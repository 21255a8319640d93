// Diaries that the power fails on, and what is found in them.
#pragma once

#include "power_loss/trial.h"

#include <QString>

#include <functional>
#include <string>

namespace power_loss {

/// Where each diary is.
[[nodiscard]] QString diaryPath();

/// An empty diary of the program, changed by `fill` through the data layer.
[[nodiscard]] Files programDiary(const std::function<void()>& fill);
/// A diary of a few tables with long values, text indexes and an enforced relationship (jet/database/small_diary.h),
/// changed by `fill`.
[[nodiscard]] Files smallDiary(const std::function<void(jet::Database&)>& fill);

/// All rows, one a line: the values of the columns with blanks between.
[[nodiscard]] std::string rowsIn(const jet::Bytes& diary, const std::string& table);
[[nodiscard]] std::size_t rowCountIn(const jet::Bytes& diary, const std::string& table);

/// Adds a reading to a diary of either kind.
void addSomeReading(jet::Database& diary);

/// What every run affords; more with QUILLON_TEST_SEEDS.
[[nodiscard]] Effort usualEffort();
/// Tells how much was tried, and fails the test for each loss.
void expectNoLoss(const Findings& findings);

/// The power fails during the action, which works on the disk that it is given; the data layer does too. Fails the test
/// for each loss.
Findings losePowerDuring(const Files& start, const std::function<void(jet::FileSystem&)>& action,
                         const Effort& effort = usualEffort());

} // namespace power_loss
