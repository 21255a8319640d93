#include "jet/format/value_codec.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

Column columnOf(ColumnType type, std::uint16_t length)
{
    Column column;
    column.name = "Mmol";
    column.type = type;
    column.length = length;
    column.flags = Column::kOrdinary;
    column.extraFlags = Column::kCompressible;
    column.precision = 18;
    column.scale = 4;
    return column;
}

Column fixedColumnOf(ColumnType type, std::uint16_t length)
{
    Column column = columnOf(type, length);
    column.flags |= Column::kFixed;
    return column;
}

auto encoding(const Column& column, const Value& value)
{
    return [column, value] { static_cast<void>(encodeValue(column, value)); };
}

struct Stored {
    ColumnType type;
    std::uint16_t length;
    Value value;
    const char* bytes;
};

class StoredValue : public testing::TestWithParam<Stored>
{
};

TEST_P(StoredValue, HasTheseBytes)
{
    const Column column = columnOf(GetParam().type, GetParam().length);
    EXPECT_EQ(toHex(encodeValue(column, GetParam().value)), toHex(fromHex(GetParam().bytes)));
    EXPECT_EQ(decodeValue(column, fromHex(GetParam().bytes)), GetParam().value);
}

Guid exampleGuid()
{
    Guid guid;
    const Bytes printed = fromHex("00112233 4455 6677 8899 AABBCCDDEEFF");
    std::copy(printed.begin(), printed.end(), guid.bytes.begin());
    return guid;
}

INSTANTIATE_TEST_SUITE_P(
    Types, StoredValue,
    testing::Values(Stored{ColumnType::Byte, 1, std::uint8_t{200}, "C8"},
                    Stored{ColumnType::Integer, 2, std::int16_t{-2}, "FEFF"},
                    Stored{ColumnType::Long, 4, std::int32_t{51}, "33000000"},
                    Stored{ColumnType::Long, 4, std::numeric_limits<std::int32_t>::min(), "00000080"},
                    Stored{ColumnType::Currency, 8, Currency{-12345}, "C7CFFFFFFFFFFFFF"}, // -1.2345
                    Stored{ColumnType::Single, 4, 1.5F, "0000C03F"},
                    Stored{ColumnType::Double, 8, 7.5, "0000000000001E40"},
                    Stored{ColumnType::DateTime, 8, DateTime{2.25}, "0000000000000240"},
                    Stored{ColumnType::Binary, 10, fromHex("0011FF"), "0011FF"},
                    Stored{ColumnType::Text, 20, std::u16string(u"caf\u00E9"), "FFFE636166E9"},
                    Stored{ColumnType::Text, 20, std::u16string(), ""},
                    // Printed 00112233-4455-6677-8899-AABBCCDDEEFF.
                    Stored{ColumnType::Guid, 16, exampleGuid(), "33221100 5544 7766 8899 AABBCCDDEEFF"},
                    // -123456789012.3456: 1234567890123456 = 0x462D5_3C8ABAC0, the word for 2^32 before the lowest.
                    Stored{ColumnType::Numeric, 17,
                           Numeric{.negative = true, .magnitude = {0, 0, 0x000462D5, 0x3C8ABAC0}, .scale = 4},
                           "80 00000000 00000000 D5620400 C0BA8A3C"}));

TEST(ValueCodec, TakesNumbersOfAnotherTypeThatFit)
{
    EXPECT_EQ(toHex(encodeValue(columnOf(ColumnType::Byte, 1), std::int32_t{255})), "ff");
    EXPECT_EQ(toHex(encodeValue(columnOf(ColumnType::Integer, 2), std::int32_t{-32768})), "0080");
    EXPECT_EQ(toHex(encodeValue(columnOf(ColumnType::Long, 4), std::uint8_t{1})), "01000000");
    EXPECT_EQ(toHex(encodeValue(columnOf(ColumnType::Double, 8), std::int16_t{1})), "000000000000f03f");
    EXPECT_EQ(toHex(encodeValue(columnOf(ColumnType::Double, 8), 1.5F)), "000000000000f83f");
    EXPECT_EQ(toHex(encodeValue(columnOf(ColumnType::Single, 4), 1.5)), "0000c03f");
}

TEST(ValueCodec, RefusesNumbersThatDoNotFit)
{
    const auto overflows = throwsError(ErrorCode::Overflow, "Mmol");
    EXPECT_THAT(encoding(columnOf(ColumnType::Byte, 1), std::int32_t{256}), overflows);
    EXPECT_THAT(encoding(columnOf(ColumnType::Byte, 1), std::int16_t{-1}), overflows);
    EXPECT_THAT(encoding(columnOf(ColumnType::Integer, 2), std::int32_t{32768}), overflows);
    EXPECT_THAT(encoding(columnOf(ColumnType::Single, 4), 1e300), overflows);
    EXPECT_THAT(encoding(columnOf(ColumnType::DateTime, 8), DateTime{2958466.0}), overflows); // 1 January 10000
    EXPECT_THAT(encoding(columnOf(ColumnType::DateTime, 8), DateTime{-657435.0}), overflows);
    EXPECT_NO_THROW(encoding(columnOf(ColumnType::DateTime, 8), DateTime{2958465.9})());
    EXPECT_NO_THROW(encoding(columnOf(ColumnType::DateTime, 8), DateTime{-657434.9})());
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THAT(encoding(columnOf(ColumnType::DateTime, 8), DateTime{nothing}), overflows);
    EXPECT_THAT(encoding(columnOf(ColumnType::Double, 8), nothing), throwsError(ErrorCode::InvalidArgument, "Mmol"));
    EXPECT_THAT(encoding(columnOf(ColumnType::Double, 8), std::numeric_limits<double>::infinity()),
                throwsError(ErrorCode::InvalidArgument, "Mmol"));
}

TEST(ValueCodec, RefusesValuesOfAnotherKind)
{
    const auto refused = throwsError(ErrorCode::InvalidArgument, "Mmol");
    EXPECT_THAT(encoding(columnOf(ColumnType::Long, 4), 1.5), refused);
    EXPECT_THAT(encoding(columnOf(ColumnType::Long, 4), std::u16string(u"1")), refused);
    EXPECT_THAT(encoding(columnOf(ColumnType::Double, 8), DateTime{1}), refused);
    EXPECT_THAT(encoding(columnOf(ColumnType::DateTime, 8), 1.0), refused);
    EXPECT_THAT(encoding(columnOf(ColumnType::Text, 20), Bytes(3)), refused);
    EXPECT_THAT(encoding(columnOf(ColumnType::Currency, 8), std::int32_t{1}), refused);
    EXPECT_THAT(encoding(columnOf(ColumnType::Block, 4), Bytes(4)), refused) << "opaque blocks are only copied";
    EXPECT_THAT(encoding(columnOf(static_cast<ColumnType>(18), 4), Bytes(4)), refused);
}

TEST(ValueCodec, RefusesWhatIsTooLong)
{
    const Column text = columnOf(ColumnType::Text, 20);
    EXPECT_NO_THROW(encoding(text, std::u16string(10, u'\u20AC'))());
    EXPECT_THAT(encoding(text, std::u16string(11, u'x')), throwsError(ErrorCode::ValueTooLong, "Mmol"));
    EXPECT_THAT(encoding(columnOf(ColumnType::Binary, 4), Bytes(5)), throwsError(ErrorCode::ValueTooLong, "Mmol"));
}

TEST(ValueCodec, PadsTextOfFixedLengthWithBlanks)
{
    const Column text = fixedColumnOf(ColumnType::Text, 8);
    EXPECT_EQ(toHex(encodeValue(text, std::u16string(u"ab"))), "6100620020002000");
    EXPECT_EQ(decodeValue(text, fromHex("6100620020002000")), Value(std::u16string(u"ab  ")));
    EXPECT_EQ(decodeValue(text, fromHex("FFFE620020002000")), Value(std::u16string(u"\uFEFFb  ")))
        << "a fixed text is never compressed";
}

TEST(ValueCodec, PadsBytesOfFixedLengthWithZeros)
{
    EXPECT_EQ(toHex(encodeValue(fixedColumnOf(ColumnType::Binary, 4), fromHex("AB"))), "ab000000");
}

TEST(ValueCodec, HoldsNumericsToTheirScaleAndPrecision)
{
    const Column column = columnOf(ColumnType::Numeric, 17);
    // 18 digits: 999999999999999999 = 0x0DE0B6B3_A763FFFF fits, one more does not.
    EXPECT_NO_THROW(encoding(column, Numeric{.magnitude = {0, 0, 0x0DE0B6B3, 0xA763FFFF}, .scale = 4})());
    EXPECT_THAT(encoding(column, Numeric{.magnitude = {0, 0, 0x0DE0B6B3, 0xA7640000}, .scale = 4}),
                throwsError(ErrorCode::Overflow, "Mmol"));
    EXPECT_THAT(encoding(column, Numeric{.magnitude = {1, 0, 0, 0}, .scale = 4}),
                throwsError(ErrorCode::Overflow, "Mmol"));
    EXPECT_THAT(encoding(column, Numeric{.magnitude = {0, 0, 0, 1}, .scale = 2}),
                throwsError(ErrorCode::InvalidArgument, "4 decimal places"));
    EXPECT_EQ(toHex(encodeValue(column, Numeric{.negative = true, .scale = 4})), std::string(34, '0'))
        << "zero has no sign";
}

TEST(ValueCodec, IsCorruptWhenTheBytesAreOfAnotherLength)
{
    for (const ColumnType type :
         {ColumnType::Byte, ColumnType::Integer, ColumnType::Long, ColumnType::Currency, ColumnType::Single,
          ColumnType::Double, ColumnType::DateTime, ColumnType::Guid, ColumnType::Numeric}) {
        const Column column = columnOf(type, 8);
        for (const std::size_t length : {std::size_t{0}, std::size_t{3}, std::size_t{9}, std::size_t{18}}) {
            const Bytes bytes(length);
            EXPECT_THAT([&] { static_cast<void>(decodeValue(column, bytes)); },
                        throwsError(ErrorCode::Corrupt, "Mmol"));
        }
    }
    EXPECT_THAT([] { static_cast<void>(decodeValue(columnOf(ColumnType::Text, 20), Bytes(3))); },
                throwsError(ErrorCode::Corrupt));
}

TEST(ValueCodec, GivesTheBytesOfWhatItDoesNotKnow)
{
    for (const int type : {9, 11, 12, 13, 17, 18, 200}) {
        const Column column = columnOf(static_cast<ColumnType>(type), 4);
        EXPECT_EQ(decodeValue(column, fromHex("010203")), Value(fromHex("010203"))) << type;
    }
}

} // namespace
} // namespace jet
