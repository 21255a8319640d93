#include "jet/format/data_page.h"

#include "jet/format/hex.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <vector>

namespace jet {
namespace {

using test::fromHex;
using test::throwsError;
using test::toHex;

constexpr PageNumber kNumber = 31;
constexpr std::uint32_t kOwner = 24;

Page emptyPage()
{
    Page page{};
    DataPageEditor::initialize(page, kOwner);
    return page;
}

Page pageWith(const std::vector<const char*>& rows)
{
    Page page = emptyPage();
    DataPageEditor editor(page, kNumber);
    for (const char* row : rows) {
        editor.append(fromHex(row));
    }
    return page;
}

std::string head(const Page& page, std::size_t length)
{
    return toHex(slice(ByteView(page), 0, length));
}
std::string tail(const Page& page, std::size_t length)
{
    return toHex(slice(ByteView(page), kPageSize - length, length));
}

TEST(DataPage, StartsEmpty)
{
    const Page page = emptyPage();
    EXPECT_EQ(head(page, 16), toHex(fromHex("0101 F20F 18000000 00000000 0000 0000"))); // 4082 bytes free
    EXPECT_TRUE(DataPage(page, kNumber).isEmpty());
    EXPECT_EQ(DataPage(page, kNumber).freeBytes(), 4082U);
    EXPECT_TRUE(isDataPageOf(page, kOwner));
    EXPECT_FALSE(isDataPageOf(page, kOwner + 1));
}

TEST(DataPage, LaysRowsFromTheEndTowardsTheTable)
{
    const Page page = pageWith({"A1A2A3", "B1B2"});
    // 4096 - 3 = 0xFFD, then 0xFFB; free 4082 - 5 - 4 = 4073.
    EXPECT_EQ(head(page, 18), toHex(fromHex("0101 E90F 18000000 00000000 0200 FD0F FB0F")));
    EXPECT_EQ(tail(page, 5), "b1b2a1a2a3");
    const DataPage view(page, kNumber);
    EXPECT_EQ(toHex(view.bytes(0)), "a1a2a3");
    EXPECT_EQ(toHex(view.bytes(1)), "b1b2");
    EXPECT_NO_THROW(view.validate());
}

TEST(DataPage, TellsTheKindsOfSlotsApart)
{
    Page page = pageWith({"01000000", "02000000"});
    DataPageEditor editor(page, kNumber);
    editor.append(fromHex("03000000"), SlotKind::Moved);
    editor.replace(1, fromHex("05310000"), SlotKind::Pointer);
    editor.remove(0);
    const DataPage view(page, kNumber);
    EXPECT_EQ(view.kind(0), SlotKind::Deleted);
    EXPECT_EQ(view.kind(1), SlotKind::Pointer);
    EXPECT_EQ(view.kind(2), SlotKind::Moved);
    EXPECT_EQ(view.target(1), (RowPointer{.page = 0x31, .row = 5}));
    // Deleted at 4096 without length, then 0x4FFC and 0x8FF8.
    EXPECT_EQ(toHex(slice(ByteView(page), 14, 6)), toHex(fromHex("00D0 FC4F F88F")));
    EXPECT_FALSE(view.isEmpty());
}

TEST(DataPage, ClosesTheGapOfARemovedRow)
{
    Page page = pageWith({"A1A2A3", "B1B2", "C1"});
    DataPageEditor(page, kNumber).remove(1);
    EXPECT_EQ(tail(page, 4), "c1a1a2a3");
    const DataPage view(page, kNumber);
    EXPECT_EQ(view.bytes(1).size(), 0U);
    EXPECT_EQ(toHex(view.bytes(2)), "c1");
    EXPECT_EQ(view.storedFreeBytes(), 4096U - 4 - 14 - 6);
}

TEST(DataPage, MakesRoomForARowThatGrows)
{
    Page page = pageWith({"A1", "B1", "C1"});
    DataPageEditor(page, kNumber).replace(1, fromHex("B1B2B3B4"), SlotKind::Row);
    EXPECT_EQ(tail(page, 6), "c1b1b2b3b4a1");
    DataPageEditor(page, kNumber).replace(1, fromHex("B9"), SlotKind::Row);
    EXPECT_EQ(tail(page, 3), "c1b9a1");
    EXPECT_NO_THROW(DataPage(page, kNumber).validate());
}

TEST(DataPage, TakesBackWhatDeletedRowsHold)
{
    // Three rows of 1300 bytes; the second is deleted but keeps its bytes, as some programs leave it.
    Page page = emptyPage();
    DataPageEditor editor(page, kNumber);
    for (int i = 0; i < 3; ++i) {
        editor.append(Bytes(1300, static_cast<std::byte>(i + 1)));
    }
    putU16(page, 16, static_cast<std::uint16_t>(getU16(page, 16) | 0xC000U));
    EXPECT_EQ(DataPage(page, kNumber).freeBytes(), 4082U - 3 * 1302);
    EXPECT_EQ(DataPage(page, kNumber).reclaimableBytes(), 4082U - 3 * 1302 + 1300);
    EXPECT_TRUE(DataPage(page, kNumber).fits(1400));

    EXPECT_EQ(DataPageEditor(page, kNumber).append(Bytes(1400, std::byte{9})), 3);
    const DataPage view(page, kNumber);
    EXPECT_NO_THROW(view.validate());
    EXPECT_EQ(view.bytes(0)[0], std::byte{1});
    EXPECT_EQ(view.bytes(2)[1299], std::byte{3});
    EXPECT_EQ(view.bytes(3).size(), 1400U);
}

TEST(DataPage, HoldsAtMost255Rows)
{
    Page page = emptyPage();
    DataPageEditor editor(page, kNumber);
    for (int i = 0; i < 255; ++i) {
        EXPECT_EQ(editor.append(fromHex("0102")), i);
    }
    EXPECT_FALSE(editor.view().fits(1));
    EXPECT_THAT([&] { editor.append(fromHex("01")); }, throwsError(ErrorCode::InvalidArgument));
    editor.remove(7);
    EXPECT_FALSE(editor.view().fits(1)) << "slot numbers are not used again";
}

TEST(DataPage, FillsToTheLastByte)
{
    Page page = emptyPage();
    DataPageEditor editor(page, kNumber);
    editor.append(Bytes(4080, std::byte{7}));
    EXPECT_EQ(editor.view().freeBytes(), 0U);
    EXPECT_THAT([&] { editor.append({}); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { editor.replace(0, Bytes(4081), SlotKind::Row); }, throwsError(ErrorCode::InvalidArgument));
    editor.replace(0, Bytes(4079), SlotKind::Row);
    EXPECT_EQ(editor.view().freeBytes(), 1U);
}

struct Damage {
    const char* what;
    std::size_t offset;
    std::uint16_t value;
};

class DamagedDataPage : public testing::TestWithParam<Damage>
{
};

TEST_P(DamagedDataPage, IsRefusedByNameOfThePage)
{
    Page page = pageWith({"A1A2A3", "B1B2", "C1"});
    putU16(page, GetParam().offset, GetParam().value);
    EXPECT_THAT([&] { DataPage(page, kNumber).validate(); }, throwsError(ErrorCode::Corrupt, "page 31"));
}

INSTANTIATE_TEST_SUITE_P(Cases, DamagedDataPage,
                         testing::Values(Damage{"Type", 0, 0x0102}, Damage{"Freed", 0, 0x0109},
                                         Damage{"FreeCount", 2, 17}, Damage{"SlotCount", 12, 256},
                                         Damage{"SlotsPastTheRows", 12, 255}, Damage{"PastThePage", 14, 0x1001},
                                         Damage{"InTheTable", 18, 19}, Damage{"InTheHeader", 18, 2},
                                         Damage{"AboveTheOneBefore", 16, 0x0FFE},
                                         Damage{"PointerTooShort", 16, 0x4FFB}),
                         [](const auto& each) { return std::string(each.param.what); });

TEST(DataPage, RefusesARowThatIsNotThere)
{
    const Page page = pageWith({"A1"});
    const DataPage view(page, kNumber);
    EXPECT_THAT([&] { static_cast<void>(view.bytes(1)); }, throwsError(ErrorCode::Corrupt));
    EXPECT_THAT([&] { static_cast<void>(view.kind(255)); }, throwsError(ErrorCode::Corrupt));
}

TEST(DataPage, EditorRefusesAPageThatDoesNotHoldTogether)
{
    Page page = pageWith({"A1A2A3", "B1B2"});
    putU16(page, 16, 0x0FFE);
    const Page before = page;
    EXPECT_THAT([&] { DataPageEditor(page, kNumber).remove(0); }, throwsError(ErrorCode::Corrupt));
    EXPECT_EQ(page, before);
}

// Any bytes at all: an error or an answer, nothing else.
TEST(DataPage, SurvivesRubbish)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        Page page = pageWith({"A1A2A3", "B1B2", "C1"});
        for (int i = 0; i < 4; ++i) {
            page[random() % 24] = static_cast<std::byte>(random());
        }
        try {
            DataPageEditor editor(page, kNumber);
            const std::size_t slots = editor.view().slotCount();
            for (std::size_t row = 0; row < slots; ++row) {
                static_cast<void>(editor.view().bytes(row));
            }
            if (editor.view().fits(10)) {
                editor.append(Bytes(10));
            }
            if (slots > 0) {
                editor.remove(0);
            }
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::Corrupt);
        }
    }
}

TEST(DataPage, KeepsItsRowsThroughRandomChanges)
{
    std::mt19937 random(2);
    Page page = emptyPage();
    std::vector<std::optional<Bytes>> rows; // nothing: deleted
    for (int step = 0; step < 5000; ++step) {
        DataPageEditor editor(page, kNumber);
        const auto row = [&] { return Bytes(random() % 90, static_cast<std::byte>(random())); };
        const auto pick = [&] { return static_cast<std::uint8_t>(random() % rows.size()); };
        switch (random() % 4) {
        case 0:
        case 1:
            if (const Bytes bytes = row(); editor.view().fits(bytes.size())) {
                ASSERT_EQ(editor.append(bytes), rows.size());
                rows.emplace_back(bytes);
            }
            break;
        case 2:
            if (!rows.empty()) {
                const std::uint8_t slot = pick();
                if (const Bytes bytes = row(); rows[slot] && editor.view().room(slot) >= bytes.size()) {
                    editor.replace(slot, bytes, SlotKind::Row);
                    rows[slot] = bytes;
                }
            }
            break;
        default:
            if (!rows.empty()) {
                const std::uint8_t slot = pick();
                editor.remove(slot);
                rows[slot].reset();
            }
        }
        if (rows.size() == 255) {
            DataPageEditor::initialize(page, kOwner);
            rows.clear();
        }
        const DataPage view(page, kNumber);
        ASSERT_NO_THROW(view.validate());
        ASSERT_EQ(view.slotCount(), rows.size());
        for (std::size_t slot = 0; slot < rows.size() && step % 10 == 0; ++slot) {
            ASSERT_EQ(view.kind(slot), rows[slot] ? SlotKind::Row : SlotKind::Deleted);
            const ByteView bytes = view.bytes(slot);
            ASSERT_TRUE(std::ranges::equal(bytes, rows[slot].value_or(Bytes{}))) << toHex(bytes);
        }
    }
}

} // namespace
} // namespace jet
