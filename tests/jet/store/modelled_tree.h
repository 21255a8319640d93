// An index tree in a file of its own, beside a plain ordered set that says what it must hold.
#pragma once

#include "jet/disk/memory_file.h"
#include "jet/format/header_page.h"
#include "jet/store/index_tree.h"
#include "jet/store/page_allocator.h"
#include "jet/store/usage_map.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace jet::test {

using TreeEntry = std::pair<Bytes, RowPointer>;

/// A file with a header, an empty global map and one usage map, in a transaction.
class TreeFile
{
public:
    static constexpr PageNumber kOwner = 2;

    TreeFile() : pager(files_, "tree.mdb", OpenMode::Create)
    {
        pager.begin();
        const PageNumber header = pager.append();
        pager.modify(header) = encodeHeaderPage(HeaderPage{});
        (void)pager.append();
        PageAllocator::initialize(pager);
        map = createUsageMaps(pager, 1).front();
        root = IndexTree::create(pager, kOwner, map);
    }

private:
    MemoryFileSystem files_;

public:
    Pager pager;
    RowPointer map;
    PageNumber root = 0;

    [[nodiscard]] IndexTree tree() { return {pager, kOwner, root, map}; }
};

/// Changes a tree and its model together.
class ModelledTree
{
public:
    ModelledTree() : tree(file.tree()) {}

    void insert(const Bytes& key, RowPointer row)
    {
        tree.insert(key, row);
        model.emplace(key, row);
    }

    void erase(const Bytes& key, RowPointer row)
    {
        ASSERT_TRUE(tree.erase(key, row));
        model.erase({key, row});
    }

    /// Walks the whole structure, then all entries forwards and backwards.
    void expectSound() const
    {
        std::vector<TreeEntry> walked;
        const std::vector<TreeFault> faults =
            tree.check([&](ByteView key, RowPointer row) { walked.emplace_back(Bytes(key.begin(), key.end()), row); });
        for (const TreeFault& fault : faults) {
            ADD_FAILURE() << "page " << fault.page << ": " << fault.text;
        }
        const std::vector<TreeEntry> wanted(model.begin(), model.end());
        ASSERT_EQ(walked.size(), wanted.size());
        ASSERT_TRUE(walked == wanted);
        ASSERT_TRUE(entries({}, Direction::Forwards) == wanted);
        ASSERT_TRUE(entries({}, Direction::Backwards) == std::vector<TreeEntry>(wanted.rbegin(), wanted.rend()));
    }

    [[nodiscard]] std::vector<TreeEntry> entries(const KeyInterval& interval, Direction direction) const
    {
        std::vector<TreeEntry> found;
        for (IndexCursor cursor = tree.range(interval, direction); cursor.next();) {
            found.emplace_back(cursor.key(), cursor.row());
        }
        return found;
    }

    [[nodiscard]] std::vector<PageNumber> pages() const { return UsageMap(file.pager, file.map).pages(); }

    mutable TreeFile file;
    IndexTree tree;
    std::set<TreeEntry> model;
};

} // namespace jet::test
