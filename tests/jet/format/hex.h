// Bytes written as hexadecimal digits in tests.
#pragma once

#include "jet/disk/bytes.h"

#include <string>
#include <string_view>

namespace jet::test {

/// Blanks between bytes are skipped.
[[nodiscard]] inline Bytes fromHex(std::string_view text)
{
    Bytes bytes;
    std::string digits;
    for (const char character : text) {
        if (character != ' ') {
            digits += character;
        }
    }
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<std::byte>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

[[nodiscard]] inline std::string toHex(ByteView bytes)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const std::byte byte : bytes) {
        text += kDigits[std::to_integer<std::size_t>(byte >> 4)];
        text += kDigits[std::to_integer<std::size_t>(byte & std::byte{0x0F})];
    }
    return text;
}

} // namespace jet::test
