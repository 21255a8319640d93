// Records that are browsed and corrected in place, through a connection that is kept while others change the diary.
#pragma once

#include "controls/bound_record.h"
#include "soak/scene.h"

#include <optional>

namespace soak {

/// The window "Modify Blood Sugar Readings", which stays open over many actions of others.
class ReadingBrowser
{
public:
    /// Opens it, moves, corrects, gives up or closes it.
    void act(Scene& scene);
    void close() { record_.reset(); }

private:
    void open(Scene& scene);
    void move(Scene& scene);
    void correct(Scene& scene);
    void requireShown(const Scene& scene) const;

    std::optional<controls::BoundRecord> record_;
};

/// "Edit Meal Time", opened and closed.
void editMealTime(Scene& scene);

} // namespace soak
