// Where the diary file is.
#pragma once

#include <QString>

namespace data {

/// The fixed path that is compiled in.
[[nodiscard]] QString fixedDiaryPath();
/// The path for a program that runs from `programFolder`: the diary beside it when that is exactly C:\Quillon (case
/// matters), else the fixed path.
[[nodiscard]] QString diaryPath(const QString& programFolder);

} // namespace data
