// Every index of files that other programs wrote: our walk against an independent reader's, and the keys against the
// rows.
#include "jet/store/index_tree.h"

#include "jet/format/hex.h"
#include "jet/format/index_key.h"
#include "jet/format/row_codec.h"
#include "jet/store/row_store.h"
#include "jet/store/table_definition_store.h"
#include "jet/support/sample_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace jet {
namespace {

using test::toHex;

/// One index as a dump lists it.
struct DumpedIndex {
    std::string table;
    std::size_t realIndex = 0;
    PageNumber root = 0;
    std::vector<std::string> entries; ///< "hex page:row"
};

std::vector<DumpedIndex> dumpedIndexes(const std::filesystem::path& sample)
{
    std::vector<DumpedIndex> indexes;
    for (const char* suffix : {".dump.txt", ".system.txt"}) {
        std::ifstream file(sample.string() + suffix);
        for (std::string line; std::getline(file, line);) {
            std::vector<std::string> fields;
            std::istringstream stream(line);
            for (std::string field; std::getline(stream, field, '\t');) {
                fields.push_back(field);
            }
            if (!fields.empty() && fields[0] == "KEYS") {
                indexes.push_back({.table = fields.at(1),
                                   .realIndex = std::stoul(fields.at(2)),
                                   .root = static_cast<PageNumber>(std::stoul(fields.at(3).substr(5))),
                                   .entries = {}});
            } else if (!fields.empty() && fields[0] == "KEY") {
                indexes.back().entries.push_back(fields.at(1) + " " + fields.at(2));
            }
        }
    }
    return indexes;
}

std::string entryText(ByteView key, RowPointer row)
{
    return toHex(key) + " " + std::to_string(row.page) + ":" + std::to_string(row.row);
}

class SampleTree : public testing::TestWithParam<std::filesystem::path>
{
protected:
    SampleTree() : pager_(posixFileSystem(), GetParam().string(), OpenMode::ReadOnly), read_(pager_) {}

    /// The definition page of the table that an index belongs to: its root tells.
    PageNumber ownerOf(PageNumber root) { return IndexPage(pager_.read(root), root).header().owner; }

    Pager pager_;
    ReadGuard read_;
};

TEST_P(SampleTree, IsSoundAndHoldsTheKeysThatAnotherReaderFound)
{
    for (const DumpedIndex& dumped : dumpedIndexes(GetParam())) {
        SCOPED_TRACE(dumped.table + ", index " + std::to_string(dumped.realIndex));
        const PageNumber owner = ownerOf(dumped.root);
        const RealIndex index = TableDefinitionStore(pager_).load(owner).realIndexes.at(dumped.realIndex);
        ASSERT_EQ(index.root, dumped.root);
        const IndexTree tree(pager_, owner, index.root, index.pages);

        std::vector<std::string> walked;
        for (const TreeFault& fault :
             tree.check([&](ByteView key, RowPointer row) { walked.push_back(entryText(key, row)); })) {
            ADD_FAILURE() << "page " << fault.page << ": " << fault.text;
        }
        EXPECT_EQ(walked, dumped.entries);

        std::vector<std::string> forwards;
        for (IndexCursor cursor = tree.range(); cursor.next();) {
            forwards.push_back(entryText(cursor.key(), cursor.row()));
            EXPECT_TRUE(tree.isTaken(cursor.key()));
        }
        EXPECT_EQ(forwards, dumped.entries);
        std::vector<std::string> backwards;
        for (IndexCursor cursor = tree.range({}, Direction::Backwards); cursor.next();) {
            backwards.push_back(entryText(cursor.key(), cursor.row()));
        }
        std::reverse(backwards.begin(), backwards.end());
        EXPECT_EQ(backwards, dumped.entries);
    }
}

TEST_P(SampleTree, HoldsExactlyTheKeysThatFollowFromTheRows)
{
    for (const DumpedIndex& dumped : dumpedIndexes(GetParam())) {
        SCOPED_TRACE(dumped.table + ", index " + std::to_string(dumped.realIndex));
        const PageNumber owner = ownerOf(dumped.root);
        const TableDefinition definition = TableDefinitionStore(pager_).load(owner);
        const RealIndex& index = definition.realIndexes.at(dumped.realIndex);
        const IndexKeyEncoder encoder(definition, index);
        const auto isMemo = [&](std::uint16_t number) {
            return definition.columnByNumber(number)->type == ColumnType::Memo;
        };
        const std::vector<std::uint16_t>& numbers = encoder.columnNumbers();
        if (!encoder.canEncode() || std::any_of(numbers.begin(), numbers.end(), isMemo)) {
            continue;
        }
        std::vector<std::string> wanted;
        const RowLayout layout(definition);
        const RowStore rows(pager_, owner, definition.ownedPages, definition.pagesWithSpace);
        for (RowStore::Cursor cursor = rows.scan(); cursor.next();) {
            const RowView row(layout, cursor.row().bytes);
            std::vector<Value> values;
            for (const std::uint16_t number : numbers) {
                values.push_back(row.value(*definition.columnByNumber(number)));
            }
            const IndexKey key = encoder.encode(values);
            if (!index.ignoresNulls() || !key.allNull) {
                wanted.push_back(entryText(key.bytes, cursor.row().address));
            }
        }
        std::vector<std::string> stored = dumped.entries;
        std::sort(stored.begin(), stored.end());
        std::sort(wanted.begin(), wanted.end());
        EXPECT_EQ(wanted, stored);
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleTree, testing::ValuesIn(test::sampleFiles()), test::sampleName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleTree);

} // namespace
} // namespace jet
