// Where the diary file is.
#pragma once

#include <QString>

namespace data {

/// For a program that runs where it was built, the path that is compiled in; for any other, quillon/Nutrition.mdb in
/// the user's own data folder ($XDG_DATA_HOME, usually ~/.local/share).
[[nodiscard]] QString fixedDiaryPath();
/// The path for a program that runs from `programFolder`: the diary beside it when that is exactly C:\Quillon (case
/// matters), else the fixed path.
[[nodiscard]] QString diaryPath(const QString& programFolder);

} // namespace data
