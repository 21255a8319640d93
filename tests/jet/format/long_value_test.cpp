#include "jet/format/long_value.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

TEST(LongValue, IsInlineWhenItFollowsTheDescriptor)
{
    const Bytes slot = fromHex("03000080 00000000 00000000 A1A2A3");
    const LongValue value = decodeLongValue(slot);
    EXPECT_EQ(value.storage, LongValue::Storage::Inline);
    EXPECT_EQ(toHex(value.inlineBytes), "a1a2a3");
    EXPECT_EQ(encodeLongValue(value), slot);
}

TEST(LongValue, IsOneRow)
{
    const Bytes slot = fromHex("C8000040 01350000 00000000");
    const LongValue value = decodeLongValue(slot);
    EXPECT_EQ(value.storage, LongValue::Storage::OneRow);
    EXPECT_EQ(value.length, 200U);
    EXPECT_EQ(value.first, (RowPointer{.page = 0x35, .row = 1}));
    EXPECT_EQ(encodeLongValue(value), slot);
}

TEST(LongValue, IsAChain)
{
    const Bytes slot = fromHex("983A0000 00320000 00000000");
    const LongValue value = decodeLongValue(slot);
    EXPECT_EQ(value.storage, LongValue::Storage::Chain);
    EXPECT_EQ(value.length, 15000U);
    EXPECT_EQ(value.first, (RowPointer{.page = 50, .row = 0}));
    EXPECT_EQ(encodeLongValue(value), slot);
}

TEST(LongValue, IsEmptyInASlotWithoutBytes)
{
    const LongValue value = decodeLongValue({});
    EXPECT_EQ(value.storage, LongValue::Storage::Inline);
    EXPECT_TRUE(value.inlineBytes.empty());
    EXPECT_EQ(toHex(encodeLongValue(value)), "000000800000000000000000");
}

TEST(LongValue, IgnoresTheUnknownField)
{
    EXPECT_EQ(decodeLongValue(fromHex("983A0000 00320000 DEADBEEF")).length, 15000U);
}

TEST(LongValue, IsCorruptWhenCutAnywhere)
{
    const Bytes slot = fromHex("03000080 00000000 00000000 A1A2A3");
    for (std::size_t length = 1; length < slot.size(); ++length) {
        EXPECT_THAT([&] { static_cast<void>(decodeLongValue(ByteView(slot).first(length))); },
                    throwsError(ErrorCode::Corrupt))
            << length;
    }
}

TEST(LongValue, RefusesALengthThatTheDescriptorCannotHold)
{
    LongValue value;
    value.storage = LongValue::Storage::Chain;
    value.length = 0x40000000;
    EXPECT_THAT([&] { static_cast<void>(encodeLongValue(value)); }, throwsError(ErrorCode::ValueTooLong));
}

} // namespace
} // namespace jet
