// Names are UTF-8 in the program and UTF-16 in the file.
#pragma once

#include <string>
#include <string_view>

namespace jet {

/// What is not Unicode (a lone surrogate, a broken sequence) becomes U+FFFD in either direction.
[[nodiscard]] std::string toUtf8(std::u16string_view text);
[[nodiscard]] std::u16string toUtf16(std::string_view text);

} // namespace jet
