// How connections notice that another one, or another program, has changed the file.
#pragma once

#include "jet/disk/file.h"
#include "jet/disk/page.h"

#include <array>

namespace jet {

/// The file's size and time, and the commit pairs of page 0 (FORMAT.md, "The file and its header page"). The clock of
/// times may be too coarse to tell two commits apart; the pairs then do.
struct FileVersion {
    static constexpr std::size_t kCommitPairsOffset = 0xE00;
    static constexpr std::size_t kCommitPairsSize = 512;

    FileStamp stamp;
    std::array<std::byte, kCommitPairsSize> commitPairs{}; ///< zeros in a file that has no whole page

    [[nodiscard]] static FileVersion of(File& file);
    bool operator==(const FileVersion&) const = default;
};

/// The page 0 that a commit is to write: the first byte of its first pair is the next after the one in `before`. It
/// skips zero, so the pair is never 00 00, which other programs take for damage.
[[nodiscard]] PageRef withCommitCounted(const Page& before, const Page& after);

} // namespace jet
