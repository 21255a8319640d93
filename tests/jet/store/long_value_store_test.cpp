#include "jet/store/long_value_store.h"

#include "jet/format/hex.h"
#include "jet/store/new_file.h"
#include "jet/store/page_allocator.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace jet {
namespace {

using test::fromHex;
using test::NewFile;
using test::throwsError;
using test::toHex;

Bytes valueOf(std::size_t length, std::uint32_t seed = 1)
{
    std::mt19937 random(seed);
    Bytes value(length);
    std::generate(value.begin(), value.end(), [&] { return static_cast<std::byte>(random()); });
    return value;
}

class LongValues : public testing::Test
{
protected:
    LongValues() : maps_(createUsageMaps(pager(), 2)), store_(pager(), LongValueMaps{7, maps_[0], maps_[1]}) {}

    Pager& pager() { return file_.pager(); }
    [[nodiscard]] UsageMap owned() { return {pager(), maps_[0]}; }
    [[nodiscard]] UsageMap withSpace() { return {pager(), maps_[1]}; }
    [[nodiscard]] Bytes read(const Bytes& slot) { return readLongValue(pager(), slot); }
    [[nodiscard]] auto reading(const Bytes& slot)
    {
        return [this, slot] { static_cast<void>(readLongValue(pager(), slot)); };
    }

    void expectSound()
    {
        for (const PageNumber number : owned().pages()) {
            const PageRef page = pager().read(number);
            ASSERT_TRUE(isDataPageOf(*page, kLongValueOwner)) << number;
            EXPECT_NO_THROW(DataPage(*page, number).validate());
            EXPECT_FALSE(DataPage(*page, number).isEmpty()) << number;
            EXPECT_EQ(withSpace().contains(number), DataPage(*page, number).fits(62)) << number;
        }
        test::expectEveryPageAccountedFor(pager(), {owned()}, {maps_[0].page});
    }

    NewFile file_;
    std::vector<RowPointer> maps_;
    LongValueStore store_;
};

class LongValuesOfLength : public LongValues, public testing::WithParamInterface<std::size_t>
{
};

TEST_P(LongValuesOfLength, ComeBackAndGoWithoutATrace)
{
    const Bytes value = valueOf(GetParam());
    const Bytes slot = store_.write(value);
    EXPECT_EQ(read(slot), value);
    EXPECT_LE(slot.size(), 64U);
    EXPECT_EQ(decodeLongValue(slot).length, GetParam());
    expectSound();
    store_.free(slot);
    EXPECT_TRUE(owned().pages().empty());
    EXPECT_TRUE(withSpace().pages().empty());
    expectSound();
}

INSTANTIATE_TEST_SUITE_P(Lengths, LongValuesOfLength,
                         testing::Values(0, 1, 52, 53, 200, 4075, 4076, 4077, 8143, 8144, 8145, 15000, 200000));

TEST_F(LongValues, AreStoredByTheirLength)
{
    EXPECT_EQ(decodeLongValue(store_.write(valueOf(52))).storage, LongValue::Storage::Inline);
    EXPECT_EQ(decodeLongValue(store_.write(valueOf(53))).storage, LongValue::Storage::OneRow);
    EXPECT_EQ(decodeLongValue(store_.write(valueOf(4076))).storage, LongValue::Storage::OneRow);
    EXPECT_EQ(decodeLongValue(store_.write(valueOf(4077))).storage, LongValue::Storage::Chain);
}

TEST_F(LongValues, OfTwoPartsNameTheSecondInTheFirst)
{
    const Bytes value = valueOf(4100);
    const LongValue stored = decodeLongValue(store_.write(value));
    const PageRef page = pager().read(stored.first.page);
    const DataPage rows(*page, stored.first.page);
    const ByteView first = rows.bytes(stored.first.row);
    ASSERT_EQ(first.size(), 4076U);
    const RowPointer next = rows.target(stored.first.row);
    const PageRef nextPage = pager().read(next.page);
    const ByteView second = DataPage(*nextPage, next.page).bytes(next.row);
    EXPECT_EQ(toHex(second), "00000000" + toHex(ByteView(value).subspan(4072)));
}

TEST_F(LongValues, ShareAPage)
{
    for (std::uint32_t i = 0; i < 10; ++i) {
        static_cast<void>(store_.write(valueOf(300, i)));
    }
    EXPECT_EQ(owned().pages().size(), 1U);
    expectSound();
}

TEST_F(LongValues, FillThePlaceOfThoseFreed)
{
    std::vector<Bytes> slots;
    for (std::uint32_t i = 0; i < 13; ++i) {
        slots.push_back(store_.write(valueOf(300, i)));
    }
    store_.free(slots[4]);
    expectSound();
    static_cast<void>(store_.write(valueOf(300, 99)));
    EXPECT_EQ(owned().pages().size(), 1U);
    EXPECT_EQ(read(slots[5]), valueOf(300, 5));
    expectSound();
}

TEST_F(LongValues, DoWithoutAMapOfPagesWithSpace)
{
    LongValueStore store(pager(), LongValueMaps{.columnNumber = 7, .owned = maps_[0], .withSpace = {}});
    const Bytes slot = store.write(valueOf(5000));
    EXPECT_EQ(read(slot), valueOf(5000));
    EXPECT_EQ(owned().pages().size(), 2U);
    store.free(slot);
    EXPECT_TRUE(owned().pages().empty());
    EXPECT_TRUE(withSpace().pages().empty());
}

TEST_F(LongValues, AreTextInAMemoAndBytesInAnOleColumn)
{
    Column memo;
    memo.name = "Notes";
    memo.type = ColumnType::Memo;
    memo.flags = Column::kOrdinary;
    memo.extraFlags = Column::kCompressible;
    EXPECT_EQ(toHex(store_.write(memo, std::u16string(u"abc"))), "050000800000000000000000fffe616263");
    memo.extraFlags = 0;
    EXPECT_EQ(toHex(store_.write(memo, std::u16string(u"abc"))), "060000800000000000000000610062006300");
    EXPECT_THAT([&] { static_cast<void>(store_.write(memo, Bytes(3))); },
                throwsError(ErrorCode::InvalidArgument, "Notes"));
    Column ole = memo;
    ole.type = ColumnType::Ole;
    EXPECT_EQ(toHex(store_.write(ole, fromHex("0102"))), "0200008000000000000000000102");
    EXPECT_THAT([&] { static_cast<void>(store_.write(ole, std::u16string(u"abc"))); },
                throwsError(ErrorCode::InvalidArgument));
}

TEST_F(LongValues, AreReadThroughTheirRow)
{
    TableDefinition definition;
    definition.maximumColumns = 2;
    definition.maximumVariableColumns = 2;
    definition.columns.resize(2);
    for (std::uint16_t i = 0; i < 2; ++i) {
        definition.columns[i].type = i == 0 ? ColumnType::Memo : ColumnType::Ole;
        definition.columns[i].flags = Column::kOrdinary;
        definition.columns[i].number = definition.columns[i].variableSlot = i;
    }
    const std::u16string text(3000, u'\u20AC');
    RowBuilder builder(definition);
    builder.set(definition.columns[0], store_.write(definition.columns[0], text));
    const Bytes row = builder.encode();
    const RowView view(RowLayout(definition), row);
    EXPECT_EQ(readValue(pager(), view, definition.columns[0]), Value(text));
    EXPECT_EQ(readValue(pager(), view, definition.columns[1]), Value(Null{}));
}

TEST_F(LongValues, StopWhenTheLengthIsReached)
{
    const Bytes value = valueOf(10000);
    LongValue stored = decodeLongValue(store_.write(value));
    stored.length = 5000; // the chain goes on
    EXPECT_EQ(read(encodeLongValue(stored)), Bytes(value.begin(), value.begin() + 5000));
}

TEST_F(LongValues, ThatDoNotHoldTogetherAreCorrupt)
{
    const Bytes slot = store_.write(valueOf(10000));
    const LongValue good = decodeLongValue(slot);
    const auto with = [&](auto change) {
        LongValue value = good;
        change(value);
        return reading(encodeLongValue(value));
    };
    EXPECT_THAT(with([](LongValue& value) { value.length = 10001; }), throwsError(ErrorCode::Corrupt, "ends early"));
    EXPECT_THAT(with([](LongValue& value) { value.length = 0x3FFFFFFF; }),
                throwsError(ErrorCode::Corrupt, "longer than the file"));
    EXPECT_THAT(with([](LongValue& value) { value.first.row = 250; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(with([](LongValue& value) { value.first.page = 0; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(with([](LongValue& value) { value.first.page = 0xFFFFFF; }), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(with([](LongValue& value) { value.first.page = 1; }), throwsError(ErrorCode::Corrupt, "another kind"));
    EXPECT_THAT(with([](LongValue& value) { value.storage = LongValue::Storage::OneRow; }),
                throwsError(ErrorCode::Corrupt, "ends early"));

    // The first part names itself.
    Bytes pointer(4);
    putRowPointer(pointer, 0, good.first);
    putBytes(DataPageEditor(pager().modify(good.first.page), good.first.page).bytes(good.first.row), 0, pointer);
    EXPECT_THAT(reading(slot), throwsError(ErrorCode::Corrupt, "circle"));
    EXPECT_THAT([&] { store_.free(slot); }, throwsError(ErrorCode::Corrupt, "circle"));
}

TEST_F(LongValues, ThatWereFreedAreCorrupt)
{
    const Bytes kept = store_.write(valueOf(300, 1));
    const Bytes slot = store_.write(valueOf(300, 2));
    store_.free(slot);
    EXPECT_THAT(reading(slot), throwsError(ErrorCode::Corrupt, "deleted"));
    EXPECT_EQ(read(kept), valueOf(300, 1));
}

TEST_F(LongValues, OnAPageThatTheColumnDoesNotOwnLeaveThePage)
{
    const Bytes slot = store_.write(valueOf(300));
    const PageNumber page = decodeLongValue(slot).first.page;
    owned().remove(page);
    store_.free(slot);
    EXPECT_FALSE(PageAllocator(pager()).isFree(page));
}

TEST_F(LongValues, AgreeWithAPlainMapThroughRandomChanges)
{
    std::mt19937 random(5);
    std::vector<std::pair<Bytes, Bytes>> model; // slot and value
    for (std::uint32_t step = 0; step < 1500; ++step) {
        if (model.empty() || random() % 9 < 5) {
            const std::size_t longest = random() % 4 == 0 ? 20000 : 500;
            const Bytes value = valueOf(random() % longest, step);
            model.emplace_back(store_.write(value), value);
        } else {
            const auto victim = model.begin() + static_cast<std::ptrdiff_t>(random() % model.size());
            store_.free(victim->first);
            model.erase(victim);
        }
        if (step % 250 == 0) {
            expectSound();
            for (const auto& [slot, value] : model) {
                ASSERT_EQ(read(slot), value);
            }
        }
    }
    for (const auto& [slot, value] : model) {
        store_.free(slot);
    }
    EXPECT_TRUE(owned().pages().empty());
    expectSound();
}

} // namespace
} // namespace jet
