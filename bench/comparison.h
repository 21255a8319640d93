// What the program needs beside what another program needs for the same or the nearest work, as rows of one table.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bench {

using Work = std::function<void()>;

/// Seconds of the clock on the wall, for work that waits for a disk or for another process.
[[nodiscard]] double wallTimeOf(const Work& work);
/// Seconds of the processor, of this process and of those that it has run to their end: what else the machine does in
/// the meantime does not count.
[[nodiscard]] double processorTimeOf(const Work& work);

enum class Unit { Seconds, Bytes };

struct Comparison {
    /// Does the work once and returns what it took; what only prepares the work stays out of the figure.
    using Round = std::function<double()>;

    std::string what;
    Round ours;
    Round theirs;
    std::optional<double> mostRatio; ///< ours to theirs; none where the row only informs
    std::string note;                ///< what each side does, for below the table
    int rounds = 7;
    Unit unit = Unit::Seconds;
};

/// A table on standard output.
class ComparisonTable
{
public:
    ComparisonTable();

    /// Runs both sides in turns, after a round of each that does not count, and prints the medians.
    void add(const Comparison& comparison);
    /// Prints what the rows' notes say.
    void printNotes() const;

private:
    struct Note {
        std::string what;
        std::string text;
    };
    std::vector<Note> notes_;
};

} // namespace bench
