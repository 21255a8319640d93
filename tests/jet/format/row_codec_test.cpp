#include "jet/format/row_codec.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

/// Adds a column as a new table or an added column has it: fixed offsets and slots follow on.
Column& add(TableDefinition& definition, const char* name, ColumnType type, std::uint16_t length, bool fixed)
{
    Column column;
    column.name = name;
    column.type = type;
    column.length = length;
    column.flags = Column::kOrdinary;
    column.extraFlags = Column::kCompressible;
    column.number = definition.maximumColumns++;
    if (fixed) {
        column.flags |= Column::kFixed;
        for (const Column& other : definition.columns) {
            if (other.isFixed() && other.type != ColumnType::Boolean) {
                column.fixedOffset = std::max<std::uint16_t>(
                    column.fixedOffset, static_cast<std::uint16_t>(other.fixedOffset + other.length));
            }
        }
    } else {
        column.variableSlot = definition.maximumVariableColumns++;
    }
    return definition.columns.emplace_back(column);
}

/// Readings: a number, a value, a time, a kind and a comment.
TableDefinition readings()
{
    TableDefinition definition;
    add(definition, "No", ColumnType::Long, 4, true);
    add(definition, "Mmol", ColumnType::Double, 8, true);
    add(definition, "When", ColumnType::DateTime, 8, true);
    add(definition, "Type", ColumnType::Long, 4, true);
    add(definition, "Comment", ColumnType::Text, 100, false);
    return definition;
}

constexpr const char* kReading = "0500 33000000 0000000000001E40 63C92F969104E240 02000000 "
                                 "FFFE636166E92C2064E96AE0207675 2900 1A00 0100 1F";
constexpr const char* kReadingWithoutComment = "0500 33000000 0000000000001E40 63C92F969104E240 02000000 "
                                               "1A00 1A00 0100 0F";

Bytes build(const TableDefinition& definition, const std::vector<std::pair<const char*, Value>>& values)
{
    RowBuilder builder(definition);
    for (const auto& [name, value] : values) {
        builder.set(*definition.columnByName(name), value);
    }
    return builder.encode();
}

Value valueOf(const TableDefinition& definition, ByteView row, const char* column)
{
    return RowView(RowLayout(definition), row).value(*definition.columnByName(column));
}

TEST(RowCodec, ReadsAReading)
{
    const TableDefinition definition = readings();
    const Bytes row = fromHex(kReading);
    EXPECT_EQ(valueOf(definition, row, "No"), Value(std::int32_t{51}));
    EXPECT_EQ(valueOf(definition, row, "Mmol"), Value(7.5));
    // 9 January 2001, 13:11:24
    EXPECT_NEAR(std::get<DateTime>(valueOf(definition, row, "When")).days, 36900 + (13 * 3600 + 11 * 60 + 24) / 86400.0,
                1e-9);
    EXPECT_EQ(valueOf(definition, row, "Type"), Value(std::int32_t{2}));
    EXPECT_EQ(valueOf(definition, row, "Comment"), Value(std::u16string(u"caf\u00E9, d\u00E9j\u00E0 vu")));
}

TEST(RowCodec, ReadsANullComment)
{
    const TableDefinition definition = readings();
    const Bytes row = fromHex(kReadingWithoutComment);
    const RowView view(RowLayout(definition), row);
    EXPECT_TRUE(view.isNull(definition.columns[4]));
    EXPECT_EQ(view.value(definition.columns[4]), Value(Null{}));
    EXPECT_FALSE(view.isNull(definition.columns[3]));
}

TEST(RowCodec, WritesTheBytesWorkedOutByHand)
{
    const TableDefinition definition = readings();
    const double when = getDouble(fromHex("63C92F969104E240"), 0);
    const auto row = [&](const Value& comment) {
        return build(definition, {{"No", std::int32_t{51}},
                                  {"Mmol", 7.5},
                                  {"When", DateTime{when}},
                                  {"Type", std::int32_t{2}},
                                  {"Comment", comment}});
    };
    EXPECT_EQ(toHex(row(std::u16string(u"caf\u00E9, d\u00E9j\u00E0 vu"))), toHex(fromHex(kReading)));
    EXPECT_EQ(toHex(row(Null{})), toHex(fromHex(kReadingWithoutComment)));
}

TEST(RowCodec, TellsAnEmptyTextFromNull)
{
    const TableDefinition definition = readings();
    const Bytes row = build(definition, {{"Comment", std::u16string()}});
    EXPECT_EQ(valueOf(definition, row, "Comment"), Value(std::u16string()));
}

TEST(RowCodec, WritesTheFixedPartInFullWhenItsColumnsAreNull)
{
    EXPECT_EQ(toHex(build(readings(), {})), "0500" + std::string(48, '0') + "1a001a00" + "0100" + "00");
}

TEST(RowCodec, KeepsBooleansInTheMaskAlone)
{
    TableDefinition definition;
    add(definition, "A", ColumnType::Boolean, 1, true);
    add(definition, "B", ColumnType::Byte, 1, true);
    add(definition, "C", ColumnType::Boolean, 1, true);
    const Bytes row = build(definition, {{"C", true}, {"B", std::uint8_t{7}}});
    EXPECT_EQ(toHex(row), "03000706") << "no variable columns: no offset table";
    EXPECT_EQ(valueOf(definition, row, "A"), Value(false));
    EXPECT_EQ(valueOf(definition, row, "B"), Value(std::uint8_t{7}));
    EXPECT_EQ(valueOf(definition, row, "C"), Value(true));
    EXPECT_FALSE(RowView(RowLayout(definition), row).isNull(definition.columns[0]));
    EXPECT_EQ(toHex(build(definition, {{"C", true}, {"C", Null{}}})), "03000000") << "null is no";
    EXPECT_THAT([&] { build(definition, {{"A", std::int32_t{1}}}); }, throwsError(ErrorCode::InvalidArgument, "A"));
}

TEST(RowCodec, TrustsTheFixedFlagAndNotTheType)
{
    TableDefinition definition;
    add(definition, "N", ColumnType::Long, 4, false);
    add(definition, "T", ColumnType::Text, 8, true);
    const Bytes row = build(definition, {{"N", std::int32_t{9}}, {"T", std::u16string(u"ab")}});
    EXPECT_EQ(toHex(row), toHex(fromHex("0200 6100620020002000 09000000 0E00 0A00 0100 03")));
    EXPECT_EQ(valueOf(definition, row, "N"), Value(std::int32_t{9}));
    EXPECT_EQ(valueOf(definition, row, "T"), Value(std::u16string(u"ab  ")));
}

TEST(RowCodec, ReadsRowsFromBeforeAColumnWasAdded)
{
    TableDefinition definition = readings();
    const Bytes row = fromHex(kReading);
    add(definition, "Extra", ColumnType::Long, 4, true);
    add(definition, "Note", ColumnType::Text, 100, false);
    add(definition, "Flag", ColumnType::Boolean, 1, true);
    EXPECT_EQ(valueOf(definition, row, "Extra"), Value(Null{}));
    EXPECT_EQ(valueOf(definition, row, "Note"), Value(Null{}));
    EXPECT_EQ(valueOf(definition, row, "Flag"), Value(false));
    EXPECT_EQ(valueOf(definition, row, "Type"), Value(std::int32_t{2}));
}

TEST(RowCodec, ReadsRowsFromBeforeTheFirstVariableColumn)
{
    TableDefinition definition;
    add(definition, "No", ColumnType::Long, 4, true);
    const Bytes row = build(definition, {{"No", std::int32_t{51}}});
    EXPECT_EQ(toHex(row), "01003300000001");
    add(definition, "Comment", ColumnType::Text, 100, false);
    EXPECT_EQ(valueOf(definition, row, "No"), Value(std::int32_t{51}));
    EXPECT_EQ(valueOf(definition, row, "Comment"), Value(Null{}));
    RowBuilder builder(definition, RowView(RowLayout(definition), row));
    builder.set(definition.columns[1], std::u16string(u"new"));
    EXPECT_EQ(valueOf(definition, builder.encode(), "Comment"), Value(std::u16string(u"new")));
}

TEST(RowCodec, SkipsWhatDeletedColumnsLeft)
{
    TableDefinition definition = readings();
    add(definition, "Note", ColumnType::Text, 100, false);
    const Bytes row = build(definition, {{"Mmol", 7.5},
                                         {"Type", std::int32_t{2}},
                                         {"Note", std::u16string(u"kept")},
                                         {"Comment", std::u16string(u"gone")}});
    definition.columns.erase(definition.columns.begin() + 4); // Comment, slot 0
    definition.columns.erase(definition.columns.begin() + 1); // Mmol
    EXPECT_EQ(valueOf(definition, row, "Type"), Value(std::int32_t{2}));
    EXPECT_EQ(valueOf(definition, row, "Note"), Value(std::u16string(u"kept")));

    const Bytes again = RowBuilder(definition, RowView(RowLayout(definition), row)).encode();
    EXPECT_EQ(valueOf(definition, again, "Type"), Value(std::int32_t{2}));
    EXPECT_EQ(valueOf(definition, again, "Note"), Value(std::u16string(u"kept")));
    EXPECT_EQ(again.size(), row.size() - 6) << "the deleted comment (FF FE and four letters) is dropped";
}

TEST(RowCodec, KeepsTheBytesOfColumnsThatDoNotChange)
{
    TableDefinition definition = readings();
    definition.columns[3].type = ColumnType::Block; // a type that is only copied
    // A comment in the mixed form, which is never written: A, switch, an en dash, switch, B.
    const Bytes row = fromHex("0500 33000000 0000000000001E40 63C92F969104E240 DEADBEEF "
                              "FFFE410013200042 2200 1A00 0100 1F");
    RowBuilder builder(definition, RowView(RowLayout(definition), row));
    EXPECT_EQ(toHex(builder.encode()), toHex(row));
    builder.set(definition.columns[1], 8.0);
    Bytes expected = row;
    putDouble(expected, 6, 8.0);
    EXPECT_EQ(toHex(builder.encode()), toHex(expected));
}

TEST(RowCodec, SetsAColumnBackToNull)
{
    const TableDefinition definition = readings();
    RowBuilder builder(definition, RowView(RowLayout(definition), fromHex(kReading)));
    builder.set(definition.columns[1], Null{});
    builder.set(definition.columns[4], Null{});
    EXPECT_EQ(toHex(builder.encode()),
              toHex(fromHex("0500 33000000 0000000000000000 63C92F969104E240 02000000 1A00 1A00 0100 0D")));
}

TEST(RowCodec, GivesAndTakesTheSlotOfALongValue)
{
    TableDefinition definition;
    add(definition, "Memo", ColumnType::Memo, 0, false);
    const Bytes slot = fromHex("03000080 00000000 00000000 A1A2A3");
    const Bytes row = build(definition, {{"Memo", slot}});
    EXPECT_EQ(toHex(row), toHex(fromHex("0100 03000080 00000000 00000000 A1A2A3 1100 0200 0100 01")));
    EXPECT_EQ(valueOf(definition, row, "Memo"), Value(slot));
    EXPECT_THAT(
        [&] {
            build(definition, {{"Memo", std::u16string(u"text")}});
        },
        throwsError(ErrorCode::InvalidArgument, "Memo"));
    // A slot without bytes reads as null although its bit is set.
    EXPECT_EQ(valueOf(definition, fromHex("0100 0200 0200 0100 01"), "Memo"), Value(Null{}));
}

TEST(RowCodec, RefusesARowThatIsTooLong)
{
    TableDefinition definition;
    for (int i = 0; i < 8; ++i) {
        add(definition, ("T" + std::to_string(i)).c_str(), ColumnType::Text, 510, false);
    }
    RowBuilder builder(definition);
    for (std::size_t i = 0; i < 7; ++i) {
        builder.set(definition.columns[i], std::u16string(255, u'\u20AC'));
    }
    // 2 + 7 * 510 + 9 * 2 + 2 + 1 = 3593; 467 bytes are left, 233 characters.
    builder.set(definition.columns[7], std::u16string(233, u'\u20AC'));
    EXPECT_EQ(builder.encode().size(), 4059U);
    builder.set(definition.columns[7], std::u16string(234, u'\u20AC'));
    EXPECT_THAT([&] { static_cast<void>(builder.encode()); }, throwsError(ErrorCode::ValueTooLong));
}

TEST(RowCodec, ReadsARowThatIsPaddedBehindItsValues)
{
    const TableDefinition definition = readings();
    const Bytes row = fromHex("0500 33000000 0000000000001E40 63C92F969104E240 02000000 "
                              "61006200 CCCCCCCC 1E00 1A00 0100 1F");
    EXPECT_EQ(valueOf(definition, row, "Comment"), Value(std::u16string(u"ab")));
}

TEST(RowCodec, IgnoresUnusedBitsOfTheMask)
{
    const TableDefinition definition = readings();
    Bytes row = fromHex(kReading);
    row.back() = std::byte{0xFF};
    EXPECT_EQ(valueOf(definition, row, "Type"), Value(std::int32_t{2}));
}

// Reads everything; an answer or Corrupt, nothing else.
void readAll(const TableDefinition& definition, ByteView row)
{
    try {
        const RowView view(RowLayout(definition), row);
        for (const Column& column : definition.columns) {
            static_cast<void>(view.value(column));
        }
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::Corrupt);
    }
}

TEST(RowCodec, SurvivesBeingCutAnywhere)
{
    const TableDefinition definition = readings();
    const Bytes row = fromHex(kReading);
    for (std::size_t length = 0; length < row.size(); ++length) {
        const Bytes cut(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(length));
        readAll(definition, cut);
    }
    EXPECT_THAT([&] { valueOf(definition, ByteView(row).first(1), "No"); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { valueOf(definition, ByteView(row).first(6), "No"); }, throwsError(ErrorCode::Corrupt));
}

TEST(RowCodec, SurvivesAnyTwoBytesBeingWrong)
{
    const TableDefinition definition = readings();
    const Bytes row = fromHex(kReading);
    for (std::size_t at = 0; at + 1 < row.size(); ++at) {
        for (const int value : {0x0000, 0x0001, 0x00FF, 0x0100, 0x7FFF, 0xFFFF}) {
            Bytes damaged = row;
            putU16(damaged, at, static_cast<std::uint16_t>(value));
            readAll(definition, damaged);
        }
    }
}

struct Damage {
    const char* what;
    std::size_t offset;
    std::uint16_t value;
    const char* column;
};

class DamagedRow : public testing::TestWithParam<Damage>
{
};

TEST_P(DamagedRow, IsCorrupt)
{
    const TableDefinition definition = readings();
    Bytes row = fromHex(kReading); // 48 bytes: end of values at 41, slot 0 at 43, slots at 45, mask at 47
    putU16(row, GetParam().offset, GetParam().value);
    EXPECT_THAT([&] { valueOf(definition, row, GetParam().column); }, throwsError(ErrorCode::Corrupt));
}

INSTANTIATE_TEST_SUITE_P(Cases, DamagedRow,
                         testing::Values(Damage{"MoreColumnsThanBytes", 0, 0xFFFF, "No"},
                                         Damage{"MoreSlotsThanBytes", 45, 30, "No"},
                                         Damage{"NoSlotForTheColumn", 45, 0, "Comment"},
                                         Damage{"SlotBeginsInTheHead", 43, 1, "No"},
                                         Damage{"SlotBeginsInTheFixedPart", 43, 10, "Type"},
                                         Damage{"SlotBeginsPastItsEnd", 43, 42, "Comment"},
                                         Damage{"ValuesEndInTheTrailer", 41, 42, "Comment"},
                                         Damage{"ValuesEndPastTheRow", 41, 0xFFFF, "Comment"}),
                         [](const auto& each) { return std::string(each.param.what); });

} // namespace
} // namespace jet
