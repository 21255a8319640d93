#include "jet/format/index_key.h"

#include "jet/format/hex.h"
#include "jet/format/text_key.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>

using namespace jet;
using jet::test::fromHex;
using jet::test::toHex;

namespace {

Column columnOf(ColumnType type, std::uint16_t number = 0)
{
    Column column;
    column.name = "C" + std::to_string(number);
    column.type = type;
    column.number = number;
    return column;
}

std::string partOf(ColumnType type, const Value& value, bool ascending)
{
    Bytes key;
    appendKeyPart(columnOf(type), ascending, value, key);
    return toHex(key);
}

struct KeySpec {
    ColumnType type = ColumnType::Long;
    bool ascending = true;
};

IndexKeyEncoder encoderOf(const std::vector<KeySpec>& specs)
{
    TableDefinition definition;
    RealIndex index;
    for (const KeySpec& spec : specs) {
        const auto number = static_cast<std::uint16_t>(definition.columns.size());
        definition.columns.push_back(columnOf(spec.type, number));
        index.columns.push_back({.columnNumber = number, .ascending = spec.ascending});
    }
    return IndexKeyEncoder(definition, index);
}

Numeric numeric(bool negative, std::uint32_t low)
{
    return Numeric{.negative = negative, .magnitude = {0, 0, 0, low}, .scale = 0};
}

ErrorCode codeOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Error& error) {
        return error.code();
    }
    ADD_FAILURE() << "nothing was thrown";
    return ErrorCode::Io;
}

} // namespace

// --- Bytes of each type, worked out by hand --------------------------------------------------------------------------

TEST(IndexKey, NullIsOneByte)
{
    EXPECT_EQ(partOf(ColumnType::Long, Null{}, true), "00");
    EXPECT_EQ(partOf(ColumnType::Long, Null{}, false), "ff");
    EXPECT_EQ(partOf(ColumnType::Text, Null{}, true), "00");
}

TEST(IndexKey, TrueComesBeforeFalse)
{
    EXPECT_EQ(partOf(ColumnType::Boolean, true, true), "7f00");
    EXPECT_EQ(partOf(ColumnType::Boolean, false, true), "7fff");
    EXPECT_EQ(partOf(ColumnType::Boolean, true, false), "80ff");
    EXPECT_EQ(partOf(ColumnType::Boolean, false, false), "8000");
}

TEST(IndexKey, AByteIsItself)
{
    EXPECT_EQ(partOf(ColumnType::Byte, std::uint8_t{0x2A}, true), "7f2a");
    EXPECT_EQ(partOf(ColumnType::Byte, std::uint8_t{0x2A}, false), "80d5");
}

TEST(IndexKey, IntegersFlipTheirSign)
{
    EXPECT_EQ(partOf(ColumnType::Integer, std::int16_t{1}, true), "7f8001");
    EXPECT_EQ(partOf(ColumnType::Integer, std::int16_t{-2}, true), "7f7ffe");
    EXPECT_EQ(partOf(ColumnType::Integer, std::int16_t{1}, false), "807ffe");
    EXPECT_EQ(partOf(ColumnType::Long, 5, true), "7f80000005");
    EXPECT_EQ(partOf(ColumnType::Long, -1, true), "7f7fffffff");
    EXPECT_EQ(partOf(ColumnType::Long, 5, false), "807ffffffa");
    EXPECT_EQ(partOf(ColumnType::Long, -1, false), "8080000000");
}

TEST(IndexKey, CurrencyIsA64BitInteger)
{
    EXPECT_EQ(partOf(ColumnType::Currency, Currency{10000}, true), "7f8000000000002710");
    EXPECT_EQ(partOf(ColumnType::Currency, Currency{-1}, true), "7f7fffffffffffffff");
    EXPECT_EQ(partOf(ColumnType::Currency, Currency{10000}, false), "807fffffffffffd8ef");
}

TEST(IndexKey, FloatingNumbersFlipTheirSignOrAllBits)
{
    EXPECT_EQ(partOf(ColumnType::Double, 1.0, true), "7fbff0000000000000");
    EXPECT_EQ(partOf(ColumnType::Double, -1.0, true), "7f400fffffffffffff");
    EXPECT_EQ(partOf(ColumnType::Double, 1.0, false), "80400fffffffffffff");
    EXPECT_EQ(partOf(ColumnType::Double, -1.0, false), "80bff0000000000000");
    EXPECT_EQ(partOf(ColumnType::Double, 0.0, true), "7f8000000000000000");
    EXPECT_EQ(partOf(ColumnType::Double, -0.0, true), "7f7fffffffffffffff");
    EXPECT_EQ(partOf(ColumnType::Single, 1.0F, true), "7fbf800000");
    EXPECT_EQ(partOf(ColumnType::Single, -1.0F, true), "7f407fffff");
    EXPECT_EQ(partOf(ColumnType::Single, 1.0F, false), "80407fffff");
    EXPECT_EQ(partOf(ColumnType::DateTime, DateTime{2.0}, true), "7fc000000000000000");
    EXPECT_EQ(partOf(ColumnType::DateTime, DateTime{-2.0}, false), "80c000000000000000");
}

TEST(IndexKey, ANumericKeepsTheByteOfItsSignInBothOrders)
{
    EXPECT_EQ(partOf(ColumnType::Numeric, numeric(false, 5), true), "7fff00000000000000000000000000000005");
    EXPECT_EQ(partOf(ColumnType::Numeric, numeric(true, 5), true), "7f00fffffffffffffffffffffffffffffffa");
    EXPECT_EQ(partOf(ColumnType::Numeric, numeric(false, 5), false), "80fffffffffffffffffffffffffffffffffa");
    EXPECT_EQ(partOf(ColumnType::Numeric, numeric(true, 5), false), "800000000000000000000000000000000005");
    const Numeric wide{.negative = false, .magnitude = {1, 2, 3, 4}, .scale = 0};
    EXPECT_EQ(partOf(ColumnType::Numeric, wide, true), "7fff00000001000000020000000300000004");
}

TEST(IndexKey, ABinaryIsCutIntoGroupsOfEight)
{
    EXPECT_EQ(partOf(ColumnType::Binary, Bytes{}, true), "7f");
    EXPECT_EQ(partOf(ColumnType::Binary, fromHex("0102"), true), "7f010200000000000002");
    EXPECT_EQ(partOf(ColumnType::Binary, fromHex("0102"), false), "80fefdfffffffffffffd");
    EXPECT_EQ(partOf(ColumnType::Binary, fromHex("0102030405060708"), true), "7f010203040506070808");
    EXPECT_EQ(partOf(ColumnType::Binary, fromHex("010203040506070809"), true),
              "7f010203040506070809090000000000000001");
    EXPECT_EQ(partOf(ColumnType::Binary, fromHex("010203040506070809"), false),
              "80fefdfcfbfaf9f8f709f6fffffffffffffffe");
}

TEST(IndexKey, AGuidIsTwoGroups)
{
    Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        guid.bytes[i] = static_cast<std::byte>(i + 1);
    }
    EXPECT_EQ(partOf(ColumnType::Guid, guid, true), "7f010203040506070809090a0b0c0d0e0f1008");
    EXPECT_EQ(partOf(ColumnType::Guid, guid, false), "80fefdfcfbfaf9f8f709f6f5f4f3f2f1f0eff7");
}

TEST(IndexKey, TextsAndMemosShareTheirKeys)
{
    EXPECT_EQ(partOf(ColumnType::Text, std::u16string(u"Meal + 2"), true), "7f60514a5e072c073a0100");
    EXPECT_EQ(partOf(ColumnType::Memo, std::u16string(u"Meal + 2"), false), "809faeb5a1f8d3f8c5feff00");
}

TEST(IndexKey, ACompositeKeyIsItsPartsInARow)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Long}, {ColumnType::Text}});
    const std::vector<Value> values{std::int32_t{0x0F000001}, std::u16string(u"MSysACEs")};
    const IndexKey key = encoder.encode(values);
    EXPECT_EQ(toHex(key.bytes), "7f8f0000017f606b766b4a4d516b0100");
    EXPECT_FALSE(key.anyNull);
    EXPECT_FALSE(key.allNull);
}

TEST(IndexKey, TellsWhetherSomeOrAllColumnsAreNull)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Long}, {ColumnType::Long, false}});
    const IndexKey some = encoder.encode(std::vector<Value>{Null{}, 1});
    EXPECT_TRUE(some.anyNull);
    EXPECT_FALSE(some.allNull);
    const IndexKey all = encoder.encode(std::vector<Value>{Null{}, Null{}});
    EXPECT_TRUE(all.anyNull);
    EXPECT_TRUE(all.allNull);
    EXPECT_EQ(toHex(all.bytes), "00ff");
}

// --- What cannot be done ---------------------------------------------------------------------------------------------

TEST(IndexKey, TextsOfAnotherSortOrderCannotBeEncoded)
{
    Column column = columnOf(ColumnType::Text);
    EXPECT_TRUE(canEncode(column));
    column.sortOrder = {.language = 1031, .version = 0};
    EXPECT_FALSE(canEncode(column));
    column.sortOrder = {.language = 1033, .version = 1};
    EXPECT_FALSE(canEncode(column));
    Bytes key;
    EXPECT_EQ(codeOf([&] { appendKeyPart(column, true, std::u16string(u"a"), key); }), ErrorCode::IndexNotSupported);
    column.type = ColumnType::Long; // a number has no sort order
    EXPECT_TRUE(canEncode(column));
}

TEST(IndexKey, TypesThatCannotBeIndexedCannotBeEncoded)
{
    EXPECT_FALSE(canEncode(columnOf(ColumnType::Ole)));
    EXPECT_FALSE(canEncode(columnOf(ColumnType::Block)));
    EXPECT_FALSE(canEncode(columnOf(static_cast<ColumnType>(0))));
    EXPECT_FALSE(canEncode(columnOf(static_cast<ColumnType>(18))));
}

TEST(IndexKey, AnEncoderWithAColumnThatCannotBeEncodedMakesNoKeys)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Long}, {ColumnType::Ole}});
    EXPECT_FALSE(encoder.canEncode());
    EXPECT_FALSE(encoder.isSearchable());
    EXPECT_EQ(codeOf([&] { (void)encoder.encode(std::vector<Value>{1, Bytes{}}); }), ErrorCode::IndexNotSupported);
}

TEST(IndexKey, AnIndexOnAColumnThatIsNotThereIsCorrupt)
{
    const TableDefinition definition;
    RealIndex index;
    index.columns.push_back({.columnNumber = 3, .ascending = true});
    EXPECT_EQ(codeOf([&] { const IndexKeyEncoder encoder(definition, index); }), ErrorCode::Corrupt);
}

TEST(IndexKey, AValueOfAnotherTypeIsRefused)
{
    Bytes key;
    EXPECT_EQ(codeOf([&] { appendKeyPart(columnOf(ColumnType::Long), true, 1.0, key); }), ErrorCode::InvalidArgument);
    Numeric number = numeric(false, 1);
    number.scale = 2;
    EXPECT_EQ(codeOf([&] { appendKeyPart(columnOf(ColumnType::Numeric), true, number, key); }),
              ErrorCode::InvalidArgument);
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Long}});
    EXPECT_EQ(codeOf([&] { (void)encoder.encode({}); }), ErrorCode::InvalidArgument);
    EXPECT_EQ(codeOf([&] { (void)encoder.lowerEnd(std::vector<Value>{1, 2}, true); }), ErrorCode::InvalidArgument);
}

TEST(IndexKey, AKeyThatIsTooLongForATreeIsRefused)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Text}, {ColumnType::Text}});
    const std::vector<Value> longest(2, std::u16string(255, u'\u00e9')); // 2 * (1 + 255 + 1 + 255 + 1) bytes
    EXPECT_EQ(encoder.encode(longest).bytes.size(), 1026U);
    const std::vector<Value> tooLong(2, std::u16string(255, u'-')); // 2 * (1 + 5 + 4 * 255 + 1) bytes
    EXPECT_EQ(codeOf([&] { (void)encoder.encode(tooLong); }), ErrorCode::ValueTooLong);
}

// --- Order -----------------------------------------------------------------------------------------------------------

namespace {

/// A value type's generator and its order.
struct OrderCase {
    ColumnType type = ColumnType::Long;
    std::function<Value(std::mt19937_64&)> make;
    std::function<bool(const Value&, const Value&)> less;
    bool descendingToo = true;
};

template <typename Content>
std::function<bool(const Value&, const Value&)> lessBy(std::function<bool(const Content&, const Content&)> less)
{
    return [less](const Value& a, const Value& b) { return less(std::get<Content>(a), std::get<Content>(b)); };
}

double randomDouble(std::mt19937_64& random)
{
    switch (random() % 4) {
    case 0:
        return static_cast<double>(static_cast<std::int64_t>(random() % 2001) - 1000) / 8 + 0.0;
    case 1:
        return std::numeric_limits<double>::infinity() * (random() % 2 == 0 ? 1 : -1);
    case 2:
        return std::ldexp(static_cast<double>(random() % 1000) - 499.5, static_cast<int>(random() % 2000) - 1000);
    default:
        return static_cast<double>(random() % 4) * 0.25;
    }
}

Bytes randomBytes(std::mt19937_64& random, std::size_t least)
{
    Bytes bytes(least + random() % 20);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(random() % 3 == 0 ? 0xFF : random() % 3); // many equal starts, zeros at ends
    }
    return bytes;
}

std::vector<OrderCase> orderCases()
{
    return {
        {ColumnType::Boolean, [](auto& random) { return random() % 2 == 0; },
         lessBy<bool>([](bool a, bool b) { return a && !b; })},
        {ColumnType::Byte, [](auto& random) { return static_cast<std::uint8_t>(random()); },
         lessBy<std::uint8_t>(std::less<>())},
        {ColumnType::Integer, [](auto& random) { return static_cast<std::int16_t>(random()); },
         lessBy<std::int16_t>(std::less<>())},
        {ColumnType::Long, [](auto& random) { return static_cast<std::int32_t>(random()) >> (random() % 32); },
         lessBy<std::int32_t>(std::less<>())},
        {ColumnType::Currency,
         [](auto& random) { return Currency{static_cast<std::int64_t>(random()) >> (random() % 64)}; },
         lessBy<Currency>([](Currency a, Currency b) { return a.tenThousandths < b.tenThousandths; })},
        {ColumnType::Single, [](auto& random) { return static_cast<float>(randomDouble(random)) + 0.0F; },
         lessBy<float>(std::less<>())},
        {ColumnType::Double, [](auto& random) { return randomDouble(random); }, lessBy<double>(std::less<>())},
        {ColumnType::DateTime, [](auto& random) { return DateTime{randomDouble(random)}; },
         lessBy<DateTime>([](DateTime a, DateTime b) { return a.days < b.days; })},
        {ColumnType::Binary, [](auto& random) { return randomBytes(random, 1); }, lessBy<Bytes>(std::less<>())},
        {ColumnType::Guid,
         [](auto& random) {
             Guid guid;
             for (std::byte& byte : guid.bytes) {
                 byte = static_cast<std::byte>(random() % 2);
             }
             return guid;
         },
         lessBy<Guid>([](const Guid& a, const Guid& b) { return a.bytes < b.bytes; })},
        {ColumnType::Numeric,
         [](auto& random) {
             Numeric number{.negative = random() % 2 == 0, .magnitude = {}, .scale = 0};
             number.magnitude[random() % 4] = static_cast<std::uint32_t>(1 + random() % 5);
             return number;
         },
         lessBy<Numeric>([](const Numeric& a, const Numeric& b) {
             if (a.negative != b.negative) {
                 return a.negative;
             }
             return a.negative ? b.magnitude < a.magnitude : a.magnitude < b.magnitude;
         }),
         false},
        {ColumnType::Text,
         [](auto& random) {
             static constexpr std::u16string_view kUnits = u"aBb -'\u00e9\u0301z";
             std::u16string text(random() % 6, u' ');
             for (char16_t& unit : text) {
                 unit = kUnits[random() % kUnits.size()];
             }
             return text;
         },
         lessBy<std::u16string>([](const auto& a, const auto& b) { return compareTexts(a, b) < 0; })},
    };
}

} // namespace

TEST(IndexKey, BytesOfKeysCompareAsTheValuesDo)
{
    std::mt19937_64 random(42);
    for (const OrderCase& type : orderCases()) {
        for (int i = 0; i < 20000; ++i) {
            const Value a = type.make(random);
            const Value b = type.make(random);
            for (const bool ascending : {true, false}) {
                if (!ascending && !type.descendingToo) {
                    continue;
                }
                Bytes keyA;
                Bytes keyB;
                appendKeyPart(columnOf(type.type), ascending, a, keyA);
                appendKeyPart(columnOf(type.type), ascending, b, keyB);
                ASSERT_EQ(keyA < keyB, ascending ? type.less(a, b) : type.less(b, a))
                    << int{static_cast<std::uint8_t>(type.type)} << ' ' << toHex(keyA) << ' ' << toHex(keyB);
                Bytes null;
                appendKeyPart(columnOf(type.type), ascending, Null{}, null);
                ASSERT_EQ(null < keyA, ascending) << "null is lowest";
            }
        }
    }
}

TEST(IndexKey, ADescendingNumericPutsNegativesFirst)
{
    Bytes negative;
    Bytes positive;
    appendKeyPart(columnOf(ColumnType::Numeric), false, numeric(true, 1), negative);
    appendKeyPart(columnOf(ColumnType::Numeric), false, numeric(false, 1), positive);
    EXPECT_LT(negative, positive);
    EXPECT_FALSE(encoderOf({{ColumnType::Numeric, false}}).isSearchable());
    EXPECT_TRUE(encoderOf({{ColumnType::Numeric, true}}).isSearchable());
}

TEST(IndexKey, ABinaryCanBeSearchedOnlyWhereItsEmptyValueIsNoRiddle)
{
    EXPECT_TRUE(encoderOf({{ColumnType::Binary}}).isSearchable());
    EXPECT_TRUE(encoderOf({{ColumnType::Long}, {ColumnType::Binary}}).isSearchable());
    EXPECT_FALSE(encoderOf({{ColumnType::Binary}, {ColumnType::Long}}).isSearchable());
    EXPECT_FALSE(encoderOf({{ColumnType::Binary, false}}).isSearchable());
}

// --- Ends of ranges --------------------------------------------------------------------------------------------------

namespace {

bool within(const IndexKeyEncoder& encoder, const std::vector<Value>& row, const Bytes& from,
            const std::optional<Bytes>& to)
{
    const Bytes key = encoder.encode(row).bytes;
    return from <= key && (!to || key < *to);
}

} // namespace

TEST(IndexKeyRange, EndsIncludeOrExcludeTheirValues)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Long}});
    const std::vector<Value> five{5};
    for (const std::int32_t number : {-7, 4, 5, 6}) {
        const std::vector<Value> row{number};
        EXPECT_EQ(within(encoder, row, encoder.lowerEnd(five, true), std::nullopt), number >= 5);
        EXPECT_EQ(within(encoder, row, encoder.lowerEnd(five, false), std::nullopt), number > 5);
        EXPECT_EQ(within(encoder, row, {}, encoder.upperEnd(five, true)), number <= 5);
        EXPECT_EQ(within(encoder, row, {}, encoder.upperEnd(five, false)), number < 5);
        EXPECT_EQ(within(encoder, row, encoder.lowerEnd(five, true), encoder.upperEnd(five, true)), number == 5);
    }
}

TEST(IndexKeyRange, LeadingValuesStandForAllThatBeginsWithThem)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Text}, {ColumnType::Long}});
    const std::vector<Value> prefix{std::u16string(u"b")};
    for (const std::u16string text : {u"a", u"b", u"B", u"ba", u"c"}) {
        for (const Value& second : {Value(Null{}), Value(-1), Value(std::numeric_limits<std::int32_t>::max())}) {
            const std::vector<Value> row{text, second};
            const int order = compareTexts(text, u"b");
            EXPECT_EQ(within(encoder, row, encoder.lowerEnd(prefix, true), std::nullopt), order >= 0);
            EXPECT_EQ(within(encoder, row, encoder.lowerEnd(prefix, false), std::nullopt), order > 0);
            EXPECT_EQ(within(encoder, row, {}, encoder.upperEnd(prefix, true)), order <= 0);
            EXPECT_EQ(within(encoder, row, {}, encoder.upperEnd(prefix, false)), order < 0);
        }
    }
}

TEST(IndexKeyRange, NullIsAValueOfItsOwnAtTheEndOfTheOrder)
{
    const IndexKeyEncoder ascending = encoderOf({{ColumnType::Long}, {ColumnType::Long}});
    const std::vector<Value> null{Null{}};
    EXPECT_TRUE(within(ascending, {Null{}, 1}, ascending.lowerEnd(null, true), ascending.upperEnd(null, true)));
    EXPECT_FALSE(within(ascending, {1, 1}, ascending.lowerEnd(null, true), ascending.upperEnd(null, true)));
    EXPECT_TRUE(within(ascending, {1, 1}, ascending.lowerEnd(null, false), std::nullopt));
    EXPECT_FALSE(within(ascending, {Null{}, 1}, ascending.lowerEnd(null, false), std::nullopt));

    // Descending, null is the highest: FF, above which nothing is.
    const IndexKeyEncoder descending = encoderOf({{ColumnType::Long, false}, {ColumnType::Long, false}});
    EXPECT_TRUE(within(descending, {Null{}, Null{}}, descending.lowerEnd(null, true), descending.upperEnd(null, true)));
    EXPECT_FALSE(within(descending, {1, 1}, descending.lowerEnd(null, true), std::nullopt));
    EXPECT_TRUE(within(descending, {1, 1}, {}, descending.upperEnd(null, false)));
    EXPECT_FALSE(within(descending, {Null{}, Null{}}, descending.lowerEnd(null, false), std::nullopt));
    EXPECT_FALSE(within(descending, {Null{}, 1}, descending.lowerEnd(null, false), std::nullopt));
}

TEST(IndexKeyRange, NoValuesAtAllMeanAllKeys)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Long}});
    EXPECT_TRUE(encoder.lowerEnd({}, true).empty());
    EXPECT_FALSE(encoder.upperEnd({}, true).has_value());
}

TEST(IndexKeyRange, AnEmptyBinaryIsToldFromThoseThatFollowIt)
{
    const IndexKeyEncoder encoder = encoderOf({{ColumnType::Binary}});
    const std::vector<Value> empty{Bytes{}};
    EXPECT_TRUE(within(encoder, {Bytes{}}, encoder.lowerEnd(empty, true), encoder.upperEnd(empty, true)));
    EXPECT_FALSE(within(encoder, {fromHex("00")}, encoder.lowerEnd(empty, true), encoder.upperEnd(empty, true)));
    EXPECT_TRUE(within(encoder, {fromHex("00")}, encoder.lowerEnd(empty, false), std::nullopt));
}
