#include "jet/format/text_codec.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::byte kMark0{0xFF};
constexpr std::byte kMark1{0xFE};
constexpr std::byte kSwitch{0};
constexpr std::size_t kMarkSize = 2;
constexpr std::size_t kShortestCompressed = 3; // in characters
constexpr std::size_t kLongestCompressed = 1024;

[[noreturn]] void throwHalfCharacter()
{
    throw Error(ErrorCode::Corrupt, "A text ends in the middle of a character");
}

char16_t latin(std::byte byte)
{
    return static_cast<char16_t>(std::to_integer<unsigned>(byte));
}

char16_t unitAt(ByteView bytes, std::size_t offset)
{
    return static_cast<char16_t>(std::to_integer<unsigned>(bytes[offset]) |
                                 (std::to_integer<unsigned>(bytes[offset + 1]) << 8U));
}

bool isCompressed(ByteView bytes)
{
    return bytes.size() >= kMarkSize && bytes[0] == kMark0 && bytes[1] == kMark1;
}

// Runs of one byte a character and of two, in turns; a zero byte ends either.
std::u16string decodeCompressed(ByteView bytes)
{
    std::u16string text;
    text.reserve(bytes.size());
    std::size_t i = 0;
    while (i < bytes.size()) {
        for (; i < bytes.size() && bytes[i] != kSwitch; ++i) {
            text.push_back(latin(bytes[i]));
        }
        for (++i; i < bytes.size() && bytes[i] != kSwitch; i += 2) {
            if (i + 1 == bytes.size() || bytes[i + 1] == kSwitch) {
                throwHalfCharacter();
            }
            text.push_back(unitAt(bytes, i));
        }
        ++i;
    }
    return text;
}

bool isCompressible(std::u16string_view text)
{
    return text.size() >= kShortestCompressed && text.size() <= kLongestCompressed &&
           std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit >= 0x01 && unit <= 0xFF; });
}

} // namespace

std::u16string decodeText(ByteView bytes)
{
    if (!isCompressed(bytes)) {
        return decodePlainText(bytes);
    }
    const ByteView body = bytes.subspan(kMarkSize);
    if (std::find(body.begin(), body.end(), kSwitch) != body.end()) {
        return decodeCompressed(body);
    }
    std::u16string text(body.size(), u'\0');
    std::transform(body.begin(), body.end(), text.begin(), latin);
    return text;
}

Bytes encodeText(std::u16string_view text, bool compressible)
{
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(u'\uFEFF')));
    if (!compressible || !isCompressible(text)) {
        return encodePlainText(text);
    }
    Bytes bytes(kMarkSize + text.size());
    bytes[0] = kMark0;
    bytes[1] = kMark1;
    std::transform(text.begin(), text.end(), bytes.begin() + kMarkSize,
                   [](char16_t unit) { return static_cast<std::byte>(unit); });
    return bytes;
}

std::u16string decodePlainText(ByteView bytes)
{
    if (bytes.size() % 2 != 0) {
        throwHalfCharacter();
    }
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = unitAt(bytes, 2 * i);
    }
    return text;
}

Bytes encodePlainText(std::u16string_view text)
{
    Bytes bytes(text.size() * 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        putU16(bytes, 2 * i, text[i]);
    }
    return bytes;
}

} // namespace jet
