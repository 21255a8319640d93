#include "jet/format/index_page_content.h"

#include "jet/format/hex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>

using namespace jet;
using jet::test::fromHex;
using jet::test::toHex;

namespace {

constexpr std::size_t kEntries = 480;
constexpr std::size_t kMask = 27;

IndexPage read(const Page& page)
{
    return IndexPage(std::make_shared<const Page>(page), 77);
}

Bytes keyOf(std::uint32_t number)
{
    Bytes key(5);
    key[0] = std::byte{0x7F};
    putBigEndian(MutableBytes(key), 1, number ^ 0x80000000U);
    return key;
}

IndexPageContent leafOf(const std::vector<Bytes>& entries)
{
    IndexPageContent content(IndexPageHeader{.kind = IndexPageKind::Leaf, .owner = 24, .previous = 3, .next = 9});
    for (const Bytes& entry : entries) {
        content.insert(content.size(), entry);
    }
    return content;
}

std::vector<Bytes> entriesOf(const IndexPage& page)
{
    std::vector<Bytes> entries(page.size());
    for (std::size_t i = 0; i < page.size(); ++i) {
        page.appendEntry(i, entries[i]);
    }
    return entries;
}

Page encoded(const IndexPageContent& content)
{
    Page page{};
    content.encode(page);
    return page;
}

std::string bytesAt(const Page& page, std::size_t offset, std::size_t length)
{
    return toHex(slice(ByteView(page), offset, length));
}

/// A good leaf with three entries.
Page goodLeaf()
{
    return encoded(leafOf({makeLeafEntry(keyOf(1), {0x3A3, 0}), makeLeafEntry(keyOf(2), {0x3A3, 1}),
                           makeLeafEntry(keyOf(3), {0x3A3, 2})}));
}

void expectCorrupt(const Page& page, const char* what)
{
    try {
        (void)read(page);
        ADD_FAILURE() << what << " was accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::Corrupt) << what;
        EXPECT_EQ(error.page(), 77U) << what;
    }
}

} // namespace

// --- Bytes -----------------------------------------------------------------------------------------------------------

TEST(IndexPage, AnEmptyLeafHasAllItsBytesFree)
{
    const Page page = encoded(IndexPageContent(IndexPageHeader{.kind = IndexPageKind::Leaf, .owner = 24}));
    EXPECT_EQ(bytesAt(page, 0, 27), "0401200e18000000"
                                    "0000000000000000000000000000000000"
                                    "0000");
    EXPECT_TRUE(std::all_of(page.begin() + 27, page.end(), [](std::byte byte) { return byte == std::byte{0}; }));
    EXPECT_EQ(read(page).size(), 0U);
}

TEST(IndexPage, ALeafMarksTheEndsOfItsEntries)
{
    const Page page = goodLeaf();
    EXPECT_EQ(bytesAt(page, 0, 8), "0401050e18000000"); // 3616 - 27 = 0x0E05 free
    EXPECT_EQ(bytesAt(page, 12, 15), "0300000009000000000000000000"
                                     "00");
    EXPECT_EQ(bytesAt(page, kMask, 5), "0002040800"); // bits 9, 18 and 27
    EXPECT_EQ(bytesAt(page, kEntries, 27), "7f800000010003a300"
                                           "7f800000020003a301"
                                           "7f800000030003a302");
}

TEST(IndexPage, ANodeEntryAddsTheChildsPage)
{
    EXPECT_EQ(toHex(makeNodeEntry(makeLeafEntry(keyOf(0xF02), {0x1E4, 6}), 0x30B)), "7f80000f020001e4060000030b");
}

TEST(IndexPage, ReadsALeafWithASharedPrefix)
{
    Page page{};
    putBytes(MutableBytes(page), 0, fromHex("0401 0e0e 18000000 00000000 03000000 09000000 00000000 0300 00"));
    putBytes(MutableBytes(page), kMask, fromHex("00 82 00")); // bits 9 and 15: nine bytes and six
    putBytes(MutableBytes(page), kEntries, fromHex("7f800003e90001a306 03ea0001a307"));
    putU16(MutableBytes(page), 2, 3616 - 15);
    const IndexPage leaf = read(page);
    ASSERT_EQ(leaf.size(), 2U);
    EXPECT_EQ(leaf.prefixLength(), 3U);
    Bytes key;
    leaf.copyKey(1, key);
    EXPECT_EQ(key, keyOf(1002));
    EXPECT_EQ(leaf.row(1), (RowPointer{0x1A3, 7}));
    EXPECT_EQ(leaf.lowerBound(keyOf(1001), {0x1A3, 7}), 1U);
    EXPECT_EQ(leaf.lowerBound(keyOf(1002), {0x1A3, 7}), 1U);
    EXPECT_EQ(leaf.lowerBound(keyOf(1002), {0x1A3, 8}), 2U);
    EXPECT_EQ(leaf.lowerBound(keyOf(5), {}), 0U);
    EXPECT_EQ(leaf.lowerBound(fromHex("7f"), {}), 0U);
    EXPECT_EQ(leaf.lowerBound(fromHex("ff"), {}), 2U);
}

TEST(IndexPage, APrefixMayReachIntoTheRow)
{
    const Bytes key = keyOf(7);
    std::vector<Bytes> entries;
    for (unsigned row = 0; row < 250; ++row) {
        entries.push_back(makeLeafEntry(key, {0x010203, static_cast<std::uint8_t>(row)}));
    }
    // 250 entries of nine bytes fit as they are; with keys of 400 bytes they need the prefix.
    Bytes longKey(400, std::byte{0x4A});
    std::vector<Bytes> longEntries;
    for (unsigned row = 0; row < 250; ++row) {
        longEntries.push_back(makeLeafEntry(longKey, {0x010203, static_cast<std::uint8_t>(row)}));
    }
    EXPECT_EQ(read(encoded(leafOf(entries))).prefixLength(), 0U);
    const IndexPage leaf = read(encoded(leafOf(longEntries)));
    EXPECT_EQ(leaf.prefixLength(), 403U);
    EXPECT_EQ(entriesOf(leaf), longEntries);
    EXPECT_EQ(leaf.row(249), (RowPointer{0x010203, 249}));
    EXPECT_EQ(leaf.lowerBound(longKey, {0x010203, 100}), 100U);
    EXPECT_EQ(leaf.lowerBound(longKey, {0x010204, 0}), 250U);
    EXPECT_EQ(leaf.lowerBound(Bytes(401, std::byte{0x4A}), {}), 250U);
    EXPECT_EQ(leaf.lowerBound(Bytes(399, std::byte{0x4A}), {}), 0U);
}

TEST(IndexPage, APrefixOfANodeMayReachIntoTheChild)
{
    IndexPageContent content(IndexPageHeader{.kind = IndexPageKind::Node, .owner = 24});
    const Bytes entry = makeLeafEntry(Bytes(900, std::byte{0x4A}), {5, 1});
    for (PageNumber child = 0x01020300; child < 0x01020305; ++child) {
        content.insert(content.size(), makeNodeEntry(entry, child));
    }
    const IndexPage node = read(encoded(content));
    EXPECT_EQ(node.prefixLength(), 907U);
    EXPECT_EQ(node.child(4), 0x01020304U);
    EXPECT_EQ(node.row(4), (RowPointer{5, 1}));
}

TEST(IndexPage, IsUsedWithoutPrefixUpToTheLastByte)
{
    std::vector<Bytes> entries;
    for (std::uint32_t i = 0; i < 113; ++i) {
        Bytes key(28, std::byte{0x7F});
        putBigEndian(MutableBytes(key), 24, i);
        entries.push_back(makeLeafEntry(key, {1, 1})); // 113 times 32 bytes are 3616
    }
    const IndexPage full = read(encoded(leafOf(entries)));
    EXPECT_EQ(full.prefixLength(), 0U);
    EXPECT_EQ(bytesAt(*full.page(), 2, 2), "0000");
    EXPECT_EQ(bytesAt(*full.page(), 479, 1), "01"); // bit 3616
    EXPECT_EQ(entriesOf(full), entries);
    entries.push_back(makeLeafEntry(Bytes(28, std::byte{0x80}), {1, 1}));
    EXPECT_FALSE(leafOf(entries).fits());
    entries.pop_back();
    Bytes key(28, std::byte{0x7F});
    putBigEndian(MutableBytes(key), 24, 200U);
    entries.push_back(makeLeafEntry(key, {1, 1}));
    EXPECT_TRUE(leafOf(entries).fits());
    EXPECT_EQ(read(encoded(leafOf(entries))).prefixLength(), 27U);
}

TEST(IndexPage, WhatOthersKeepInUnknownBytesStays)
{
    Page page = goodLeaf();
    page[26] = std::byte{1};
    page[9] = std::byte{5};
    IndexPageContent content(read(page));
    content.erase(0);
    content.encode(page);
    EXPECT_EQ(page[26], std::byte{1});
    EXPECT_EQ(page[9], std::byte{5});
    EXPECT_EQ(bytesAt(page, kEntries + 18, 9), "000000000000000000");
}

// --- Content ---------------------------------------------------------------------------------------------------------

TEST(IndexPageContent, DoesWhatAListOfEntriesDoes)
{
    std::mt19937 random(5);
    IndexPageContent content(IndexPageHeader{});
    std::vector<Bytes> model;
    for (int i = 0; i < 2000; ++i) {
        const std::size_t position = random() % (model.size() + 1);
        Bytes entry(5 + random() % 30, static_cast<std::byte>(random()));
        const bool atEnd = position == model.size();
        if (model.size() > 200 && !atEnd) {
            content.erase(position);
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(position));
        } else if (random() % 3 == 0 && !atEnd) {
            content.replace(position, entry);
            model[position] = entry;
        } else {
            content.insert(position, entry);
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(position), entry);
        }
        ASSERT_EQ(content.size(), model.size());
    }
    for (std::size_t i = 0; i < model.size(); ++i) {
        ASSERT_EQ(toHex(content.entry(i)), toHex(model[i]));
    }
    const IndexPageContent first = content.takeFirst(50);
    ASSERT_EQ(first.size(), 50U);
    EXPECT_EQ(toHex(first.entry(49)), toHex(model[49]));
    EXPECT_EQ(toHex(content.entry(0)), toHex(model[50]));
    EXPECT_EQ(toHex(content.entry(content.size() - 1)), toHex(model.back()));
}

TEST(IndexPageContent, RandomEntriesComeBackFromThePage)
{
    std::mt19937 random(99);
    for (int round = 0; round < 300; ++round) {
        std::set<Bytes> sorted;
        const std::size_t sharedLength = random() % 60;
        const std::size_t wanted = 1 + random() % 300;
        for (std::size_t i = 0; i < wanted; ++i) {
            Bytes key(sharedLength, std::byte{0x51});
            for (int k = 0; k < 6; ++k) {
                key.push_back(static_cast<std::byte>(random() % 4 + 1));
            }
            key.push_back(std::byte{0});
            sorted.insert(makeLeafEntry(key, {static_cast<PageNumber>(random() % 0xFFFFFF), 1}));
        }
        IndexPageContent content = leafOf({sorted.begin(), sorted.end()});
        while (!content.fits()) {
            const std::size_t count = content.middle();
            ASSERT_GT(count, 0U);
            ASSERT_LT(count, content.size());
            const IndexPageContent left = content.takeFirst(count);
            ASSERT_TRUE(left.fits());
        }
        const IndexPage page = read(encoded(content));
        ASSERT_EQ(page.size(), content.size());
        for (std::size_t i = 0; i < page.size(); ++i) {
            Bytes entry;
            page.appendEntry(i, entry);
            ASSERT_EQ(toHex(entry), toHex(content.entry(i)));
            Bytes key;
            page.copyKey(i, key);
            ASSERT_EQ(page.lowerBound(key, page.row(i)), i);
        }
        ASSERT_EQ(encoded(IndexPageContent(page)), *page.page());
    }
}

TEST(IndexPage, ChangesInPlaceGiveThePageThatWritingItAnewGives)
{
    std::mt19937 random(123);
    std::size_t insertedBehindAPrefix = 0;
    for (int round = 0; round < 200; ++round) {
        std::set<Bytes> entries;
        const std::size_t shared = random() % 3 * 40;
        const auto randomEntry = [&] {
            Bytes key(random() % 50 == 0 ? shared / 2 : shared, std::byte{0x51});
            for (int k = 0; k < 6; ++k) {
                key.push_back(static_cast<std::byte>(random() % 200 + 2));
            }
            key.push_back(std::byte{0});
            return makeLeafEntry(key, {static_cast<PageNumber>(random() % 0xFFFFFF), 1});
        };
        for (std::size_t i = 0; i < 60; ++i) {
            entries.insert(randomEntry());
        }
        Page page = encoded(leafOf({entries.begin(), entries.end()}));
        for (int step = 0; step < 60; ++step) {
            const IndexPage before = read(page);
            if (random() % 2 == 0) {
                const std::size_t position = random() % before.size();
                if (before.canEraseInPlace(position)) {
                    before.eraseInPlace(page, position);
                    entries.erase(std::next(entries.begin(), static_cast<std::ptrdiff_t>(position)));
                }
            } else {
                const Bytes entry = randomEntry();
                const auto place = entries.insert(entry).first;
                const auto position = static_cast<std::size_t>(std::distance(entries.begin(), place));
                if (before.hasRoomInPlace(position, entry)) {
                    before.insertInPlace(page, position, entry);
                    insertedBehindAPrefix += before.prefixLength() > 0 ? 1U : 0U;
                } else {
                    entries.erase(entry);
                }
            }
            const IndexPage after = read(page);
            ASSERT_EQ(entriesOf(after), std::vector<Bytes>(entries.begin(), entries.end()));
            ASSERT_EQ(after.header().next, 9U);
            if (after.prefixLength() == 0) {
                ASSERT_EQ(page, encoded(leafOf(entriesOf(after)))) << "no bit and no byte is left behind";
            }
        }
    }
    EXPECT_GT(insertedBehindAPrefix, 100U);
}

TEST(IndexPage, APrefixThatAnEmptiedPageStillStatesIsGoneWithItsFirstEntry)
{
    constexpr std::size_t kPrefix = 24;
    Page page = encoded(leafOf({}));
    putU16(MutableBytes(page), kPrefix, 20); // as another program may leave it
    const Bytes entry = makeLeafEntry(keyOf(1), {0x3A3, 0});
    const IndexPage empty = read(page);
    ASSERT_TRUE(empty.hasRoomInPlace(0, entry));
    empty.insertInPlace(page, 0, entry);
    EXPECT_EQ(entriesOf(read(page)), std::vector<Bytes>{entry});
}

TEST(IndexPage, AFirstEntryIsNotErasedInPlaceWhenItCarriesThePrefix)
{
    std::vector<Bytes> entries;
    for (unsigned row = 0; row < 20; ++row) {
        entries.push_back(makeLeafEntry(Bytes(400, std::byte{0x4A}), {1, static_cast<std::uint8_t>(row)}));
    }
    const IndexPage leaf = read(encoded(leafOf(entries)));
    EXPECT_FALSE(leaf.canEraseInPlace(0));
    EXPECT_TRUE(leaf.canEraseInPlace(1));
    EXPECT_FALSE(leaf.hasRoomInPlace(0, makeLeafEntry(Bytes(400, std::byte{0x4A}), {0, 0})));
    EXPECT_FALSE(leaf.hasRoomInPlace(20, makeLeafEntry(Bytes(400, std::byte{0x4B}), {0, 0})));
    EXPECT_FALSE(leaf.hasRoomInPlace(1, makeLeafEntry(Bytes(2, std::byte{0x4A}), {0, 0}))) << "shorter than the prefix";
    EXPECT_TRUE(leaf.hasRoomInPlace(20, makeLeafEntry(Bytes(400, std::byte{0x4A}), {1, 20})));
    const IndexPage single = read(encoded(leafOf({entries[0]})));
    EXPECT_FALSE(single.canEraseInPlace(0));
}

TEST(IndexPageContent, AnOverfullPageOfTheLongestEntriesSplitsIntoTwoThatFit)
{
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        // A page that is full, perhaps only thanks to its prefix, gets one more entry anywhere.
        const std::size_t prefix = random() % 1700;
        std::set<Bytes> entries;
        IndexPageContent content = leafOf({});
        while (content.fits()) {
            Bytes key(random() % 40 == 0 ? random() % 10 : prefix, std::byte{0x51});
            const std::size_t rest = random() % 10 == 0 ? kMaximumKeyLength - key.size() : 3 + random() % 20;
            for (std::size_t i = 0; i < std::min(rest, kMaximumKeyLength - key.size()); ++i) {
                key.push_back(static_cast<std::byte>(random() % 250 + 2));
            }
            key.push_back(std::byte{0});
            key.resize(std::min(key.size(), kMaximumKeyLength));
            entries.insert(makeLeafEntry(key, {1, static_cast<std::uint8_t>(entries.size())}));
            content = leafOf({entries.begin(), entries.end()});
        }
        IndexPageContent other = content;
        for (const auto& [whole, count] : {std::pair(&content, content.middle()), {&other, other.leadingThatFit()}}) {
            const IndexPageContent left = whole->takeFirst(count);
            ASSERT_FALSE(left.isEmpty());
            ASSERT_FALSE(whole->isEmpty());
            ASSERT_TRUE(left.fits());
            ASSERT_TRUE(whole->fits());
        }
    }
}

TEST(IndexPageContent, EntriesThatDoNotFitAreNotWritten)
{
    std::vector<Bytes> entries;
    for (unsigned i = 0; i < 5; ++i) {
        entries.push_back(makeLeafEntry(Bytes(1000, static_cast<std::byte>(i)), {1, 1}));
    }
    Page page{};
    EXPECT_THROW(leafOf(entries).encode(page), Error);
    EXPECT_EQ(page, Page{});
}

// --- Damage ----------------------------------------------------------------------------------------------------------

TEST(IndexPageDamage, EachFieldIsChecked)
{
    Page page = goodLeaf();
    page[0] = std::byte{2};
    expectCorrupt(page, "another type");
    page = goodLeaf();
    page[1] = std::byte{0};
    expectCorrupt(page, "a page that is not in use");
    page = goodLeaf();
    putU16(MutableBytes(page), 2, 3616 - 26);
    expectCorrupt(page, "a wrong free count");
    page = goodLeaf();
    putU16(MutableBytes(page), 24, 9);
    expectCorrupt(page, "a prefix as long as the first entry");
    page = goodLeaf();
    putU16(MutableBytes(page), 24, 0xFFFF);
    expectCorrupt(page, "a wild prefix");
    page = goodLeaf();
    page[kMask] = std::byte{1};
    expectCorrupt(page, "an entry without bytes");
    page = goodLeaf();
    page[kMask] = std::byte{0x10};
    expectCorrupt(page, "an entry without a key");
    page = goodLeaf();
    page[479] = std::byte{0x02};
    putU16(MutableBytes(page), 2, 0xFFFF);
    expectCorrupt(page, "an entry that ends behind the page");
    page = goodLeaf();
    page[0] = std::byte{3};
    page[kMask] = std::byte{0x20};
    expectCorrupt(page, "a node entry without a key");
    page = encoded(IndexPageContent(IndexPageHeader{.kind = IndexPageKind::Node, .owner = 24}));
    expectCorrupt(page, "a node without children");
}

// Whatever the bytes are, reading gives Corrupt or a page all of whose entries can be read (the sanitizers watch).
TEST(IndexPageDamage, RandomBytesNeverReachOutsideThePage)
{
    std::mt19937 random(11);
    std::size_t accepted = 0;
    for (int round = 0; round < 10000; ++round) {
        Page page = goodLeaf();
        page[0] = static_cast<std::byte>(3 + random() % 2);
        for (unsigned change = random() % 4; change-- > 0;) {
            page[random() % 40] = static_cast<std::byte>(random());
        }
        if (random() % 4 == 0) {
            page[kMask + random() % 453] = static_cast<std::byte>(random());
        }
        // Make the free count right, so that the checks behind it are reached.
        std::size_t used = 0;
        for (std::size_t bit = 0; bit < 453 * 8; ++bit) {
            if ((std::to_integer<unsigned>(page[kMask + bit / 8]) >> (bit % 8) & 1U) != 0) {
                used = bit;
            }
        }
        putU16(MutableBytes(page), 2, static_cast<std::uint16_t>(3616 - used));
        try {
            const IndexPage decoded = read(page);
            ++accepted;
            Bytes key;
            for (std::size_t i = 0; i < decoded.size(); ++i) {
                decoded.copyKey(i, key);
                (void)decoded.row(i);
                if (!decoded.isLeaf()) {
                    (void)decoded.child(i);
                }
            }
            (void)decoded.lowerBound(keyOf(2), {0x3A3, 1});
            const IndexPageContent content(decoded);
        } catch (const Error& error) {
            ASSERT_EQ(error.code(), ErrorCode::Corrupt);
        }
    }
    EXPECT_GT(accepted, 500U);
}
