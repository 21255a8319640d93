#include "jet/format/property_blob.h"

#include "jet/format/hex.h"
#include "jet/format/text_codec.h"
#include "jet/support/error_matchers.h"
#include "jet/support/property_blob_encoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet {
namespace {

using test::encodePropertyBlob;
using test::fromHex;
using test::throwsError;
using test::toHex;

// AccessVersion "08.50" (text) and Build 6620 (long) of the database itself.
constexpr const char* kVersionBlob =
    "4D523200 "
    "2E000000 8000 1A00 410063006300650073007300560065007200730069006F006E00 0A00 4200750069006C006400 "
    "2A000000 0000 06000000 0000 "
    "1200 00 0A 0000 0A00 300038002E0035003000 "
    "0C00 00 04 0100 0400 DC190000";

TEST(PropertyBlob, ReadsNamesAndValues)
{
    const PropertyBlob blob = decodePropertyBlob(fromHex(kVersionBlob));
    EXPECT_THAT(blob.names, testing::ElementsAre("AccessVersion", "Build"));
    ASSERT_EQ(blob.sets.size(), 1U);
    const PropertySet* object = blob.find("");
    ASSERT_NE(object, nullptr);
    ASSERT_NE(object->find("AccessVersion"), nullptr);
    EXPECT_EQ(object->find("AccessVersion")->type, 10);
    EXPECT_EQ(decodePlainText(object->find("AccessVersion")->data), u"08.50");
    ASSERT_NE(object->find("Build"), nullptr);
    EXPECT_EQ(toHex(object->find("Build")->data), "dc190000");
    EXPECT_EQ(object->boolean("Build"), std::nullopt) << "it is a number";
    EXPECT_EQ(object->find("Caption"), nullptr);
    EXPECT_EQ(blob.find("Comment"), nullptr);
}

TEST(PropertyBlob, WritesTheBytesThatItRead)
{
    EXPECT_EQ(toHex(encodePropertyBlob(decodePropertyBlob(fromHex(kVersionBlob)))), toHex(fromHex(kVersionBlob)));
}

TEST(PropertyBlob, IsBuiltFromNothing)
{
    const PropertySet object{
        .owner = {},
        .kind = 0,
        .properties = {
            {.name = "AccessVersion", .structural = false, .type = 10, .data = encodePlainText(u"08.50")},
            {.name = "Build", .structural = false, .type = 4, .data = fromHex("DC190000")},
        }};
    const PropertyBlob blob{.sets = {object}, .names = {}};
    EXPECT_EQ(toHex(encodePropertyBlob(blob)), toHex(fromHex(kVersionBlob)));
}

TEST(PropertyBlob, HoldsPropertiesOfColumns)
{
    const PropertySet mmol{.owner = "Mmol",
                           .kind = 1,
                           .properties = {{.name = "Required", .structural = true, .type = 1, .data = fromHex("00")}}};
    const PropertySet comment{
        .owner = "Comment",
        .kind = 1,
        .properties = {{.name = "AllowZeroLength", .structural = true, .type = 1, .data = fromHex("FF")}}};
    const PropertyBlob blob{.sets = {mmol, comment}, .names = {}};
    EXPECT_EQ(toHex(encodePropertyBlob(blob)),
              toHex(fromHex("4D523200 "
                            "38000000 8000 1000 5200650071007500690072006500 6400 "
                            "1E00 41006C006C006F0077005A00650072006F004C0065006E00670074006800 "
                            "1D000000 0100 0E000000 0800 4D006D006F006C00 0900 01 01 0000 0100 00 "
                            "23000000 0100 14000000 0E00 43006F006D006D0065006E007400 0900 01 01 0100 0100 FF")));
    const PropertyBlob read = decodePropertyBlob(encodePropertyBlob(blob));
    ASSERT_NE(read.find("Mmol"), nullptr);
    EXPECT_EQ(read.find("Mmol")->boolean("Required"), false);
    EXPECT_EQ(read.find("Comment")->boolean("AllowZeroLength"), true);
    EXPECT_EQ(read.find("Comment")->boolean("Required"), std::nullopt);
    EXPECT_TRUE(read.find("Mmol")->find("Required")->structural);
}

TEST(PropertyBlob, KeepsWhatItDoesNotKnow)
{
    PropertyBlob blob = decodePropertyBlob(fromHex(kVersionBlob));
    std::vector<Property>& properties = blob.sets.front().properties;
    properties.push_back({.name = "NameMap", .structural = false, .type = 11, .data = fromHex("0ACCDE")});
    properties.front().data = encodePlainText(u"09.50");
    const PropertyBlob read = decodePropertyBlob(encodePropertyBlob(blob));
    EXPECT_EQ(read.find("")->find("NameMap")->type, 11);
    EXPECT_EQ(toHex(read.find("")->find("NameMap")->data), "0accde");
    EXPECT_EQ(toHex(read.find("")->find("Build")->data), "dc190000");
}

TEST(PropertyBlob, IsEmptyWhenThereAreNoBytes)
{
    EXPECT_TRUE(decodePropertyBlob({}).sets.empty());
}

TEST(PropertyBlob, IsCorruptWhenCutAnywhereButBetweenChunks)
{
    const Bytes bytes = fromHex(kVersionBlob);
    for (std::size_t length = 1; length < bytes.size(); ++length) {
        const ByteView cut = ByteView(bytes).first(length);
        if (length == 4 || length == 4 + 0x2E) {
            EXPECT_TRUE(decodePropertyBlob(cut).sets.empty()) << length;
        } else {
            EXPECT_THAT([&] { static_cast<void>(decodePropertyBlob(cut)); }, throwsError(ErrorCode::Corrupt)) << length;
        }
    }
}

TEST(PropertyBlob, SurvivesAnyByteBeingWrong)
{
    const Bytes bytes = fromHex(kVersionBlob);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes damaged = bytes;
            damaged[at] = static_cast<std::byte>(value);
            try {
                static_cast<void>(encodePropertyBlob(decodePropertyBlob(damaged)));
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorCode::Corrupt) << at;
            }
        }
    }
}

} // namespace
} // namespace jet
