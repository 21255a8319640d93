#include "jet/disk/file_version.h"

namespace jet {

FileVersion FileVersion::of(File& file)
{
    FileVersion version{.stamp = file.stamp()};
    if (version.stamp.size >= kPageSize) {
        file.readAt(kCommitPairsOffset, version.commitPairs);
    }
    return version;
}

PageRef withCommitCounted(const Page& before, const Page& after)
{
    auto counted = std::make_shared<Page>(after);
    const std::uint8_t count = getU8(before, FileVersion::kCommitPairsOffset);
    putU8(*counted, FileVersion::kCommitPairsOffset,
          count == 0xFF ? std::uint8_t{1} : static_cast<std::uint8_t>(count + 1));
    return counted;
}

} // namespace jet
