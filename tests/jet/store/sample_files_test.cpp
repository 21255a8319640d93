// Every definition, map, row and long value of files that other programs wrote.
#include "jet/store/long_value_store.h"
#include "jet/store/page_allocator.h"
#include "jet/store/row_store.h"
#include "jet/store/table_definition_store.h"

#include "jet/format/header_page.h"
#include "jet/format/hex.h"
#include "jet/format/property_blob.h"
#include "jet/format/table_definition_codec.h"
#include "jet/format/utf.h"
#include "jet/support/property_blob_encoder.h"
#include "jet/support/sample_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace jet {
namespace {

using test::toHex;

class SampleFile : public testing::TestWithParam<std::filesystem::path>
{
protected:
    struct TableOnFile {
        std::string name;
        PageNumber page = 0;
        TableDefinition definition;
    };

    SampleFile() : pager_(posixFileSystem(), GetParam().string(), OpenMode::ReadOnly), read_(pager_) {}

    [[nodiscard]] RowStore rowsOf(PageNumber page, const TableDefinition& definition)
    {
        return {pager_, page, definition.ownedPages, definition.pagesWithSpace};
    }

    /// All tables that the catalogue names, the system tables included.
    std::vector<TableOnFile> tables()
    {
        const TableDefinitionStore definitions(pager_);
        const PageNumber catalogue = decodeHeaderPage(*pager_.read(0)).systemTables[0];
        const TableDefinition definition = definitions.load(catalogue);
        const RowLayout layout(definition);
        const RowStore rows = rowsOf(catalogue, definition);
        std::vector<TableOnFile> found;
        for (RowStore::Cursor cursor = rows.scan(); cursor.next();) {
            const RowView row(layout, cursor.row().bytes);
            if (row.value(*definition.columnByName("Type")) == Value(std::int16_t{1})) {
                const auto id = std::get<std::int32_t>(row.value(*definition.columnByName("Id")));
                const auto name = std::get<std::u16string>(row.value(*definition.columnByName("Name")));
                const auto page = static_cast<PageNumber>(id);
                found.push_back({toUtf8(name), page, definitions.load(page)});
            }
        }
        return found;
    }

    Pager pager_;
    ReadGuard read_;
};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleFile);

TEST_P(SampleFile, DefinitionsEncodeToTheBytesThatTheyCameFrom)
{
    const TableDefinitionStore definitions(pager_);
    const std::vector<TableOnFile> all = tables();
    ASSERT_GE(all.size(), 4U);
    for (const TableOnFile& table : all) {
        Bytes stored;
        for (const PageNumber page : definitions.pages(table.page)) {
            const PageRef bytes = pager_.read(page);
            stored.insert(stored.end(), bytes->begin() + (stored.empty() ? 0 : 8), bytes->end());
        }
        stored.resize(getU32(stored, 8));
        std::fill_n(stored.begin(), 8, std::byte{0});
        EXPECT_EQ(toHex(encodeTableDefinition(table.definition)), toHex(stored)) << table.name;
    }
}

TEST_P(SampleFile, EveryValueOfEveryRowDecodes)
{
    std::map<std::string, std::size_t> scanned;
    for (const TableOnFile& table : tables()) {
        const RowLayout layout(table.definition);
        const RowStore rows = rowsOf(table.page, table.definition);
        std::size_t& count = scanned[table.name];
        for (RowStore::Cursor cursor = rows.scan(); cursor.next(); ++count) {
            const StoredRow& stored = cursor.row();
            const RowView row(layout, stored.bytes);
            EXPECT_LE(row.columnCount(), table.definition.maximumColumns);
            for (const Column& column : table.definition.columns) {
                EXPECT_NO_THROW(static_cast<void>(readValue(pager_, row, column)))
                    << table.name << '.' << column.name << " page " << stored.address.page;
            }
            const std::optional<StoredRow> again = rows.read(stored.address);
            ASSERT_TRUE(again.has_value());
            EXPECT_EQ(again->bytes.data(), stored.bytes.data());
        }
    }
    // How many rows an independent reader found.
    std::ifstream dump(GetParam().string() + ".dump.txt");
    std::string table;
    std::size_t compared = 0;
    for (std::string line; std::getline(dump, line);) {
        std::istringstream words(line);
        std::string word;
        std::getline(words, word, '\t');
        if (word == "END") {
            std::string count;
            std::getline(words, table, '\t');
            std::getline(words, count, '\t');
            if (scanned.count(table) != 0) {
                EXPECT_EQ(scanned[table], std::stoul(count)) << table;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 0U);
}

TEST_P(SampleFile, RowsBuiltAnewFromTheirValuesHoldTheSameValues)
{
    for (const TableOnFile& table : tables()) {
        const RowLayout layout(table.definition);
        const RowStore rows = rowsOf(table.page, table.definition);
        for (RowStore::Cursor cursor = rows.scan(); cursor.next();) {
            const RowView row(layout, cursor.row().bytes);
            const Bytes again = RowBuilder(table.definition, row).encode();
            const RowView copy(layout, again);
            RowBuilder builder(table.definition);
            for (const Column& column : table.definition.columns) {
                ASSERT_EQ(copy.value(column), row.value(column)) << table.name << '.' << column.name;
                if (column.type != ColumnType::Block) {
                    builder.set(column, row.value(column));
                }
            }
            const Bytes rebuilt = builder.encode();
            const RowView fromValues(layout, rebuilt);
            for (const Column& column : table.definition.columns) {
                if (column.type != ColumnType::Block) {
                    ASSERT_EQ(fromValues.value(column), row.value(column)) << table.name << '.' << column.name;
                }
            }
        }
    }
}

TEST_P(SampleFile, PagesOfEveryMapAreOfItsKind)
{
    const PageAllocator allocator(pager_);
    for (const TableOnFile& table : tables()) {
        const TableDefinition& definition = table.definition;
        const UsageMap owned(pager_, definition.ownedPages);
        for (const PageNumber page : owned.pages()) {
            EXPECT_TRUE(isDataPageOf(*pager_.read(page), table.page)) << table.name << " page " << page;
            EXPECT_NO_THROW(DataPage(*pager_.read(page), page).validate());
            EXPECT_FALSE(allocator.isFree(page)) << page;
        }
        for (const PageNumber page : UsageMap(pager_, definition.pagesWithSpace).pages()) {
            EXPECT_TRUE(owned.contains(page)) << table.name << " page " << page;
        }
        for (const LongValueMaps& maps : definition.longValues) {
            for (const PageNumber page : UsageMap(pager_, maps.owned).pages()) {
                EXPECT_TRUE(isDataPageOf(*pager_.read(page), kLongValueOwner)) << table.name << " page " << page;
                EXPECT_NO_THROW(DataPage(*pager_.read(page), page).validate());
            }
            if (maps.withSpace.page != 0) {
                EXPECT_NO_THROW(static_cast<void>(UsageMap(pager_, maps.withSpace).pages()));
            }
        }
        for (const RealIndex& index : definition.realIndexes) {
            EXPECT_TRUE(UsageMap(pager_, index.pages).contains(index.root)) << table.name;
        }
    }
}

TEST_P(SampleFile, PropertiesEncodeToTheBytesThatTheyCameFrom)
{
    const PageNumber catalogue = decodeHeaderPage(*pager_.read(0)).systemTables[0];
    const TableDefinition definition = TableDefinitionStore(pager_).load(catalogue);
    const Column& properties = *definition.columnByName("LvProp");
    const RowLayout layout(definition);
    const RowStore rows = rowsOf(catalogue, definition);
    for (RowStore::Cursor cursor = rows.scan(); cursor.next();) {
        const Value value = readValue(pager_, RowView(layout, cursor.row().bytes), properties);
        if (!isNull(value)) {
            const Bytes& bytes = std::get<Bytes>(value);
            EXPECT_EQ(toHex(test::encodePropertyBlob(decodePropertyBlob(bytes))), toHex(bytes));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleFile, testing::ValuesIn(test::sampleFiles()), test::sampleName);

} // namespace
} // namespace jet
