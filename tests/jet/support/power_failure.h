// Lets the power fail at every call of what a program does to a disk.
//
//     forEachPowerFailure({.prepare = [](FileSystem& disk) { makeDiary(disk); },
//                          .body = [](FileSystem& disk) { addReading(disk); },
//                          .recover = [](FileSystem& disk) { openDiary(disk); },
//                          .check = [](FileSystem& disk, bool finished) { expectOldOrNew(disk, finished); }});
//
// The body runs once, with the power on, and what it does is recorded. Then the disk is made as it may be found when
// the power fails after each of the recorded calls (disk_state.h says what that can be), and the check looks at it.
#pragma once

#include "jet/disk/file.h"

#include <cstddef>
#include <functional>

namespace jet::test {

struct PowerFailureTest {
    /// Makes the state before; all of it is on the disk when it returns.
    std::function<void(FileSystem&)> prepare;
    /// What the power fails in.
    std::function<void(FileSystem&)> body;
    /// What a program does first afterwards. Optional; when given, the power fails at each call of it as well.
    std::function<void(FileSystem&)> recover = {};
    /// Looks at what survived; `finished` tells that the body had returned.
    std::function<void(FileSystem&, bool finished)> check;
    std::size_t choices = 6;         ///< of what survives, by chance, at each call of the body; four without it besides
    std::size_t recoveryChoices = 2; ///< the same at each call of the recovery
};

/// Gives the number of checked states, those that are the same at one call counted once. Stops at the first that fails
/// the check.
std::size_t forEachPowerFailure(const PowerFailureTest& test);

} // namespace jet::test
