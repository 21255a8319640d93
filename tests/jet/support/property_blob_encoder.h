// Properties as the bytes of a file, for tests: the engine reads them and writes none.
#pragma once

#include "jet/format/property_blob.h"

namespace jet::test {

/// The blob's names come first, in their order, and behind them those of its properties that are not among them.
[[nodiscard]] Bytes encodePropertyBlob(const PropertyBlob& blob);

} // namespace jet::test
