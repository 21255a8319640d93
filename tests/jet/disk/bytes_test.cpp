#include "jet/disk/bytes.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>

namespace jet {
namespace {

Bytes bytesOf(std::initializer_list<int> values)
{
    Bytes bytes;
    for (const int value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

TEST(Bytes, NumbersAreReadLeastSignificantByteFirst)
{
    const Bytes bytes = bytesOf({0x01, 0x02, 0x03, 0x84, 0x05, 0x06, 0x07, 0x88, 0xFF});
    EXPECT_EQ(getU8(bytes, 8), 0xFF);
    EXPECT_EQ(getU16(bytes, 0), 0x0201);
    EXPECT_EQ(getU24(bytes, 1), 0x840302U);
    EXPECT_EQ(getU32(bytes, 0), 0x84030201U);
    EXPECT_EQ(getU64(bytes, 0), 0x8807060584030201U);
    EXPECT_EQ(getU64(bytes, 1), 0xFF88070605840302U);
}

TEST(Bytes, NumbersAreWrittenLeastSignificantByteFirst)
{
    Bytes bytes(20, std::byte{0xEE});
    putU8(bytes, 0, 0x11);
    putU16(bytes, 1, 0x2322);
    putU24(bytes, 3, 0x363534);
    putU32(bytes, 6, 0x4A494847U);
    putU64(bytes, 10, 0x5857565554535251U);
    EXPECT_EQ(bytes, bytesOf({0x11, 0x22, 0x23, 0x34, 0x35, 0x36, 0x47, 0x48, 0x49, 0x4A,
                              0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0xEE, 0xEE}));
}

TEST(Bytes, IndexNumbersAreMostSignificantByteFirst)
{
    Bytes bytes(7);
    putBigEndian<std::uint32_t>(bytes, 0, 0x01020384U);
    putBigEndian<std::uint32_t, 3>(bytes, 4, 0xA0B0C0U);
    EXPECT_EQ(bytes, bytesOf({0x01, 0x02, 0x03, 0x84, 0xA0, 0xB0, 0xC0}));
    EXPECT_EQ(getBigEndian<std::uint32_t>(bytes, 0), 0x01020384U);
    EXPECT_EQ((getBigEndian<std::uint32_t, 3>(bytes, 4)), 0xA0B0C0U);
}

TEST(Bytes, ADoubleIsItsEightBytes)
{
    // 42329.9448, the date 21 November 2015 22:40:30, as an Access file holds it.
    const Bytes bytes = bytesOf({0x3E, 0x85, 0xD3, 0x3B, 0x3E, 0xAB, 0xE4, 0x40});
    EXPECT_NEAR(getDouble(bytes, 0), 42329.9448, 0.00005);
    Bytes one(8);
    putDouble(one, 0, -1.0);
    EXPECT_EQ(one, bytesOf({0, 0, 0, 0, 0, 0, 0xF0, 0xBF}));
}

TEST(Bytes, ReachingPastTheEndIsCorrupt)
{
    Bytes bytes(4);
    EXPECT_THAT([&] { (void)getU32(bytes, 1); }, test::throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { (void)getU8(bytes, 4); }, test::throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { putU16(bytes, 3, 1); }, test::throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { putBytes(bytes, 2, Bytes(3)); }, test::throwsError(ErrorCode::Corrupt));
    EXPECT_EQ(bytes, Bytes(4));
}

TEST(Bytes, AnOffsetNearTheLargestNumberDoesNotWrapAround)
{
    const Bytes bytes(4);
    EXPECT_THAT([&] { (void)slice(ByteView(bytes), SIZE_MAX, 2); }, test::throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { (void)slice(ByteView(bytes), 2, SIZE_MAX); }, test::throwsError(ErrorCode::Corrupt));
}

TEST(Bytes, AnEmptySliceAtTheEndIsThere)
{
    const Bytes bytes(4);
    EXPECT_TRUE(slice(ByteView(bytes), 4, 0).empty());
}

} // namespace
} // namespace jet
