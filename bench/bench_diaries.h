// Diaries of several sizes that the benchmarks share; made once in a run, in a folder that goes with it.
#pragma once

#include <QTemporaryDir>

#include <map>
#include <string>

namespace bench {

class Diaries
{
public:
    Diaries();
    /// A diary with the whole food table and so many invented days.
    [[nodiscard]] std::string ofDays(int days);
    /// The same in SQLite's own format.
    [[nodiscard]] std::string sqliteOfDays(int days);
    /// A diary without foods that holds so many readings.
    [[nodiscard]] std::string ofReadings(int readings);
    /// A path in the run's folder.
    [[nodiscard]] std::string pathFor(const std::string& name) const;

private:
    QTemporaryDir folder_;
    std::map<std::string, std::string> made_;
};

/// The one of this run.
[[nodiscard]] Diaries& diaries();

} // namespace bench
