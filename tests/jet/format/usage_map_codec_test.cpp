#include "jet/format/usage_map_codec.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

TEST(BitView, CountsFromTheLeastSignificantBit)
{
    const Bytes bytes = fromHex("01 80 00 10"); // bits 0, 15 and 28
    const BitView bits(bytes);
    EXPECT_EQ(bits.size(), 32U);
    EXPECT_TRUE(bits.test(0));
    EXPECT_FALSE(bits.test(1));
    EXPECT_TRUE(bits.test(15));
    EXPECT_TRUE(bits.test(28));
    EXPECT_FALSE(bits.test(32)) << "past the end nothing is set";
    EXPECT_EQ(bits.firstFrom(0), 0U);
    EXPECT_EQ(bits.firstFrom(1), 15U);
    EXPECT_EQ(bits.firstFrom(15), 15U);
    EXPECT_EQ(bits.firstFrom(16), 28U);
    EXPECT_EQ(bits.firstFrom(29), std::nullopt);
    EXPECT_EQ(bits.firstFrom(1000), std::nullopt);
    EXPECT_EQ(bits.lastBefore(1000), 28U);
    EXPECT_EQ(bits.lastBefore(29), 28U);
    EXPECT_EQ(bits.lastBefore(28), 15U);
    EXPECT_EQ(bits.lastBefore(15), 0U);
    EXPECT_EQ(bits.lastBefore(0), std::nullopt);
}

TEST(BitView, AgreesWithABitByBitSearch)
{
    const Bytes bytes = fromHex("00 12 00 00 C3 00 01 FF 00 00");
    const BitView bits(bytes);
    for (std::size_t from = 0; from <= bits.size(); ++from) {
        std::optional<std::size_t> first;
        std::optional<std::size_t> last;
        for (std::size_t bit = 0; bit < bits.size(); ++bit) {
            if (bits.test(bit) && bit >= from && !first) {
                first = bit;
            }
            if (bits.test(bit) && bit < from) {
                last = bit;
            }
        }
        EXPECT_EQ(bits.firstFrom(from), first) << from;
        EXPECT_EQ(bits.lastBefore(from), last) << from;
    }
}

TEST(SetBit, ChangesThatBitAlone)
{
    Bytes bytes = fromHex("00 FF");
    setBit(bytes, 3, true);
    setBit(bytes, 9, false);
    EXPECT_EQ(toHex(bytes), "08fd");
    EXPECT_THAT([&] { setBit(bytes, 16, true); }, throwsError(ErrorCode::Corrupt));
}

TEST(UsageMapRow, ReadsAnInlineMap)
{
    const Bytes row = fromHex("00 1A000000 0100");
    const UsageMapRow map = UsageMapRow::decode(row);
    EXPECT_EQ(map.kind, UsageMapRow::Kind::Inline);
    EXPECT_EQ(map.startPage(), 26);
    EXPECT_EQ(toHex(map.bits()), "0100");
}

TEST(UsageMapRow, ReadsANegativeStartPage)
{
    EXPECT_EQ(UsageMapRow::decode(fromHex("00 F8FFFFFF 00")).startPage(), -8);
}

TEST(UsageMapRow, ReadsAReferenceMap)
{
    const Bytes row = fromHex("01 A4030000 00000000 FFFFFFFF 00");
    const UsageMapRow map = UsageMapRow::decode(row);
    EXPECT_EQ(map.kind, UsageMapRow::Kind::Reference);
    ASSERT_EQ(map.pointerCount(), 3U) << "bytes too few for another pointer do not count";
    EXPECT_EQ(map.pointer(0), 932U);
    EXPECT_EQ(map.pointer(1), 0U);
    EXPECT_EQ(map.pointer(2), 0xFFFFFFFFU);
}

TEST(UsageMapRow, RefusesOtherKindsAndShortRows)
{
    for (const char* hex : {"", "02 00000000 00", "00 000000"}) {
        const Bytes row = fromHex(hex);
        EXPECT_THAT([&] { static_cast<void>(UsageMapRow::decode(row)); }, throwsError(ErrorCode::Corrupt)) << hex;
    }
    EXPECT_EQ(UsageMapRow::decode(fromHex("00 00000000")).bits().size(), 0U);
    EXPECT_EQ(UsageMapRow::decode(fromHex("01")).pointerCount(), 0U);
}

TEST(UsageMapRow, IsMadeAnewInTheSameBytes)
{
    Bytes row = fromHex("01 A4030000 11223344");
    initializeInlineMap(row, 24);
    EXPECT_EQ(toHex(row), "001800000000000000");
    setBit(MutableBytes(row).subspan(UsageMapRow::kInlineHeader), 9, true);
    EXPECT_EQ(toHex(row), "001800000000020000");
    initializeReferenceMap(row);
    putBitmapPointer(row, 1, 0x0102);
    EXPECT_EQ(toHex(row), "010000000002010000");
}

TEST(BitmapPage, HasItsMarkAndNoMembers)
{
    Page page{};
    page.fill(std::byte{0xFF});
    EXPECT_FALSE(isBitmapPage(page));
    initializeBitmapPage(page);
    EXPECT_TRUE(isBitmapPage(page));
    EXPECT_EQ(toHex(slice(ByteView(page), 0, 6)), "050100000000");
    EXPECT_EQ(BitView(bitmapOf(ByteView(page))).size(), 32736U);
    EXPECT_EQ(BitView(bitmapOf(ByteView(page))).firstFrom(0), std::nullopt);
}

} // namespace
} // namespace jet
