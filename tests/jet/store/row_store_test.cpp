#include "jet/store/row_store.h"

#include "jet/format/hex.h"
#include "jet/store/new_file.h"
#include "jet/store/page_allocator.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace jet {
namespace {

using test::fromHex;
using test::NewFile;
using test::throwsError;
using test::toHex;

constexpr PageNumber kOwner = 24;

/// A row that says which one it is, padded to the length.
Bytes rowOf(std::uint32_t number, std::size_t length = 40)
{
    Bytes row(length, std::byte{0xEE});
    putU32(row, 0, number);
    return row;
}

std::uint32_t numberOf(const StoredRow& row)
{
    return getU32(row.bytes, 0);
}

class Rows : public testing::Test
{
protected:
    Rows() : maps_(createUsageMaps(pager(), 2)), rows_(pager(), kOwner, maps_[0], maps_[1]) {}

    Pager& pager() { return file_.pager(); }
    [[nodiscard]] UsageMap owned() { return {pager(), maps_[0]}; }
    [[nodiscard]] UsageMap withSpace() { return {pager(), maps_[1]}; }

    std::vector<std::uint32_t> scanned()
    {
        std::vector<std::uint32_t> numbers;
        for (RowStore::Cursor cursor = rows_.scan(); cursor.next();) {
            numbers.push_back(numberOf(cursor.row()));
        }
        return numbers;
    }
    SlotKind kindOf(RowPointer slot) { return DataPage(*pager().read(slot.page), slot.page).kind(slot.row); }

    /// The store's invariants.
    void expectSound()
    {
        for (const PageNumber number : owned().pages()) {
            const PageRef page = pager().read(number);
            ASSERT_TRUE(isDataPageOf(*page, kOwner)) << number;
            const DataPage data(*page, number);
            EXPECT_NO_THROW(data.validate());
            EXPECT_EQ(withSpace().contains(number), data.fits(62)) << number;
            EXPECT_TRUE(!data.isEmpty() || number == owned().last()) << number;
            for (std::size_t slot = 0; slot < data.slotCount(); ++slot) {
                if (data.kind(slot) == SlotKind::Pointer) {
                    EXPECT_EQ(kindOf(data.target(slot)), SlotKind::Moved) << "what is written here never chains";
                }
            }
        }
        std::vector<PageNumber> others = withSpace().bitmapPages();
        others.push_back(maps_[0].page);
        test::expectEveryPageAccountedFor(pager(), {owned()}, others);
        for (const PageNumber page : withSpace().pages()) {
            EXPECT_TRUE(owned().contains(page)) << page;
        }
    }

    NewFile file_;
    std::vector<RowPointer> maps_;
    RowStore rows_;
};

TEST_F(Rows, AreNoneAtFirst)
{
    EXPECT_FALSE(rows_.scan().next());
    EXPECT_FALSE(rows_.read({.page = 0, .row = 0}).has_value());
    EXPECT_FALSE(rows_.read({.page = 1, .row = 0}).has_value()) << "a page of another owner";
    EXPECT_FALSE(rows_.read({.page = 99, .row = 0}).has_value()) << "past the end";
}

TEST_F(Rows, ComeBackAsTheyWereStored)
{
    const RowPointer first = rows_.insert(fromHex("01000000AA"));
    const RowPointer second = rows_.insert(fromHex("02000000"));
    EXPECT_EQ(first, (RowPointer{.page = 3, .row = 0}));
    EXPECT_EQ(second, (RowPointer{.page = 3, .row = 1}));
    const std::optional<StoredRow> row = rows_.read(first);
    ASSERT_TRUE(row.has_value());
    EXPECT_EQ(toHex(row->bytes), "01000000aa");
    EXPECT_EQ(row->address, first);
    EXPECT_FALSE(rows_.read({.page = 3, .row = 2}).has_value());
    EXPECT_THAT(scanned(), testing::ElementsAre(1, 2));
    expectSound();
}

TEST_F(Rows, StayAsTheyWereWhenRead)
{
    const RowPointer address = rows_.insert(rowOf(1));
    const std::optional<StoredRow> before = rows_.read(address);
    rows_.update(address, rowOf(9));
    EXPECT_EQ(numberOf(*before), 1U);
    EXPECT_EQ(numberOf(*rows_.read(address)), 9U);
}

TEST_F(Rows, AreScannedInTheOrderOfEntry)
{
    std::vector<RowPointer> addresses;
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        addresses.push_back(rows_.insert(rowOf(i, 20 + i % 200)));
        numbers.push_back(i);
    }
    EXPECT_EQ(scanned(), numbers);
    EXPECT_TRUE(std::is_sorted(addresses.begin(), addresses.end()));
    // Room inside earlier pages does not draw new rows to it.
    for (std::uint32_t i = 0; i < 500; i += 2) {
        rows_.erase(addresses[i]);
        std::erase(numbers, i);
    }
    for (std::uint32_t i = 1000; i < 1300; ++i) {
        rows_.insert(rowOf(i));
        numbers.push_back(i);
    }
    EXPECT_EQ(scanned(), numbers);
    expectSound();
}

TEST_F(Rows, GrowOnTheirPageWhileThereIsRoom)
{
    const RowPointer first = rows_.insert(rowOf(1));
    rows_.insert(rowOf(2));
    rows_.update(first, rowOf(1, 2000));
    EXPECT_EQ(kindOf(first), SlotKind::Row);
    EXPECT_EQ(rows_.read(first)->bytes.size(), 2000U);
    EXPECT_THAT(scanned(), testing::ElementsAre(1, 2));
    rows_.update(first, rowOf(1, 10));
    EXPECT_EQ(rows_.read(first)->bytes.size(), 10U);
    expectSound();
}

TEST_F(Rows, MoveWhenTheirPageIsFullAndKeepTheirAddress)
{
    std::vector<RowPointer> addresses;
    for (std::uint32_t i = 0; i < 4; ++i) {
        addresses.push_back(rows_.insert(rowOf(i, 1018)));
    }
    rows_.update(addresses[1], rowOf(101, 1500));
    EXPECT_EQ(kindOf(addresses[1]), SlotKind::Pointer);
    const std::optional<StoredRow> moved = rows_.read(addresses[1]);
    ASSERT_TRUE(moved.has_value());
    EXPECT_EQ(moved->address, addresses[1]);
    EXPECT_NE(moved->dataPage, addresses[1].page);
    EXPECT_EQ(moved->bytes.size(), 1500U);
    EXPECT_THAT(scanned(), testing::ElementsAre(0, 101, 2, 3)) << "its place in the order stays";
    EXPECT_FALSE(rows_.read({.page = moved->dataPage, .row = 0}).has_value()) << "the data's slot is no address";
    expectSound();

    // It grows where it is.
    rows_.update(addresses[1], rowOf(102, 2500));
    EXPECT_EQ(rows_.read(addresses[1])->dataPage, moved->dataPage);
    EXPECT_EQ(rows_.read(addresses[1])->bytes.size(), 2500U);
    expectSound();

    // It comes home when there is room again.
    rows_.update(addresses[1], rowOf(103, 900));
    EXPECT_EQ(kindOf(addresses[1]), SlotKind::Row);
    EXPECT_EQ(rows_.read(addresses[1])->dataPage, addresses[1].page);
    EXPECT_THAT(scanned(), testing::ElementsAre(0, 103, 2, 3));
    expectSound();
}

TEST_F(Rows, MoveOnWithoutChaining)
{
    std::vector<RowPointer> addresses;
    for (std::uint32_t i = 0; i < 8; ++i) {
        addresses.push_back(rows_.insert(rowOf(i, 1018)));
    }
    rows_.update(addresses[0], rowOf(100, 2100));
    const PageNumber first = rows_.read(addresses[0])->dataPage;
    rows_.insert(rowOf(8, 1900)); // fills the page of the moved data
    rows_.update(addresses[0], rowOf(101, 3000));
    EXPECT_NE(rows_.read(addresses[0])->dataPage, first);
    EXPECT_EQ(rows_.read(addresses[0])->bytes.size(), 3000U);
    EXPECT_THAT(scanned(), testing::ElementsAre(101, 1, 2, 3, 4, 5, 6, 7, 8));
    expectSound();
    rows_.erase(addresses[0]);
    EXPECT_THAT(scanned(), testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    expectSound();
}

TEST_F(Rows, AreGoneWhenErased)
{
    const RowPointer address = rows_.insert(rowOf(1));
    rows_.insert(rowOf(2));
    rows_.erase(address);
    EXPECT_FALSE(rows_.read(address).has_value());
    EXPECT_THAT(scanned(), testing::ElementsAre(2));
    EXPECT_THAT([&] { rows_.erase(address); }, throwsError(ErrorCode::NoSuchObject));
    EXPECT_THAT([&] { rows_.update(address, rowOf(1)); }, throwsError(ErrorCode::NoSuchObject));
    EXPECT_THAT([&] { rows_.erase({.page = 1, .row = 0}); }, throwsError(ErrorCode::NoSuchObject));
    expectSound();
}

TEST_F(Rows, GiveTheirPageBackWithTheLastOfThem)
{
    std::vector<RowPointer> addresses;
    for (std::uint32_t i = 0; i < 12; ++i) {
        addresses.push_back(rows_.insert(rowOf(i, 1018)));
    }
    ASSERT_EQ(owned().pages().size(), 3U);
    for (std::size_t i = 4; i < 8; ++i) {
        rows_.erase(addresses[i]);
    }
    EXPECT_EQ(owned().pages().size(), 2U);
    EXPECT_TRUE(PageAllocator(pager()).isFree(addresses[4].page));
    EXPECT_FALSE(rows_.read(addresses[4]).has_value());
    EXPECT_THAT(scanned(), testing::ElementsAre(0, 1, 2, 3, 8, 9, 10, 11));
    expectSound();
}

TEST_F(Rows, NeverTakeTheAddressOfAnother)
{
    std::vector<RowPointer> seen;
    for (int round = 0; round < 20; ++round) {
        std::vector<RowPointer> addresses;
        for (std::uint32_t i = 0; i < 30; ++i) {
            addresses.push_back(rows_.insert(rowOf(i, 300)));
        }
        for (const RowPointer address : addresses) {
            rows_.erase(address);
        }
        seen.insert(seen.end(), addresses.begin(), addresses.end());
        EXPECT_EQ(owned().pages().size(), 1U) << "the highest page stays, empty";
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(std::adjacent_find(seen.begin(), seen.end()), seen.end());
    expectSound();
}

TEST_F(Rows, FillMoreThan512Pages)
{
    // Rows of half a page, so that the table passes 512 pages and its maps become references.
    for (std::uint32_t i = 0; i < 1400; ++i) {
        rows_.insert(rowOf(i, 2000));
    }
    EXPECT_EQ(owned().pages().size(), 700U);
    EXPECT_FALSE(owned().bitmapPages().empty());
    EXPECT_EQ(scanned().size(), 1400U);
    EXPECT_EQ(scanned().back(), 1399U);
    expectSound();
}

TEST_F(Rows, OfOtherProgramsMayChain)
{
    const RowPointer home = rows_.insert(rowOf(1));
    const RowPointer middle = rows_.insert(rowOf(2));
    const RowPointer data = rows_.insert(rowOf(3));
    DataPageEditor editor(pager().modify(home.page), home.page);
    Bytes pointer(4);
    putRowPointer(pointer, 0, middle);
    editor.replace(home.row, pointer, SlotKind::Pointer);
    putRowPointer(pointer, 0, data);
    editor.replace(middle.row, pointer, SlotKind::Pointer);
    editor.replace(data.row, rowOf(3), SlotKind::Moved);
    EXPECT_EQ(numberOf(*rows_.read(home)), 3U);

    rows_.update(home, rowOf(4));
    EXPECT_EQ(numberOf(*rows_.read(home)), 4U);
    EXPECT_EQ(kindOf(middle), SlotKind::Deleted);
    EXPECT_EQ(kindOf(data), SlotKind::Deleted);
    expectSound();
}

TEST_F(Rows, WhosePointersDoNotHoldTogetherAreCorrupt)
{
    const RowPointer home = rows_.insert(rowOf(1));
    const RowPointer gone = rows_.insert(rowOf(2));
    rows_.erase(gone);
    const auto pointTo = [&](RowPointer target) {
        Bytes pointer(4);
        putRowPointer(pointer, 0, target);
        DataPageEditor(pager().modify(home.page), home.page).replace(home.row, pointer, SlotKind::Pointer);
        return [this, home] { static_cast<void>(rows_.read(home)); };
    };
    EXPECT_THAT(pointTo(home), throwsError(ErrorCode::Corrupt, "circle"));
    EXPECT_THAT(pointTo(gone), throwsError(ErrorCode::Corrupt, "deleted"));
    EXPECT_THAT(pointTo({.page = home.page, .row = 77}), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(pointTo({.page = 1, .row = 0}), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(pointTo({.page = 0xFFFFFF, .row = 0}), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { scanned(); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { rows_.update(home, rowOf(5)); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { rows_.erase(home); }, throwsError(ErrorCode::Corrupt));
}

TEST_F(Rows, OnAPageOfAnotherOwnerAreCorrupt)
{
    const RowPointer row = rows_.insert(rowOf(1));
    putU32(pager().modify(row.page), 4, 77);
    EXPECT_THAT([&] { scanned(); }, throwsError(ErrorCode::Corrupt, "page 3"));
    EXPECT_THAT([&] { rows_.insert(rowOf(2)); }, throwsError(ErrorCode::Corrupt, "page 3"));
}

TEST_F(Rows, MayBeErasedWhileTheyAreScanned)
{
    for (std::uint32_t i = 0; i < 500; ++i) {
        rows_.insert(rowOf(i, 100));
    }
    std::size_t count = 0;
    for (RowStore::Cursor cursor = rows_.scan(); cursor.next(); ++count) {
        EXPECT_EQ(numberOf(cursor.row()), count);
        rows_.erase(cursor.row().address);
    }
    EXPECT_EQ(count, 500U);
    EXPECT_TRUE(scanned().empty());
    expectSound();
}

class RandomRows : public Rows, public testing::WithParamInterface<unsigned>
{
};

TEST_P(RandomRows, AgreeWithAPlainMap)
{
    std::mt19937 random(GetParam());
    std::map<std::uint32_t, std::pair<RowPointer, Bytes>> model; // by number, which is the order of entry
    std::uint32_t next = 0;
    const std::size_t longest = GetParam() % 2 == 0 ? 300 : 3900;
    const auto row = [&](std::uint32_t number) {
        Bytes bytes(4 + random() % longest, static_cast<std::byte>(random()));
        putU32(bytes, 0, number);
        return bytes;
    };
    const auto pick = [&] { return std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size())); };
    for (int batch = 0; batch < 12; ++batch) {
        const unsigned inserts = batch % 3 == 2 ? 2 : 5; // every third batch shrinks the table
        for (int step = 0; step < 250; ++step) {
            const unsigned what = static_cast<unsigned>(random() % 10);
            if (what < inserts || model.empty()) {
                const Bytes bytes = row(next);
                model[next] = {rows_.insert(bytes), bytes};
                ++next;
            } else if (what < 8) {
                const auto victim = pick();
                victim->second.second = row(victim->first);
                rows_.update(victim->second.first, victim->second.second);
            } else {
                const auto victim = pick();
                rows_.erase(victim->second.first);
                EXPECT_FALSE(rows_.read(victim->second.first).has_value());
                model.erase(victim);
            }
        }
        expectSound();
        auto expected = model.begin();
        for (RowStore::Cursor cursor = rows_.scan(); cursor.next(); ++expected) {
            ASSERT_NE(expected, model.end());
            ASSERT_EQ(cursor.row().address, expected->second.first);
            ASSERT_TRUE(std::ranges::equal(cursor.row().bytes, expected->second.second)) << expected->first;
        }
        ASSERT_EQ(expected, model.end());
        for (const auto& [number, stored] : model) {
            const std::optional<StoredRow> read = rows_.read(stored.first);
            ASSERT_TRUE(read.has_value());
            ASSERT_TRUE(std::ranges::equal(read->bytes, stored.second)) << number;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomRows, testing::Range(0U, 6U));

} // namespace
} // namespace jet
