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

void appendU16(Bytes& out, std::size_t number)
{
    if (number > 0xFFFF) {
        throw Error(ErrorCode::ValueTooLong, "A property is too long");
    }
    out.resize(out.size() + 2);
    putU16(out, out.size() - 2, static_cast<std::uint16_t>(number));
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

void appendChunk(Bytes& out, std::uint16_t kind, ByteView body)
{
    Bytes head(kChunkHeader);
    putU32(head, 0, static_cast<std::uint32_t>(kChunkHeader + body.size()));
    putU16(head, 4, kind);
    append(out, head);
    append(out, body);
}

void appendProperty(Bytes& out, const Property& property, std::size_t name)
{
    appendU16(out, kValueHeader + property.data.size());
    out.push_back(property.structural ? std::byte{1} : std::byte{0});
    out.push_back(std::byte{property.type});
    appendU16(out, name);
    appendU16(out, property.data.size());
    append(out, property.data);
}

Bytes encodeSet(const PropertySet& set, std::vector<std::string>& names)
{
    const Bytes owner = encodePlainText(toUtf16(set.owner));
    Bytes body(4);
    putU32(body, 0, static_cast<std::uint32_t>(kNameBlockHeader + owner.size()));
    appendU16(body, owner.size());
    append(body, owner);
    for (const Property& property : set.properties) {
        auto found = std::find(names.begin(), names.end(), property.name);
        if (found == names.end()) {
            found = names.insert(found, property.name);
        }
        appendProperty(body, property, static_cast<std::size_t>(found - names.begin()));
    }
    return body;
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

Bytes encodePropertyBlob(const PropertyBlob& blob)
{
    std::vector<std::string> names = blob.names;
    Bytes setChunks;
    for (const PropertySet& set : blob.sets) {
        appendChunk(setChunks, set.kind, encodeSet(set, names));
    }
    Bytes nameList;
    for (const std::string& name : names) {
        const Bytes text = encodePlainText(toUtf16(name));
        appendU16(nameList, text.size());
        append(nameList, text);
    }
    Bytes bytes(4);
    putU32(bytes, 0, kMark);
    appendChunk(bytes, kNamesChunk, nameList);
    append(bytes, setChunks);
    return bytes;
}

} // namespace jet
