// The diary that a soak works on, what it must hold, and what all actions on it need.
#pragma once

#include "data/database.h"
#include "runtime/run_time_error.h"
#include "soak/contents.h"
#include "soak/dice.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace soak {

/// The program did something else than what it is known to do.
class Difference : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

struct Scene {
    QString folder; ///< for the files that an action needs
    QString path;   ///< of the diary
    Dice dice;
    Contents expected;
    qint32 lastReading = 0; ///< the highest number ever given
    qint32 lastMeal = 0;
    std::string action;                           ///< what is being done, in words
    std::vector<data::Database> connections = {}; ///< kept open over the changes of others

    /// One of the kept connections, which is now and then a new one.
    [[nodiscard]] data::Database& connection();
    /// A moment in the two months that the diary is about; now and then one that a reading has.
    [[nodiscard]] Minute moment();
    /// In tenths, as meters show it.
    [[nodiscard]] double level();
    [[nodiscard]] QString comment();
};

void require(bool holds, const std::string& what);
/// The run-time error with which it ends; 0 where it does not.
[[nodiscard]] int errorOf(const std::function<void()>& call);
void requireError(runtime::ErrorNumber number, const std::function<void()>& call);

/// In tenths, with a point.
[[nodiscard]] QString tenths(double value);

/// A thing that a user does; does it to the diary and to what is expected of it, or throws Difference.
using Action = void (*)(Scene& scene);

} // namespace soak
