// The unit in which a file is read, cached and written.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace jet {

inline constexpr std::size_t kPageSize = 4096;
using Page = std::array<std::byte, kPageSize>;
/// A page that stays valid and unchanged as long as somebody holds it.
using PageRef = std::shared_ptr<const Page>;

/// The format allows no file beyond 2 GiB.
inline constexpr std::uint32_t kMaxPageCount = 0x8000'0000U / kPageSize;

[[nodiscard]] constexpr std::uint64_t pageOffset(std::uint32_t page)
{
    return std::uint64_t{page} * kPageSize;
}

} // namespace jet
