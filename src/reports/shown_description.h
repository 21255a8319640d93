// How a food is called on screen and on paper.
#pragma once

#include <QString>

namespace reports {

/// A description as stored ("BUTTER,WITH SALT") as it is shown: its first character unchanged, the rest in small
/// letters.
[[nodiscard]] QString shownDescription(const QString& stored);

} // namespace reports
