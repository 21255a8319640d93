#include "jet/store/table_definition_store.h"

#include "jet/format/hex.h"
#include "jet/format/table_definition_codec.h"
#include "jet/store/new_file.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet {
namespace {

using test::fromHex;
using test::NewFile;
using test::throwsError;
using test::toHex;

TableDefinition definitionOf(std::uint16_t columns)
{
    TableDefinition definition;
    definition.maximumColumns = columns;
    definition.rowCount = 3;
    for (std::uint16_t i = 0; i < columns; ++i) {
        Column column;
        column.name = "Column number " + std::to_string(i);
        column.number = i;
        column.length = 4;
        column.fixedOffset = static_cast<std::uint16_t>(4 * i);
        column.flags = Column::kFixed | Column::kOrdinary;
        definition.columns.push_back(column);
    }
    RealIndex index;
    index.columns = {{.columnNumber = 0, .ascending = true}};
    definition.realIndexes = {index, index};
    return definition;
}

class DefinitionStore : public testing::Test
{
protected:
    Pager& pager() { return file_.pager(); }
    [[nodiscard]] auto loading(PageNumber page)
    {
        return [this, page] { static_cast<void>(store_.load(page)); };
    }
    void expectStored(PageNumber first, const TableDefinition& definition)
    {
        EXPECT_EQ(toHex(encodeTableDefinition(store_.load(first))), toHex(encodeTableDefinition(definition)));
    }

    NewFile file_;
    TableDefinitionStore store_{file_.pager()};
};

TEST_F(DefinitionStore, KeepsASmallDefinitionOnOnePage)
{
    const TableDefinition definition = definitionOf(2);
    const PageNumber page = store_.create(definition);
    EXPECT_EQ(page, 2U);
    expectStored(page, definition);
    EXPECT_THAT(store_.pages(page), testing::ElementsAre(2));
    // 63 + 2 * 12 + 2 * 25 + 2 * 32 + 2 * 52 + 2 = 307 bytes; 4096 - 307 - 8 = 3781 unused.
    EXPECT_EQ(toHex(slice(ByteView(*pager().read(page)), 0, 12)), toHex(fromHex("0201 C50E 00000000 33010000")));
}

TEST_F(DefinitionStore, GoesOnWithItsPages)
{
    const TableDefinition definition = definitionOf(200);
    const PageNumber first = store_.create(definition);
    // 63 + 24 + 200 * 25 + 10 * 32 + 90 * 34 + 100 * 36 + 104 + 2 = 12173 = 4096 + 4088 + 3989
    EXPECT_THAT(store_.pages(first), testing::ElementsAre(2, 3, 4));
    expectStored(first, definition);
    EXPECT_EQ(toHex(slice(ByteView(*pager().read(2)), 0, 12)), toHex(fromHex("0201 0000 03000000 8D2F0000")));
    EXPECT_EQ(toHex(slice(ByteView(*pager().read(3)), 0, 8)), toHex(fromHex("0201 0000 04000000")));
    EXPECT_EQ(toHex(slice(ByteView(*pager().read(4)), 0, 8)), toHex(fromHex("0201 5B00 00000000"))) << "99 - 8";
}

TEST_F(DefinitionStore, TakesAndGivesBackPagesAsItGrowsAndShrinks)
{
    const PageNumber first = store_.create(definitionOf(2));
    file_.growTo(10);
    store_.save(first, definitionOf(200));
    expectStored(first, definitionOf(200));
    const std::vector<PageNumber> pages = store_.pages(first);
    EXPECT_THAT(pages, testing::ElementsAre(2, 10, 11));
    test::expectEveryPageAccountedFor(pager(), {}, {2, 3, 4, 5, 6, 7, 8, 9, 10, 11});

    store_.save(first, definitionOf(100));
    expectStored(first, definitionOf(100));
    EXPECT_THAT(store_.pages(first), testing::ElementsAre(2, 10));
    store_.save(first, definitionOf(1));
    expectStored(first, definitionOf(1));
    EXPECT_THAT(store_.pages(first), testing::ElementsAre(2));
    test::expectEveryPageAccountedFor(pager(), {}, {2, 3, 4, 5, 6, 7, 8, 9});
}

TEST_F(DefinitionStore, FillsPagesToTheLastByte)
{
    // Each length from a little below to a little above two full pages.
    for (std::size_t extra = 0; extra < 40; ++extra) {
        TableDefinition definition = definitionOf(120);
        const std::size_t size = encodeTableDefinition(definition).size();
        ASSERT_LT(size, 8150U);
        definition.columns[0].name += std::string((8150 - size) / 2 + extra, 'x');
        const PageNumber first = store_.create(definition);
        expectStored(first, definition);
        const std::size_t length = encodeTableDefinition(definition).size();
        EXPECT_EQ(store_.pages(first).size(), length <= 8184 ? 2U : 3U) << length;
    }
}

TEST_F(DefinitionStore, SavesCountersInPlace)
{
    TableDefinition definition = definitionOf(200);
    const PageNumber first = store_.create(definition);
    definition.rowCount = 4711;
    definition.lastAutoNumber = -5;
    definition.realIndexes[1].distinctKeys = 99;
    store_.saveCounters(first, definition);
    expectStored(first, definition);
    const TableDefinition read = store_.load(first);
    EXPECT_EQ(read.rowCount, 4711U);
    EXPECT_EQ(read.lastAutoNumber, -5);
    EXPECT_EQ(read.realIndexes[0].distinctKeys, 0U);
    EXPECT_EQ(read.realIndexes[1].distinctKeys, 99U);

    definition.realIndexes.pop_back();
    EXPECT_THAT([&] { store_.saveCounters(first, definition); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { store_.saveCounters(1, definition); }, throwsError(ErrorCode::Corrupt));
}

TEST_F(DefinitionStore, RefusesChainsThatDoNotHoldTogether)
{
    const PageNumber first = store_.create(definitionOf(200));
    const auto pointTo = [&](PageNumber next) {
        putU32(pager().modify(3), 4, next);
        return loading(first);
    };
    EXPECT_THAT(pointTo(2), throwsError(ErrorCode::Corrupt, "circle (page 2)"));
    EXPECT_THAT(pointTo(3), throwsError(ErrorCode::Corrupt, "circle (page 3)"));
    EXPECT_THAT(pointTo(0), throwsError(ErrorCode::Corrupt, "ends early (page 2)"));
    EXPECT_THAT(pointTo(1), throwsError(ErrorCode::Corrupt, "(page 1)"));
    EXPECT_THAT(pointTo(4711), throwsError(ErrorCode::Corrupt));
    EXPECT_NO_THROW(pointTo(4)());
    putU32(pager().modify(first), 8, 0xFFFFFFF0);
    EXPECT_THAT(loading(first), throwsError(ErrorCode::Corrupt, "ends early (page 2)"));
    putU32(pager().modify(first), 8, 10);
    EXPECT_THAT(loading(first), throwsError(ErrorCode::Corrupt, "(page 2)"));
    EXPECT_THAT(loading(0), throwsError(ErrorCode::Corrupt));
    EXPECT_THAT(loading(1), throwsError(ErrorCode::Corrupt, "(page 1)"));
}

} // namespace
} // namespace jet
