#include "jet/format/table_definition_codec.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

/// Three columns, a primary key, long-value maps.
TableDefinition example()
{
    TableDefinition definition;
    definition.rowCount = 3;
    definition.lastAutoNumber = 5;
    definition.maximumColumns = 3;
    definition.maximumVariableColumns = 2;
    definition.ownedPages = {.page = 25, .row = 0};
    definition.pagesWithSpace = {.page = 25, .row = 1};

    Column number;
    number.name = "No";
    number.type = ColumnType::Long;
    number.length = 4;
    number.flags = Column::kFixed | Column::kOrdinary | Column::kAutoNumber;
    Column note;
    note.name = "N\xC3\xA9";
    note.type = ColumnType::Text;
    note.number = 1;
    note.ordinal = 1;
    note.length = 100;
    note.flags = Column::kOrdinary;
    note.extraFlags = Column::kCompressible;
    Column memo;
    memo.name = "M";
    memo.type = ColumnType::Memo;
    memo.number = 2;
    memo.ordinal = 2;
    memo.variableSlot = 1;
    memo.flags = Column::kOrdinary;
    definition.columns = {number, note, memo};

    RealIndex index;
    index.columns = {{.columnNumber = 0, .ascending = true}};
    index.pages = {.page = 25, .row = 4};
    index.root = 26;
    index.flags = RealIndex::kUnique | RealIndex::kRequired | RealIndex::kAlways;
    index.distinctKeys = 4;
    definition.realIndexes = {index};
    LogicalIndex key;
    key.name = "PK";
    key.kind = LogicalIndex::Kind::PrimaryKey;
    definition.logicalIndexes = {key};
    definition.longValues = {{.columnNumber = 2, .owned = {.page = 25, .row = 2}, .withSpace = {.page = 25, .row = 3}}};
    return definition;
}

constexpr const char* kExampleBytes =
    "0000000000000000 08010000 59060000 03000000 05000000 01 000000000000000000000000000000 "
    "4E 0300 0200 0300 01000000 01000000 00190000 01190000 "
    // The index's head: 4 distinct keys.
    "00000000 04000000 00000000 "
    // Columns: type, mark, number, slot, ordinal, sort order, flags, more flags, unknown, offset, length.
    "04 59060000 0000 0000 0000 09040000 07 00 00000000 0000 0400 "
    "0A 59060000 0100 0000 0100 09040000 02 01 00000000 0000 6400 "
    "0C 59060000 0200 0100 0200 09040000 02 00 00000000 0000 0000 "
    // Their names.
    "0400 4E006F00 0400 4E00E900 0200 4D00 "
    // The index: key column 0 ascending, nine unused; map, root, flags.
    "83070000 000001 FFFF00 FFFF00 FFFF00 FFFF00 FFFF00 FFFF00 FFFF00 FFFF00 FFFF00 "
    "04190000 1A000000 00000000 89 0000000000 "
    // Its logical index and name.
    "59060000 00000000 00000000 00 FFFFFFFF 00000000 00 00 01 00000000 0400 50004B00 "
    // Maps of column 2, and the end.
    "0200 02190000 03190000 FFFF";

TEST(TableDefinition, EncodesToTheBytesWorkedOutByHand)
{
    // 63 + 12 + 3 * 25 + (6 + 6 + 4) + 52 + 28 + 6 + 10 + 2 = 264 = 0x108
    const Bytes expected = fromHex(kExampleBytes);
    ASSERT_EQ(expected.size(), 264U);
    EXPECT_EQ(toHex(encodeTableDefinition(example())), toHex(expected));
}

TEST(TableDefinition, DecodesWhatWasEncoded)
{
    const TableDefinition read = decodeTableDefinition(encodeTableDefinition(example()));
    EXPECT_EQ(read.rowCount, 3U);
    EXPECT_EQ(read.lastAutoNumber, 5);
    EXPECT_EQ(read.kind, TableDefinition::kUserTable);
    EXPECT_EQ(read.maximumColumns, 3);
    EXPECT_EQ(read.maximumVariableColumns, 2);
    EXPECT_EQ(read.ownedPages, (RowPointer{.page = 25, .row = 0}));
    EXPECT_EQ(read.pagesWithSpace, (RowPointer{.page = 25, .row = 1}));
    ASSERT_EQ(read.columns.size(), 3U);
    EXPECT_TRUE(read.columns[0].isFixed());
    EXPECT_TRUE(read.columns[0].isAutoNumber());
    EXPECT_EQ(read.columns[1].name, "N\xC3\xA9");
    EXPECT_EQ(read.columns[1].length, 100);
    EXPECT_EQ(read.columns[1].sortOrder, SortOrder{});
    EXPECT_TRUE(read.columns[2].isLongValue());
    EXPECT_EQ(read.columns[2].variableSlot, 1);
    ASSERT_EQ(read.realIndexes.size(), 1U);
    EXPECT_THAT(read.realIndexes[0].columns, testing::ElementsAre(KeyColumn{.columnNumber = 0, .ascending = true}));
    EXPECT_EQ(read.realIndexes[0].root, 26U);
    EXPECT_EQ(read.realIndexes[0].distinctKeys, 4U);
    EXPECT_TRUE(read.realIndexes[0].isUnique());
    EXPECT_TRUE(read.realIndexes[0].isRequired());
    EXPECT_FALSE(read.realIndexes[0].ignoresNulls());
    ASSERT_EQ(read.logicalIndexes.size(), 1U);
    EXPECT_EQ(read.logicalIndexes[0].name, "PK");
    EXPECT_EQ(read.logicalIndexes[0].kind, LogicalIndex::Kind::PrimaryKey);
    EXPECT_EQ(read.logicalIndexes[0].otherIndexNumber, -1);
    ASSERT_EQ(read.longValues.size(), 1U);
    EXPECT_EQ(read.longValues[0].withSpace, (RowPointer{.page = 25, .row = 3}));
}

TEST(TableDefinition, HoldsTheScaleOfNumericColumns)
{
    TableDefinition definition = example();
    definition.columns[1].type = ColumnType::Numeric;
    definition.columns[1].precision = 18;
    definition.columns[1].scale = 4;
    const Bytes bytes = encodeTableDefinition(definition);
    EXPECT_EQ(toHex(slice(ByteView(bytes), 63 + 12 + 25 + 11, 4)), "12040000");
    const TableDefinition read = decodeTableDefinition(bytes);
    EXPECT_EQ(read.columns[1].precision, 18);
    EXPECT_EQ(read.columns[1].scale, 4);
}

TEST(TableDefinition, WritesUnknownBytesBackAsTheyWere)
{
    const Bytes bytes = encodeTableDefinition(example());
    const TableDefinition read = decodeTableDefinition(bytes);
    // Unknown: 12..15 and 24..39 of the head; the mark and the tail of descriptors and blocks; unused key slots' order.
    const std::size_t column = 63 + 12;
    const std::size_t index = column + 3 * 25 + 16;
    const std::size_t logical = index + 52;
    for (const std::size_t at :
         {std::size_t{12}, std::size_t{26}, std::size_t{39}, std::size_t{63}, std::size_t{73}, column + 2, column + 13,
          column + 18, index + 1, index + 9, index + 43, index + 50, logical + 1, logical + 26}) {
        Bytes changed = bytes;
        changed[at] = std::byte{0xAB};
        EXPECT_EQ(toHex(encodeTableDefinition(decodeTableDefinition(changed))), toHex(changed)) << at;
    }
    EXPECT_EQ(toHex(encodeTableDefinition(read)), toHex(bytes));
}

TEST(TableDefinition, FindsColumnsByNumberAndByNameWithoutRegardToCase)
{
    const TableDefinition definition = example();
    EXPECT_EQ(definition.columnByNumber(2)->name, "M");
    EXPECT_EQ(definition.columnByNumber(3), nullptr);
    EXPECT_EQ(definition.columnByName("nO"), &definition.columns[0]);
    EXPECT_EQ(definition.columnByName("Nothing"), nullptr);
    EXPECT_EQ(definition.columnByName("N"), nullptr);
}

TEST(TableDefinition, ShowsColumnsByOrdinalAndElseByNumber)
{
    TableDefinition definition = example();
    const auto names = [&] {
        std::string text;
        for (const Column* column : definition.displayOrder()) {
            text += column->name.substr(0, 1) + std::to_string(column->number);
        }
        return text;
    };
    EXPECT_EQ(names(), "N0N1M2");
    definition.columns[0].ordinal = 7;
    EXPECT_EQ(names(), "N1M2N0");
    for (Column& column : definition.columns) {
        column.ordinal = 0;
    }
    std::swap(definition.columns[0], definition.columns[2]);
    EXPECT_EQ(names(), "N0N1M2");
}

TEST(TableDefinition, IsCorruptWhenCutAnywhere)
{
    const Bytes bytes = encodeTableDefinition(example());
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const ByteView cut = ByteView(bytes).first(length);
        EXPECT_THAT([&] { static_cast<void>(decodeTableDefinition(cut)); }, throwsError(ErrorCode::Corrupt)) << length;
        if (length >= 12) { // the same with a length that agrees
            Bytes shorter(cut.begin(), cut.end());
            putU32(shorter, 8, static_cast<std::uint32_t>(length));
            EXPECT_THAT([&] { static_cast<void>(decodeTableDefinition(shorter)); }, throwsError(ErrorCode::Corrupt))
                << length;
        }
    }
}

TEST(TableDefinition, IsCorruptWithWildCounts)
{
    const auto damaged = [](const std::function<void(Bytes&)>& damage) {
        Bytes bytes = encodeTableDefinition(example());
        damage(bytes);
        return [bytes] { static_cast<void>(decodeTableDefinition(bytes)); };
    };
    EXPECT_THAT(damaged([](Bytes& bytes) { putU32(bytes, 8, 0xFFFFFFFF); }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Bytes& bytes) { putU16(bytes, 45, 256); }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Bytes& bytes) { putU16(bytes, 45, 0); }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Bytes& bytes) { putU32(bytes, 47, 0xFFFFFFFF); }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Bytes& bytes) { putU32(bytes, 51, 0xFFFFFFFF); }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Bytes& bytes) {
                    bytes.push_back(std::byte{0});
                    putU32(bytes, 8, 265);
                }),
                throwsError(ErrorCode::Corrupt));
}

TEST(TableDefinition, IsCorruptWhenItsPartsContradict)
{
    const auto damaged = [](const std::function<void(TableDefinition&)>& damage) {
        TableDefinition definition = example();
        damage(definition);
        const Bytes bytes = encodeTableDefinition(definition);
        return [bytes] { static_cast<void>(decodeTableDefinition(bytes)); };
    };
    using Definition = TableDefinition;
    EXPECT_THAT(damaged([](Definition& d) { d.columns[1].number = 0; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Definition& d) { d.columns[1].number = 3; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Definition& d) { d.columns[1].variableSlot = 2; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Definition& d) { d.columns[0].fixedOffset = 4093; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Definition& d) { d.realIndexes[0].columns[0].columnNumber = 9; }),
                throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Definition& d) { d.realIndexes[0].columns.clear(); }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(damaged([](Definition& d) { d.logicalIndexes[0].realIndex = 1; }), throwsError(ErrorCode::Corrupt));
}

TEST(TableDefinition, RefusesWhatTheFormatCannotHold)
{
    TableDefinition definition = example();
    definition.realIndexes[0].columns.resize(11);
    EXPECT_THAT([&] { static_cast<void>(encodeTableDefinition(definition)); }, throwsError(ErrorCode::InvalidArgument));
    definition = example();
    definition.columns.resize(256);
    EXPECT_THAT([&] { static_cast<void>(encodeTableDefinition(definition)); }, throwsError(ErrorCode::InvalidArgument));
}

TEST(TableDefinition, SurvivesAnyByteBeingWrong)
{
    const Bytes bytes = encodeTableDefinition(example());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes changed = bytes;
            changed[at] = static_cast<std::byte>(value);
            try {
                static_cast<void>(encodeTableDefinition(decodeTableDefinition(changed)));
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorCode::Corrupt) << at;
            }
        }
    }
}

} // namespace
} // namespace jet
