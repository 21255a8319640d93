// Where an index page keeps what (FORMAT.md, "Index pages"); shared by IndexPage and IndexPageContent alone.
#pragma once

#include "jet/disk/page.h"
#include "jet/format/index_page.h"

namespace jet::index_page_layout {

// Offsets in the page.
inline constexpr std::size_t kKind = 0;
inline constexpr std::size_t kInUse = 1;
inline constexpr std::size_t kFree = 2;
inline constexpr std::size_t kOwner = 4;
inline constexpr std::size_t kPrevious = 12;
inline constexpr std::size_t kNext = 16;
inline constexpr std::size_t kTail = 20;
inline constexpr std::size_t kPrefix = 24;
inline constexpr std::size_t kMask = 27;
inline constexpr std::size_t kEntries = 480;

inline constexpr std::size_t kMaskSize = kEntries - kMask;
static_assert(kEntries + kIndexEntryArea == kPageSize);

/// Sets or clears the bit that tells that an entry ends there, counted from the start of the entries.
inline void markEnd(Page& page, std::size_t end, bool on)
{
    std::byte& bits = page[kMask + end / 8];
    const std::byte bit = std::byte{1} << static_cast<int>(end % 8);
    bits = on ? bits | bit : bits & ~bit;
}

} // namespace jet::index_page_layout
