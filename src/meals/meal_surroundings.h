// What the meal builder takes from outside.
#pragma once

namespace controls {
class Dialogs;
class Printers;
} // namespace controls

namespace reports {
struct ReportState;
}

namespace runtime {
class Clock;
}

namespace meals {

/// References outlive the form.
struct MealSurroundings {
    const runtime::Clock& clock;
    controls::Dialogs& dialogs;
    controls::Printers& printers;
    reports::ReportState& state; ///< the diary's path, and the line counter of printing
};

} // namespace meals
