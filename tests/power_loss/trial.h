// Lets the power fail at every call of what a program did to a diary, and looks at what is found afterwards.
//
// At each call, the state of the disk is made in which the call has begun or has just ended, in several choices of what
// survives. Then a program starts that knows nothing of all this, and must find
//   - a diary that opens, and whose structure is sound;
//   - in every byte the diary as it was before or after the change that was under way, and so everything that another
//     program could have read, or that a call that returned has promised;
//   - the same again when it opens the diary once more, with nothing left to do;
//   - that the next change can be made.
// The power also fails during that program's recovery, and in the recovery after that.
#pragma once

#include "jet/database.h"
#include "jet/support/disk_state.h"
#include "jet/support/disk_trace.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace power_loss {

using jet::test::DiskState;
using jet::test::Event;
using jet::test::Files;
using jet::test::RecordingFileSystem;
using jet::test::Survival;

/// How many of the endless possibilities are tried.
struct Effort {
    std::size_t choices = 2;    ///< by chance at each call, besides the four without chance
    std::size_t recoveries = 1; ///< at each call, so many of the states have the power fail in their recovery as well
    std::size_t depth = 1;      ///< so many recoveries one after the other
    std::uint64_t seed = 1;
};

struct Count {
    std::size_t calls = 0;  ///< at which the power failed
    std::size_t states = 0; ///< that differ from all others of the same call
};

struct Findings {
    Count program;
    Count recoveries;
    std::vector<std::string> losses; ///< empty when all is well
    /// What another program would have found in the diary at the start and after each change.
    std::vector<jet::Bytes> history;
};

class Trial
{
public:
    using Change = std::function<void(jet::Database&)>;

    Trial(std::string diaryPath, Change nextChange, Effort effort);

    /// The power fails from the event of that number on. `possible` are the diaries that may be found until the first
    /// change ends; when none are given, the one that is there at that event.
    [[nodiscard]] Findings run(const RecordingFileSystem& disk, std::size_t from = 0,
                               const std::vector<jet::Bytes>& possible = {});

private:
    using Digests = std::set<std::size_t>;

    struct Found {
        Files files; ///< after the diary was opened and closed
        jet::Bytes diary;
    };

    void walk(const RecordingFileSystem& disk, std::size_t from, Digests allowed, std::size_t depth);
    /// Gives the number of different states.
    std::size_t cutPower(const DiskState& disk, const Digests& allowed, std::size_t depth);
    void examine(const Files& files, const Digests& allowed, std::size_t depth, bool cutRecovery);
    [[nodiscard]] Found open(RecordingFileSystem& disk) const;
    [[nodiscard]] std::vector<jet::Bytes> foundAfterEachRelease(const RecordingFileSystem& disk, std::size_t from);
    void requireUsable(const Found& found);
    void lose(const std::string& what);

    std::string path_;
    Change nextChange_;
    Effort effort_;
    Findings findings_;
    Digests sound_;                  ///< diaries whose structure was looked at
    Digests usable_;                 ///< folders in which the next change was made
    std::vector<std::string> story_; ///< how the state at hand came about
    std::uint64_t calls_ = 0;        ///< of all walks: the seeds follow from it
};

} // namespace power_loss
