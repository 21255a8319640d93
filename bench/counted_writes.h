// What this process hands to its disks, whichever library does it.
#pragma once

#include <cstdint>

namespace bench {

struct WriteCount {
    std::int64_t syncs = 0;  ///< of files and folders
    std::int64_t writes = 0; ///< at a place in a file
    std::int64_t bytes = 0;  ///< in those

    friend WriteCount operator-(const WriteCount& a, const WriteCount& b)
    {
        return {a.syncs - b.syncs, a.writes - b.writes, a.bytes - b.bytes};
    }
};

/// Since the process began.
[[nodiscard]] WriteCount writesOfProcess();

} // namespace bench
