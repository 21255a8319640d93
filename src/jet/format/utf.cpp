#include "jet/format/utf.h"

#include <cstdint>

namespace jet {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool isHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUtf8(std::string& out, char32_t point)
{
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0 | (point >> 6U));
        put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        put(0xE0 | (point >> 12U));
        put(0x80 | ((point >> 6U) & 0x3F));
        put(0x80 | (point & 0x3F));
    } else {
        put(0xF0 | (point >> 18U));
        put(0x80 | ((point >> 12U) & 0x3F));
        put(0x80 | ((point >> 6U) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
}

void appendUtf16(std::u16string& out, char32_t point)
{
    if (point >= 0x10000) {
        point -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (point >> 10U)));
        out.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
    } else {
        out.push_back(static_cast<char16_t>(point));
    }
}

// Takes one character off the front; a broken sequence yields U+FFFD for each byte that begins none.
char32_t takeCharacter(std::string_view& text)
{
    const auto byteAt = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byteAt(0);
    std::size_t length = 1;
    char32_t point = lead;
    char32_t lowest = 0;
    if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        point = lead & 0x07U;
        lowest = 0x10000;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        length = 3;
        point = lead & 0x0FU;
        lowest = 0x800;
    } else if (lead >= 0xC2 && lead < 0xE0) {
        length = 2;
        point = lead & 0x1FU;
        lowest = 0x80;
    } else if (lead >= 0x80) {
        point = kReplacement;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= text.size() || (byteAt(i) & 0xC0U) != 0x80) {
            text.remove_prefix(1);
            return kReplacement;
        }
        point = (point << 6U) | (byteAt(i) & 0x3FU);
    }
    if (point < lowest || point > 0x10FFFF || isHighSurrogate(point) || isLowSurrogate(point)) {
        text.remove_prefix(1);
        return kReplacement;
    }
    text.remove_prefix(length);
    return point;
}

} // namespace

std::string toUtf8(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            ++i;
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10U) + (char32_t{text[i]} - 0xDC00));
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            appendUtf8(out, kReplacement);
        } else {
            appendUtf8(out, unit);
        }
    }
    return out;
}

std::u16string toUtf16(std::string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty()) {
        appendUtf16(out, takeCharacter(text));
    }
    return out;
}

} // namespace jet
