// What a row holds of a Memo or Ole value: the value itself when short, else where it is (FORMAT.md, "Long values").
#pragma once

#include "jet/format/row_pointer.h"

namespace jet {

// Sizes in bytes.
inline constexpr std::size_t kLongValueDescriptorSize = 12;
/// Longer values leave the row. Access keeps up to 64 bytes in it, the descriptor included.
inline constexpr std::size_t kMaximumInlineLongValue = 52;
/// A row of a long-value page holds no more than this, the pointer of a chain's part included; Access refuses more.
inline constexpr std::size_t kMaximumLongValueRow = 4076;

/// What the 30 bits of a stored length can say: a gigabyte.
inline constexpr std::uint32_t kMaximumLongValueLength = 0x3FFFFFFF;

struct LongValue {
    enum class Storage {
        Inline, ///< the value follows the descriptor
        OneRow, ///< the value is the whole row at `first`
        Chain,  ///< each part begins with the pointer to the next
    };
    Storage storage = Storage::Inline;
    std::uint32_t length = 0; ///< of the stored value, in bytes
    RowPointer first;
    ByteView inlineBytes; ///< the value, when inline; lies in the slot that was decoded
};

/// From a variable slot. A slot without bytes is an empty inline value; a row view takes it for a null before. Throws
/// Corrupt.
[[nodiscard]] LongValue decodeLongValue(ByteView slot);
/// The slot's bytes. Throws ValueTooLong past kMaximumLongValueLength.
[[nodiscard]] Bytes encodeLongValue(const LongValue& value);

} // namespace jet
