#include "jet/disk/file_content.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::uint64_t kRun = std::uint64_t{1} << 20;

/// Calls `visit(offset, length)` for runs that make up so many bytes, until it says false.
template <typename Visit>
bool forEachRun(std::uint64_t size, Visit visit)
{
    for (std::uint64_t offset = 0; offset < size; offset += kRun) {
        if (!visit(offset, static_cast<std::size_t>(std::min(kRun, size - offset)))) {
            return false;
        }
    }
    return true;
}

} // namespace

void copyContent(File& from, File& to)
{
    Bytes run;
    forEachRun(from.size(), [&](std::uint64_t offset, std::size_t length) {
        run.resize(length);
        from.readAt(offset, run);
        to.writeAt(offset, run);
        return true;
    });
    to.sync();
}

bool haveSameContent(File& one, File& other)
{
    if (one.size() != other.size()) {
        return false;
    }
    Bytes run;
    Bytes otherRun;
    return forEachRun(one.size(), [&](std::uint64_t offset, std::size_t length) {
        run.resize(length);
        otherRun.resize(length);
        one.readAt(offset, run);
        other.readAt(offset, otherRun);
        return run == otherRun;
    });
}

} // namespace jet
