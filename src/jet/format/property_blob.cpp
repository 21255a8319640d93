#include "jet/format/property_blob.h"

#include "jet/format/text_codec.h"
#include "jet/format/utf.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint32_t kMark = 0x0032524D; // "MR2"
constexpr std::uint16_t kNamesChunk = 0x80;
constexpr std::size_t kChunkHeader = 6;     // length and kind
constexpr std::size_t kNameBlockHeader = 6; // length of the block and of the name
constexpr std::size_t kValueHeader = 8;     // length, flag, type, name, length of the data

constexpr auto kBooleanType = static_cast<std::uint8_t>(ColumnType::Boolean);

[[noreturn]] void throwCorrupt()
{
    throw Error(ErrorCode::Corrupt, "A list of properties contradicts itself");
}

ByteView takeFront(ByteView& bytes, std::size_t length)
{
    const ByteView front = slice(bytes, 0, length);
    bytes = bytes.subspan(length);
    return front;
}

std::vector<std::string> decodeNames(ByteView body)
{
    std::vector<std::string> names;
    while (!body.empty()) {
        const std::size_t length = getU16(takeFront(body, 2), 0);
        names.push_back(toUtf8(decodePlainText(takeFront(body, length))));
    }
    return names;
}

Property decodeProperty(ByteView entry, const std::vector<std::string>& names)
{
    const std::size_t name = getU16(entry, 4);
    if (name >= names.size()) {
        throwCorrupt();
    }
    const ByteView data = slice(entry, kValueHeader, getU16(entry, 6));
    return Property{.name = names[name],
                    .structural = getU8(entry, 2) != 0,
                    .type = getU8(entry, 3),
                    .data = Bytes(data.begin(), data.end())};
}

PropertySet decodeSet(std::uint16_t kind, ByteView body, const std::vector<std::string>& names)
{
    const std::uint32_t blockLength = getU32(body, 0);
    const ByteView block = takeFront(body, blockLength);
    PropertySet set;
    set.kind = kind;
    set.owner = toUtf8(decodePlainText(slice(block, kNameBlockHeader, getU16(block, 4))));
    while (!body.empty()) {
        const std::size_t length = getU16(body, 0);
        if (length < kValueHeader) {
            throwCorrupt();
        }
        set.properties.push_back(decodeProperty(takeFront(body, length), names));
    }
    return set;
}

} // namespace

const Property* PropertySet::find(std::string_view name) const
{
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [&](const Property& property) { return property.name == name; });
    return found == properties.end() ? nullptr : &*found;
}

std::optional<bool> PropertySet::boolean(std::string_view name) const
{
    const Property* property = find(name);
    if (property == nullptr || property->type != kBooleanType || property->data.size() != 1) {
        return std::nullopt;
    }
    return property->data[0] != std::byte{0};
}

const PropertySet* PropertyBlob::find(std::string_view owner) const
{
    const auto found =
        std::find_if(sets.begin(), sets.end(), [&](const PropertySet& set) { return set.owner == owner; });
    return found == sets.end() ? nullptr : &*found;
}

PropertyBlob decodePropertyBlob(ByteView bytes)
{
    PropertyBlob blob;
    if (bytes.empty()) {
        return blob;
    }
    if (getU32(takeFront(bytes, 4), 0) != kMark) {
        throw Error(ErrorCode::Corrupt, "A list of properties does not begin with its mark");
    }
    while (!bytes.empty()) {
        const std::uint32_t length = getU32(bytes, 0);
        if (length < kChunkHeader) {
            throwCorrupt();
        }
        const ByteView chunk = takeFront(bytes, length);
        const std::uint16_t kind = getU16(chunk, 4);
        const ByteView body = chunk.subspan(kChunkHeader);
        if (kind == kNamesChunk) {
            blob.names = decodeNames(body);
        } else {
            blob.sets.push_back(decodeSet(kind, body, blob.names));
        }
    }
    return blob;
}

} // namespace jet
