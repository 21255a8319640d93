// Texts as rows hold them: UTF-16, or compressed to a byte a character (FORMAT.md, "Column types and values").
#pragma once

#include "jet/disk/bytes.h"

#include <string>
#include <string_view>

namespace jet {

/// Any stored text, compressed or not. Throws Corrupt when a character is cut in half.
[[nodiscard]] std::u16string decodeText(ByteView bytes);

/// Compressed when the column allows it and it pays (3 to 1024 characters, all of U+0001..U+00FF), else plain. Leading
/// U+FEFF are dropped: they could not be told from the mark of a compressed text.
[[nodiscard]] Bytes encodeText(std::u16string_view text, bool compressible);

/// UTF-16 without any mark, as in names and properties.
[[nodiscard]] std::u16string decodePlainText(ByteView bytes);
[[nodiscard]] Bytes encodePlainText(std::u16string_view text);

} // namespace jet
