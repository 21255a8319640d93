// What each UTF-16 unit adds to a text's key: the data behind text_key.cpp.
#pragma once

#include <cstdint>
#include <span>

namespace jet {

/// Neighbouring units that add the same, or codes that rise by 1. A run ends where the next one begins.
struct TextKeyRun {
    enum class Kind : std::uint8_t {
        Nothing,
        Code, ///< a code of its own, perhaps with accents
        Mark, ///< no code; changes the accents of what stands before
        Tie,  ///< no code; breaks ties between texts that are alike otherwise
    };
    char16_t first = 0;
    Kind kind = Kind::Nothing;
    std::uint8_t codeLength = 0; ///< 1 to 4 bytes; Mark and Tie: 1
    std::uint32_t code = 0;      ///< its last byte is the least significant one
    std::uint8_t accentLength = 0;
    std::uint16_t accents = 0;
    std::uint8_t rising = 0; ///< 1: the code is that of `first` and rises by 1 from unit to unit
    std::uint8_t kana = 0;   ///< 2 or 3 for small and full Japanese kana
};

/// All runs in the order of their units; the first begins at 0.
[[nodiscard]] std::span<const TextKeyRun> textKeyRuns();

} // namespace jet
