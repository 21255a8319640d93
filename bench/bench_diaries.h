// Diaries of several sizes that the benchmarks share; made once in a run, in a folder that goes with it.
#pragma once

#include <QTemporaryDir>

#include "runtime/value.h"

#include <functional>
#include <map>
#include <string>

namespace bench {

inline constexpr int kReadingsADay = 288; ///< of a diary of so many readings
/// When a reading of such a diary was taken; they are numbered from 0.
[[nodiscard]] runtime::Date timeOfReading(int number);

class Diaries
{
public:
    Diaries();
    /// A diary with the whole food table and so many invented days.
    [[nodiscard]] std::string ofDays(int days);
    /// A diary without foods that holds so many readings.
    [[nodiscard]] std::string ofReadings(int readings);
    // The same in SQLite's own format.
    [[nodiscard]] std::string sqliteOfDays(int days);
    [[nodiscard]] std::string sqliteOfReadings(int readings);
    /// A path in the run's folder.
    [[nodiscard]] std::string pathFor(const std::string& name) const;

private:
    /// Where the file of that name is; made by the call when it is not there yet.
    const std::string& made(const std::string& name, const std::function<void(const std::string& path)>& make);

    QTemporaryDir folder_;
    std::map<std::string, std::string> made_;
};

/// The one of this run.
[[nodiscard]] Diaries& diaries();

} // namespace bench
