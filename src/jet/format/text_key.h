// Texts in the order of the sort order "General legacy" (FORMAT.md, "Text keys").
//
// The order disregards case. Letters, digits and signs decide first; accents decide between texts that are alike so
// far; hyphens, apostrophes and control characters decide last. Blanks at the end do not count.
#pragma once

#include "jet/disk/bytes.h"

#include <cstddef>
#include <string_view>

namespace jet {

/// UTF-16 units of a text that take part in its key; what follows them does not count, blanks at their end neither.
inline constexpr std::size_t kTextKeyUnits = 255;

/// Appends the text's key without the flag byte that precedes it in an index. Takes any units, unpaired surrogates too.
void appendTextKey(std::u16string_view text, bool ascending, Bytes& key);

/// Below, equal to or above 0, as the ascending keys of the texts compare. Texts whose first kTextKeyUnits units are
/// equal are told apart by the units that follow, in the same way, so that long texts are never taken for one another.
[[nodiscard]] int compareTexts(std::u16string_view a, std::u16string_view b);

/// Whether compareTexts gives 0, found out faster for texts that are the same unit for unit.
[[nodiscard]] bool textsEqual(std::u16string_view a, std::u16string_view b);

} // namespace jet
