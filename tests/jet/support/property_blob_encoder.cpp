#include "jet/support/property_blob_encoder.h"

#include "jet/format/text_codec.h"
#include "jet/format/utf.h"

#include <algorithm>

namespace jet::test {
namespace {

constexpr std::uint32_t kMark = 0x0032524D; // "MR2"
constexpr std::uint16_t kNamesChunk = 0x80;
constexpr std::size_t kChunkHeader = 6;     // length and kind
constexpr std::size_t kNameBlockHeader = 6; // length of the block and of the name
constexpr std::size_t kValueHeader = 8;     // length, flag, type, name, length of the data

void appendU16(Bytes& out, std::size_t number)
{
    if (number > 0xFFFF) {
        throw Error(ErrorCode::ValueTooLong, "A property is too long");
    }
    out.resize(out.size() + 2);
    putU16(out, out.size() - 2, static_cast<std::uint16_t>(number));
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

} // namespace jet::test
