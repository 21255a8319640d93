// The way in which the keys of an index are walked.
#pragma once

namespace jet {

enum class Direction { Forwards, Backwards };

} // namespace jet
