#include "jet/store/usage_map.h"

#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/format/usage_map_codec.h"

#include "jet/format/hex.h"
#include "jet/store/new_file.h"
#include "jet/store/page_allocator.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace jet {
namespace {

using test::fromHex;
using test::NewFile;
using test::throwsError;
using test::toHex;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr RowPointer kGlobalMap{.page = 1, .row = 0};

class UsageMaps : public testing::Test
{
protected:
    RowPointer newMap() { return createUsageMaps(pager(), 1).front(); }

    /// A map whose row holds these bytes.
    UsageMap mapOf(const Bytes& row)
    {
        const RowPointer where = newMap();
        setRow(where, row);
        return {pager(), where};
    }
    void setRow(RowPointer where, const Bytes& row)
    {
        DataPageEditor(pager().modify(where.page), where.page).replace(where.row, row, SlotKind::Row);
    }
    Bytes row(RowPointer where)
    {
        const PageRef page = pager().read(where.page);
        const ByteView bytes = DataPage(*page, where.page).bytes(where.row);
        return {bytes.begin(), bytes.end()};
    }
    Pager& pager() { return file_.pager(); }

    NewFile file_;
};

class Allocation : public UsageMaps
{
};

// --- Sets of pages ---

TEST_F(UsageMaps, AreMadeEmptyOnPagesOfTheirOwn)
{
    const std::vector<RowPointer> maps = createUsageMaps(pager(), 60);
    ASSERT_EQ(maps.size(), 60U);
    EXPECT_EQ(maps[0], (RowPointer{.page = 2, .row = 0}));
    EXPECT_EQ(maps[56], (RowPointer{.page = 2, .row = 56})) << "57 maps of 69 bytes and a slot each fit a page";
    EXPECT_EQ(maps[57], (RowPointer{.page = 3, .row = 0}));
    for (const RowPointer where : maps) {
        EXPECT_EQ(toHex(row(where)), std::string(138, '0'));
        EXPECT_THAT(UsageMap(pager(), where).pages(), IsEmpty());
    }
    EXPECT_TRUE(isDataPageOf(*pager().read(2), kMapPageOwner));
}

TEST_F(UsageMaps, HoldWhatIsAddedAndNotWhatIsRemoved)
{
    file_.growTo(40);
    const RowPointer where = newMap();
    UsageMap map(pager(), where);
    map.add(26);
    EXPECT_EQ(toHex(row(where)).substr(0, 14), "00000000000000") << "starts at page 0, bytes 3 holds bit 26";
    EXPECT_EQ(toHex(row(where)).substr(16, 2), "04");
    map.add(9);
    map.add(9);
    EXPECT_THAT(map.pages(), ElementsAre(9, 26));
    EXPECT_TRUE(map.contains(9));
    EXPECT_FALSE(map.contains(10));
    EXPECT_FALSE(map.contains(100000));
    map.remove(26);
    map.remove(27);
    map.remove(100000);
    EXPECT_THAT(map.pages(), ElementsAre(9));
}

TEST_F(UsageMaps, WalkUpAndDown)
{
    file_.growTo(40);
    UsageMap map(pager(), newMap());
    EXPECT_EQ(map.last(), 0U);
    EXPECT_EQ(map.next(0), 0U);
    for (const PageNumber page : {7U, 8U, 31U}) {
        map.add(page);
    }
    EXPECT_EQ(map.last(), 31U);
    EXPECT_EQ(map.next(0), 7U);
    EXPECT_EQ(map.next(7), 8U);
    EXPECT_EQ(map.next(8), 31U);
    EXPECT_EQ(map.next(31), 0U);
    EXPECT_EQ(map.previous(31), 8U);
    EXPECT_EQ(map.previous(7), 0U);
}

TEST_F(UsageMaps, StartWhereTheyAreFirstNeeded)
{
    file_.growTo(701);
    const RowPointer where = newMap();
    UsageMap map(pager(), where);
    map.add(700);
    EXPECT_EQ(toHex(row(where)).substr(0, 12), "00b802000010") << "starts at 696, a multiple of 8; bit 4";
    EXPECT_THAT(map.pages(), ElementsAre(700));
}

TEST_F(UsageMaps, MoveTheirStartWhileTheMembersFit)
{
    file_.growTo(700);
    const RowPointer where = newMap();
    UsageMap map(pager(), where);
    map.add(690);
    map.add(200);
    EXPECT_THAT(map.pages(), ElementsAre(200, 690)) << "200 to 711 are 512 pages";
    EXPECT_EQ(toHex(row(where)).substr(0, 10), "00c8000000");
    EXPECT_THAT(map.bitmapPages(), IsEmpty());
}

TEST_F(UsageMaps, BecomeReferencesWhenTheMembersLieTooFarApart)
{
    file_.growTo(700);
    const RowPointer where = newMap();
    UsageMap map(pager(), where);
    map.add(690);
    map.add(184);
    EXPECT_THAT(map.bitmapPages(), IsEmpty());
    map.add(177); // 176 to 687 is all that a row of 64 bytes holds
    EXPECT_THAT(map.pages(), ElementsAre(177, 184, 690));
    ASSERT_THAT(map.bitmapPages(), ElementsAre(701));
    EXPECT_EQ(toHex(row(where)), toHex(fromHex("01 BD020000")) + std::string(128, '0'));
    EXPECT_TRUE(isBitmapPage(*pager().read(701)));
    EXPECT_FALSE(PageAllocator(pager()).isFree(701));
    map.remove(184);
    EXPECT_THAT(map.pages(), ElementsAre(177, 690));
    EXPECT_EQ(map.last(), 690U);
    EXPECT_EQ(map.next(177), 690U);
}

TEST_F(UsageMaps, TakeABitmapForEach32736Pages)
{
    file_.growTo(33000);
    UsageMap map(pager(), newMap());
    map.add(10);
    map.add(32735);
    ASSERT_EQ(map.bitmapPages().size(), 1U);
    map.add(32736);
    ASSERT_EQ(map.bitmapPages().size(), 2U);
    EXPECT_THAT(map.pages(), ElementsAre(10, 32735, 32736));
    EXPECT_EQ(map.last(), 32736U);
    EXPECT_EQ(map.next(32735), 32736U);
    EXPECT_EQ(map.next(10), 32735U);
    EXPECT_EQ(map.previous(32736), 32735U);
    map.remove(32736);
    EXPECT_EQ(map.last(), 32735U) << "an empty bitmap stays and is passed over";
}

TEST_F(UsageMaps, UseRowsOfAnyLength)
{
    file_.growTo(60);
    UsageMap map = mapOf(fromHex("00 20000000 01 80")); // 32 to 47
    EXPECT_THAT(map.pages(), ElementsAre(32, 47));
    map.add(33);
    EXPECT_THAT(map.pages(), ElementsAre(32, 33, 47));
    EXPECT_THAT(mapOf(fromHex("00 00000000")).pages(), IsEmpty());
}

TEST_F(UsageMaps, RefuseMembersThatNoPageHas)
{
    file_.growTo(60);
    const auto pagesOf = [&](const char* hex) {
        const UsageMap map = mapOf(fromHex(hex));
        return [map] { static_cast<void>(map.pages()); };
    };
    EXPECT_THAT(pagesOf("00 F0000000 01"), throwsError(ErrorCode::Corrupt)) << "page 240";
    EXPECT_THAT(pagesOf("00 FFFFFFFF 01"), throwsError(ErrorCode::Corrupt)) << "page -1";
    EXPECT_THAT(pagesOf("00 FFFFFF7F 01"), throwsError(ErrorCode::Corrupt)) << "the highest number";
    EXPECT_THAT([&] { static_cast<void>(mapOf(fromHex("00 F0000000 01")).last()); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { static_cast<void>(mapOf(fromHex("00 F0000000 01")).next(0)); }, throwsError(ErrorCode::Corrupt));
}

TEST_F(UsageMaps, RefuseABitmapThatIsNone)
{
    const UsageMap map = mapOf(fromHex("01 01000000 00000000"));
    EXPECT_THAT([&] { static_cast<void>(map.pages()); }, throwsError(ErrorCode::Corrupt, "page 1"));
}

TEST_F(UsageMaps, PassOverPointersThatNameNoPage)
{
    // No page, a negative number, one far past the end: all seen in files of the original program.
    UsageMap map = mapOf(fromHex("01 F0FFFFFF 00000000 FFFFFFFF 00000010"));
    EXPECT_THAT(map.pages(), IsEmpty());
    EXPECT_EQ(map.last(), 0U);
    map.add(1);
    EXPECT_THAT(map.pages(), ElementsAre(1));
}

TEST_F(UsageMaps, RefuseAnythingThatIsNoMap)
{
    const auto read = [&](RowPointer where) {
        return [this, where] { static_cast<void>(UsageMap(pager(), where).pages()); };
    };
    const RowPointer where = newMap();
    EXPECT_THAT(read({.page = 0, .row = 0}), throwsError(ErrorCode::Corrupt)) << "no page of rows";
    EXPECT_THAT(read({.page = where.page, .row = 9}), throwsError(ErrorCode::Corrupt)) << "no such row";
    EXPECT_THAT(read({.page = 4711, .row = 0}), throwsError(ErrorCode::Corrupt)) << "past the end";
    setRow(where, fromHex("02 00000000"));
    EXPECT_THAT(read(where), throwsError(ErrorCode::Corrupt, "unknown kind"));
    DataPageEditor(pager().modify(where.page), where.page).remove(where.row);
    EXPECT_THAT(read(where), throwsError(ErrorCode::Corrupt)) << "deleted";
}

TEST_F(UsageMaps, RefuseToNoteAPageThatIsNotThere)
{
    UsageMap map(pager(), newMap());
    EXPECT_THAT([&] { map.add(0); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { map.add(pager().pageCount()); }, throwsError(ErrorCode::InvalidArgument));
}

TEST_F(UsageMaps, AgreeWithAPlainSetThroughRandomChanges)
{
    file_.growTo(2000);
    std::mt19937 random(3);
    for (const PageNumber range : {300U, 600U, 2000U}) {
        UsageMap map(pager(), newMap());
        std::set<PageNumber> model;
        for (int step = 0; step < 1500; ++step) {
            const PageNumber page = 1 + static_cast<PageNumber>(random()) % (range - 1);
            if (random() % 3 != 0) {
                map.add(page);
                model.insert(page);
            } else {
                map.remove(page);
                model.erase(page);
            }
            ASSERT_EQ(map.last(), model.empty() ? 0 : *model.rbegin());
            const auto above = model.upper_bound(page);
            ASSERT_EQ(map.next(page), above == model.end() ? 0 : *above);
            const auto from = model.lower_bound(page);
            ASSERT_EQ(map.previous(page), from == model.begin() ? 0 : *std::prev(from));
        }
        EXPECT_EQ(map.pages(), std::vector<PageNumber>(model.begin(), model.end()));
    }
}

// --- Free pages ---

TEST_F(Allocation, StartsWithTheMapsOfANewFile)
{
    const PageRef page = pager().read(1);
    EXPECT_TRUE(isDataPageOf(*page, kGlobalMapPageOwner));
    EXPECT_EQ(toHex(slice(ByteView(*page), 0, 18)), toHex(fromHex("0101 640F 01000000 00000000 0200 BB0F 760F")))
        << "rows at 4027 and 3958, 3940 bytes free";
    EXPECT_EQ(toHex(row(kGlobalMap)), toHex(fromHex("00 00000000 FC")) + std::string(126, 'f'));
    EXPECT_EQ(toHex(row({.page = 1, .row = 1})), std::string(138, '0'));
}

TEST_F(Allocation, GivesPagesInOrder)
{
    PageAllocator allocator(pager());
    EXPECT_EQ(allocator.allocate(), 2U);
    EXPECT_EQ(allocator.allocate(), 3U);
    EXPECT_EQ(pager().pageCount(), 4U);
    EXPECT_FALSE(allocator.isFree(0));
    EXPECT_FALSE(allocator.isFree(3));
    EXPECT_FALSE(allocator.isFree(4)) << "there is no such page yet";
    EXPECT_EQ(toHex(row(kGlobalMap)).substr(10, 4), "f0ff");
}

TEST_F(Allocation, MarksAPageThatIsGivenBackAndGivesItOutEmpty)
{
    file_.growTo(10);
    PageAllocator allocator(pager());
    DataPageEditor::initialize(pager().modify(7), 99);
    allocator.free(7);
    EXPECT_TRUE(allocator.isFree(7));
    EXPECT_EQ((*pager().read(7))[0], std::byte{0x09});
    EXPECT_EQ(allocator.allocate(), 7U);
    EXPECT_EQ(*pager().read(7), Page{});
    EXPECT_EQ(allocator.allocate(), 10U);
}

TEST_F(Allocation, GivesTheLowestPageAboveTheOneAskedFor)
{
    file_.growTo(10);
    PageAllocator allocator(pager());
    for (const PageNumber page : {4U, 6U, 8U}) {
        allocator.free(page);
    }
    EXPECT_EQ(allocator.allocate(4), 6U);
    EXPECT_EQ(allocator.allocate(8), 10U);
    EXPECT_EQ(allocator.allocate(), 4U);
    EXPECT_EQ(allocator.allocate(), 8U);
}

TEST_F(Allocation, RefusesToTakeBackWhatIsFreeOrCannotBe)
{
    file_.growTo(10);
    PageAllocator allocator(pager());
    allocator.free(5);
    EXPECT_THAT([&] { allocator.free(5); }, throwsError(ErrorCode::Corrupt, "page 5"));
    EXPECT_THAT([&] { allocator.free(0); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { allocator.free(1); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { allocator.free(10); }, throwsError(ErrorCode::InvalidArgument));
}

TEST_F(Allocation, LengthensTheMapByFourBytesForEach32Pages)
{
    PageAllocator allocator(pager());
    const auto allocateUpTo = [&](PageNumber pages) {
        while (pager().pageCount() < pages) {
            static_cast<void>(allocator.allocate());
        }
    };
    allocateUpTo(512);
    EXPECT_EQ(row(kGlobalMap).size(), 69U);
    allocateUpTo(513);
    EXPECT_EQ(row(kGlobalMap).size(), 73U);
    allocateUpTo(743);
    const Bytes map = row(kGlobalMap);
    EXPECT_EQ(map.size(), 101U);
    EXPECT_EQ(toHex(map), std::string(10 + 184, '0') + "80ffffff") << "743 to 767 are free and past the end";
    EXPECT_EQ(toHex(row({.page = 1, .row = 1})), std::string(138, '0'));
    allocator.free(700);
    EXPECT_EQ(allocator.allocate(), 700U);
}

TEST_F(Allocation, BecomesAReferenceMapWhenItsPageIsFull)
{
    // 4096 - 14 - 2 * 2 - 69 - 5 = 4004 map bytes, in steps of 4: 32032 pages.
    file_.growTo(32032);
    EXPECT_EQ(row(kGlobalMap).size(), 4009U);
    PageAllocator allocator(pager());
    allocator.free(20);
    EXPECT_EQ(allocator.allocate(1000), 32032U);
    EXPECT_EQ(toHex(row(kGlobalMap)).substr(0, 12), "01217d000000") << "the bitmap follows on page 0x7D21";
    EXPECT_TRUE(allocator.isFree(20));
    EXPECT_FALSE(allocator.isFree(19));
    EXPECT_FALSE(allocator.isFree(32032));
    EXPECT_FALSE(allocator.isFree(32033)) << "the bitmap itself";
    EXPECT_EQ(allocator.allocate(), 20U);
    EXPECT_EQ(allocator.allocate(), 32034U);

    while (pager().pageCount() < 33000) { // past the first bitmap: what it does not tell of is in use
        static_cast<void>(allocator.allocate());
    }
    EXPECT_FALSE(allocator.isFree(32900));
    allocator.free(32900);
    EXPECT_TRUE(allocator.isFree(32900));
    EXPECT_FALSE(allocator.isFree(33000)) << "the second bitmap";
    EXPECT_EQ(pager().pageCount(), 33001U);
    EXPECT_EQ(allocator.allocate(), 32900U);
    EXPECT_EQ(allocator.allocate(), 33001U);
}

TEST_F(Allocation, ReadsAMapThatStartsLater)
{
    // Other programs move the start: what is below counts as used, what is above as free.
    file_.growTo(20);
    Bytes map(69);
    initializeInlineMap(map, 16);
    for (std::size_t bit = 2; bit < 512; ++bit) {
        setBit(MutableBytes(map).subspan(5), bit, true);
    }
    setRow(kGlobalMap, map);
    PageAllocator allocator(pager());
    EXPECT_FALSE(allocator.isFree(5));
    EXPECT_TRUE(allocator.isFree(18));
    EXPECT_EQ(allocator.allocate(), 18U);
    EXPECT_EQ(allocator.allocate(), 19U);
    EXPECT_EQ(allocator.allocate(), 20U);

    allocator.free(5); // the map has no bit for it yet
    EXPECT_TRUE(allocator.isFree(5));
    EXPECT_FALSE(allocator.isFree(4));
    EXPECT_FALSE(allocator.isFree(20));
    EXPECT_EQ(toHex(row(kGlobalMap)).substr(0, 12), "000000000020") << "it starts at 0 now";
    EXPECT_EQ(allocator.allocate(), 5U);
    EXPECT_EQ(allocator.allocate(), 21U);
}

TEST_F(Allocation, ExtendsTheFileWhenTheMapSaysNothing)
{
    file_.growTo(20);
    setRow(kGlobalMap, fromHex("01 00000000 00000000")); // a reference map without bitmaps
    PageAllocator allocator(pager());
    EXPECT_FALSE(allocator.isFree(10));
    EXPECT_EQ(allocator.allocate(), 20U);
    EXPECT_EQ(allocator.allocate(), 21U);
    allocator.free(10); // now it must say something
    EXPECT_TRUE(allocator.isFree(10));
    EXPECT_FALSE(allocator.isFree(11));
    EXPECT_EQ(allocator.allocate(), 10U);
    EXPECT_EQ(allocator.allocate(), 23U) << "22 is the new bitmap";
}

TEST_F(Allocation, IsTakenBackWithItsTransaction)
{
    file_.growTo(10);
    file_.commitAndGoOn();
    PageAllocator allocator(pager());
    allocator.free(5);
    static_cast<void>(allocator.allocate(9));
    pager().rollback();
    pager().begin();
    EXPECT_FALSE(allocator.isFree(5));
    EXPECT_EQ(pager().pageCount(), 10U);
    EXPECT_EQ(allocator.allocate(), 10U);
}

TEST_F(Allocation, NeverGivesAPageTwiceThroughRandomChanges)
{
    std::mt19937 random(4);
    PageAllocator allocator(pager());
    std::set<PageNumber> used;
    for (int step = 0; step < 6000; ++step) {
        if (used.empty() || random() % 5 < 3) {
            const PageNumber after = random() % 2 == 0 ? 0 : static_cast<PageNumber>(random()) % pager().pageCount();
            const PageNumber page = allocator.allocate(after);
            ASSERT_GT(page, after);
            ASSERT_TRUE(used.insert(page).second) << page;
        } else {
            const auto victim = std::next(used.begin(), static_cast<std::ptrdiff_t>(random() % used.size()));
            allocator.free(*victim);
            used.erase(victim);
        }
    }
    EXPECT_GT(pager().pageCount(), 1000U);
    test::expectEveryPageAccountedFor(pager(), {}, {used.begin(), used.end()});
}

} // namespace
} // namespace jet
