#include "jet/format/header_page.h"

#include "jet/disk/file_version.h"
#include "jet/format/text_codec.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace jet {
namespace {

// Offsets in page 0.
constexpr std::size_t kMark = 0x00;
constexpr std::size_t kName = 0x04;
constexpr std::size_t kNameSize = 16;
constexpr std::size_t kVersion = 0x14;
constexpr std::size_t kMasked = 0x18;
constexpr std::size_t kMaskedSize = 128;
constexpr std::size_t kAfterMasked = 0x98;
constexpr std::size_t kCommitPairSize = 2;

// Offsets in the masked region.
constexpr std::size_t kGlobalMap = 0x00;
constexpr std::size_t kSecondMap = 0x04;
constexpr std::size_t kSystemTables = 0x08;
constexpr std::size_t kCodePage = 0x24;
constexpr std::size_t kEncodingKey = 0x26;
constexpr std::size_t kPassword = 0x2A;
constexpr std::size_t kPasswordSize = 40;
constexpr std::size_t kEngineBuild = 0x52;
constexpr std::size_t kSortOrder = 0x56;
constexpr std::size_t kCreated = 0x5A;

constexpr std::uint32_t kHeaderMark = 0x100;
constexpr std::uint32_t kVersion4 = 1; // of Access 2000, 2002 and 2003

constexpr std::string_view kJetName = "Standard Jet DB";
constexpr std::string_view kAceName = "Standard ACE DB";
constexpr std::string_view kMoneyName = "MSISAM Database";

using MaskedRegion = std::array<std::byte, kMaskedSize>;

// The first bytes of the RC4 stream of a key that is the same in all files.
constexpr MaskedRegion maskStream()
{
    constexpr std::array<std::uint8_t, 4> key{0xC7, 0xDA, 0x39, 0x6B};
    std::array<std::uint8_t, 256> state{};
    for (std::size_t i = 0; i < state.size(); ++i) {
        state[i] = static_cast<std::uint8_t>(i);
    }
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + key[i % key.size()]);
        std::swap(state[i], state[j]);
    }
    MaskedRegion stream{};
    std::uint8_t i = 0;
    j = 0;
    for (std::byte& out : stream) {
        i = static_cast<std::uint8_t>(i + 1);
        j = static_cast<std::uint8_t>(j + state[i]);
        std::swap(state[i], state[j]);
        out = static_cast<std::byte>(state[static_cast<std::uint8_t>(state[i] + state[j])]);
    }
    return stream;
}

constexpr MaskedRegion kMask = maskStream();

MaskedRegion unmask(ByteView page)
{
    const ByteView stored = slice(page, kMasked, kMaskedSize);
    MaskedRegion region{};
    std::transform(stored.begin(), stored.end(), kMask.begin(), region.begin(),
                   [](std::byte left, std::byte right) { return left ^ right; });
    return region;
}

// The password is masked once more by the whole days of the creation date.
void maskPassword(MaskedRegion& region, double created)
{
    std::int32_t days = 0;
    if (std::abs(created) < static_cast<double>(std::numeric_limits<std::int32_t>::max())) {
        days = static_cast<std::int32_t>(created);
    }
    std::array<std::byte, 4> mask{};
    putU32(mask, 0, static_cast<std::uint32_t>(days));
    for (std::size_t i = 0; i < kPasswordSize; ++i) {
        region[kPassword + i] ^= mask[i % mask.size()];
    }
}

bool hasName(ByteView page, std::string_view name)
{
    const ByteView stored = slice(page, kName, kNameSize);
    return std::equal(name.begin(), name.end(), stored.begin(),
                      [](char letter, std::byte byte) { return static_cast<std::byte>(letter) == byte; }) &&
           stored[name.size()] == std::byte{0};
}

} // namespace

void checkHeader(ByteView page)
{
    if (page.size() < kMasked + kMaskedSize || getU32(page, kMark) != kHeaderMark) {
        throw Error(ErrorCode::NotADatabase, "The file is not an Access database.");
    }
    if (hasName(page, kAceName)) {
        throw Error(ErrorCode::UnsupportedVersion,
                    "The file was made by Access 2007 or later; only files of Access 2000, "
                    "2002 and 2003 can be opened.");
    }
    if (hasName(page, kMoneyName)) {
        throw Error(ErrorCode::UnsupportedVersion,
                    "The file is a Microsoft Money file; only files of Access 2000, 2002 and 2003 can be opened.");
    }
    if (!hasName(page, kJetName)) {
        throw Error(ErrorCode::NotADatabase, "The file is not an Access database.");
    }
    const std::uint32_t version = getU32(page, kVersion);
    if (version == 0) {
        throw Error(ErrorCode::UnsupportedVersion,
                    "The file was made by Access 97 or earlier; only files of Access 2000, "
                    "2002 and 2003 can be opened.");
    }
    if (version != kVersion4) {
        throw Error(ErrorCode::UnsupportedVersion, "The file was made by Access 2007 or later (format version " +
                                                       std::to_string(version) +
                                                       "); only files of Access 2000, 2002 and 2003 can be opened.");
    }
    if (getU32(unmask(page), kEncodingKey) != 0) {
        throw Error(ErrorCode::Encoded,
                    "The file is encoded; remove the encoding with the program that made it before opening it here.");
    }
}

HeaderPage decodeHeaderPage(ByteView page)
{
    checkHeader(page);
    MaskedRegion region = unmask(page);
    HeaderPage header;
    header.globalMap = getRowPointer(region, kGlobalMap);
    header.secondMap = getRowPointer(region, kSecondMap);
    for (std::size_t i = 0; i < header.systemTables.size(); ++i) {
        header.systemTables[i] = getU32(region, kSystemTables + 4 * i);
        if (header.systemTables[i] == 0) {
            throw Error(ErrorCode::Corrupt, 0, "The header names no page for a system table");
        }
    }
    if (header.globalMap.page == 0) {
        throw Error(ErrorCode::Corrupt, 0, "The header names no page for the map of free pages");
    }
    header.codePage = getU16(region, kCodePage);
    header.encodingKey = getU32(region, kEncodingKey);
    header.engineBuild = getU32(region, kEngineBuild);
    header.sortOrder = SortOrder{.language = getU16(region, kSortOrder), .version = getU8(region, kSortOrder + 3)};
    header.created = DateTime{getDouble(region, kCreated)};
    maskPassword(region, header.created.days);
    header.password = decodePlainText(slice(ByteView(region), kPassword, kPasswordSize));
    header.password.resize(std::min(header.password.size(), header.password.find(u'\0')));
    return header;
}

Page encodeHeaderPage(const HeaderPage& header)
{
    if (header.password.size() * 2 > kPasswordSize) {
        throw Error(ErrorCode::InvalidArgument, "A password has at most 20 characters");
    }
    MaskedRegion region{};
    putRowPointer(region, kGlobalMap, header.globalMap);
    putRowPointer(region, kSecondMap, header.secondMap);
    for (std::size_t i = 0; i < header.systemTables.size(); ++i) {
        putU32(region, kSystemTables + 4 * i, header.systemTables[i]);
    }
    putU16(region, kCodePage, header.codePage);
    putU32(region, kEncodingKey, header.encodingKey);
    putBytes(region, kPassword, encodePlainText(header.password));
    putU32(region, kEngineBuild, header.engineBuild);
    putU16(region, kSortOrder, header.sortOrder.language);
    putU8(region, kSortOrder + 3, header.sortOrder.version);
    putDouble(region, kCreated, header.created.days);
    maskPassword(region, header.created.days);

    Page page{};
    putU32(page, kMark, kHeaderMark);
    std::transform(kJetName.begin(), kJetName.end(), page.begin() + kName,
                   [](char letter) { return static_cast<std::byte>(letter); });
    putU32(page, kVersion, kVersion4);
    std::transform(region.begin(), region.end(), kMask.begin(), page.begin() + kMasked,
                   [](std::byte left, std::byte right) { return left ^ right; });
    putU32(page, kAfterMasked, 0x654);
    putU32(page, kAfterMasked + 4, 0x302E34); // "4.0"
    for (std::size_t offset = 0; offset < FileVersion::kCommitPairsSize; offset += kCommitPairSize) {
        putU8(page, FileVersion::kCommitPairsOffset + offset, offset == 0 ? 1 : 0);
        putU8(page, FileVersion::kCommitPairsOffset + offset + 1, 1);
    }
    return page;
}

RowPointer globalMapOf(ByteView page)
{
    std::array<std::byte, kRowPointerSize> pointer{};
    const ByteView stored = slice(page, kMasked + kGlobalMap, kRowPointerSize);
    for (std::size_t i = 0; i < pointer.size(); ++i) {
        pointer[i] = stored[i] ^ kMask[kGlobalMap + i];
    }
    return getRowPointer(pointer, 0);
}

} // namespace jet
