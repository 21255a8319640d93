#include "jet/format/header_page.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"
#include "jet/support/sample_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

// 21 November 2015, 22:40:30: 3E 85 D3 3B 3E AB E4 40.
constexpr double kCreated = 42329.94479166666;

std::string part(const Page& page, std::size_t offset, std::size_t length)
{
    return toHex(slice(ByteView(page), offset, length));
}

TEST(HeaderPage, BeginsWithTheMarkTheNameAndTheVersion)
{
    const Page page = encodeHeaderPage({});
    EXPECT_EQ(part(page, 0, 24), toHex(fromHex("00010000 5374616E64617264204A657420444200 01000000")));
    EXPECT_EQ(part(page, 0x98, 8), "54060000342e3000");
}

TEST(HeaderPage, MasksItsFieldsWithTheStreamOfTheFixedKey)
{
    const Page page = encodeHeaderPage({});
    // 00 01 00 00, 01 01 00 00, 02 00 00 00 under B5 6F 03 62, 61 08 C2 55, EB A9 67 72.
    EXPECT_EQ(part(page, 0x18, 12), toHex(fromHex("B56E0362 6009C255 E9A96772")));
    // The region ends in zeros, which show the end of the stream.
    EXPECT_EQ(part(page, 0x93, 5), toHex(fromHex("EDE92D62D4")));
}

TEST(HeaderPage, CarriesFreshCommitPairs)
{
    const Page page = encodeHeaderPage({});
    EXPECT_EQ(part(page, 0xDFE, 2), "0000");
    EXPECT_EQ(part(page, 0xE00, 6), "010100010001");
    EXPECT_EQ(part(page, 0xFFE, 2), "0001");
}

TEST(HeaderPage, GivesBackWhatWasWritten)
{
    HeaderPage header;
    header.globalMap = {.page = 7, .row = 3};
    header.systemTables = {12, 13, 14, 15};
    header.codePage = 1251;
    header.engineBuild = 9999;
    header.sortOrder = {.language = 1031, .version = 1};
    header.created = DateTime{kCreated};
    header.password = u"Zucker\u00E4";

    const Page page = encodeHeaderPage(header);
    const HeaderPage read = decodeHeaderPage(page);

    EXPECT_EQ(read.globalMap, header.globalMap);
    EXPECT_EQ(read.secondMap, (RowPointer{.page = 1, .row = 1}));
    EXPECT_EQ(read.systemTables, header.systemTables);
    EXPECT_EQ(read.codePage, 1251);
    EXPECT_EQ(read.encodingKey, 0U);
    EXPECT_EQ(read.engineBuild, 9999U);
    EXPECT_EQ(read.sortOrder, header.sortOrder);
    EXPECT_EQ(read.created, header.created);
    EXPECT_EQ(read.password, header.password);
    EXPECT_EQ(globalMapOf(page), header.globalMap);
}

TEST(HeaderPage, HidesTheLackOfAPasswordBehindTheDate)
{
    HeaderPage header;
    header.created = DateTime{42329.5}; // 0xA559 days
    const Page masked = encodeHeaderPage(header);
    header.created = DateTime{0};
    const Page plain = encodeHeaderPage(header);
    for (std::size_t i = 0; i < 40; i += 4) {
        EXPECT_EQ(masked[0x42 + i] ^ plain[0x42 + i], std::byte{0x59}) << i;
        EXPECT_EQ(masked[0x43 + i] ^ plain[0x43 + i], std::byte{0xA5}) << i;
        EXPECT_EQ(masked[0x44 + i] ^ plain[0x44 + i], std::byte{0}) << i;
    }
    EXPECT_TRUE(decodeHeaderPage(masked).password.empty());
}

TEST(HeaderPage, RefusesAPasswordThatIsTooLong)
{
    HeaderPage header;
    header.password = std::u16string(21, u'x');
    EXPECT_THAT([&] { static_cast<void>(encodeHeaderPage(header)); }, throwsError(ErrorCode::InvalidArgument));
}

TEST(CheckHeader, TakesAFreshPage)
{
    EXPECT_NO_THROW(checkHeader(encodeHeaderPage({})));
}

TEST(CheckHeader, RefusesWhatIsNoAccessFile)
{
    const auto check = [](ByteView bytes) { return [bytes] { checkHeader(bytes); }; };
    const Page fresh = encodeHeaderPage({});
    EXPECT_THAT(check({}), throwsError(ErrorCode::NotADatabase));
    EXPECT_THAT(check(ByteView(fresh).first(0x97)), throwsError(ErrorCode::NotADatabase));
    Page page = fresh;
    page[0] = std::byte{1};
    EXPECT_THAT(check(page), throwsError(ErrorCode::NotADatabase));
    page = fresh;
    page[5] = std::byte{'x'};
    EXPECT_THAT(check(page), throwsError(ErrorCode::NotADatabase, "not an Access database"));
}

TEST(CheckHeader, NamesTheVersionThatItRefuses)
{
    const auto withVersion = [](std::uint32_t version) {
        Page page = encodeHeaderPage({});
        putU32(page, 0x14, version);
        return [page] { checkHeader(page); };
    };
    EXPECT_THAT(withVersion(0), throwsError(ErrorCode::UnsupportedVersion, "Access 97"));
    EXPECT_THAT(withVersion(2), throwsError(ErrorCode::UnsupportedVersion, "Access 2007 or later"));
    EXPECT_THAT(withVersion(6), throwsError(ErrorCode::UnsupportedVersion, "Access 2007 or later"));

    Page ace = encodeHeaderPage({});
    putBytes(ace, 4, fromHex("5374616E6461726420 414345 20444200")); // "Standard ACE DB"
    EXPECT_THAT([&] { checkHeader(ace); }, throwsError(ErrorCode::UnsupportedVersion, "Access 2007 or later"));
    Page money = encodeHeaderPage({});
    putBytes(money, 4, fromHex("4D534953414D204461746162617365 00")); // "MSISAM Database"
    EXPECT_THAT([&] { checkHeader(money); }, throwsError(ErrorCode::UnsupportedVersion, "Microsoft Money"));
}

TEST(CheckHeader, RefusesAnEncodedFile)
{
    HeaderPage header;
    header.encodingKey = 0x12345678;
    const Page page = encodeHeaderPage(header);
    EXPECT_THAT([&] { checkHeader(page); }, throwsError(ErrorCode::Encoded));
}

TEST(HeaderPage, IsCorruptWithoutItsPointers)
{
    HeaderPage header;
    header.systemTables[2] = 0;
    const Page noTable = encodeHeaderPage(header);
    EXPECT_THAT([&] { static_cast<void>(decodeHeaderPage(noTable)); }, throwsError(ErrorCode::Corrupt));
    header = {};
    header.globalMap.page = 0;
    const Page noMap = encodeHeaderPage(header);
    EXPECT_THAT([&] { static_cast<void>(decodeHeaderPage(noMap)); }, throwsError(ErrorCode::Corrupt));
}

class SampleHeader : public testing::TestWithParam<std::filesystem::path>
{
};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleHeader);

TEST_P(SampleHeader, EncodesToTheBytesThatItCameFrom)
{
    Page page{};
    std::ifstream file(GetParam(), std::ios::binary);
    std::string text(kPageSize, '\0');
    ASSERT_TRUE(file.read(text.data(), kPageSize));
    std::transform(text.begin(), text.end(), page.begin(), [](char byte) { return static_cast<std::byte>(byte); });

    const HeaderPage header = decodeHeaderPage(page);
    EXPECT_EQ(header.globalMap, (RowPointer{.page = 1, .row = 0}));
    EXPECT_TRUE(header.password.empty());
    // Later sessions changed commit pairs.
    EXPECT_EQ(part(encodeHeaderPage(header), 0, 0xE00), part(page, 0, 0xE00));
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleHeader, testing::ValuesIn(test::sampleFiles()), test::sampleName);

} // namespace
} // namespace jet
