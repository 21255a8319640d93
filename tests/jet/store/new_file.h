// A file in memory that has nothing but a header and a map of free pages, with a change in progress.
#pragma once

#include "jet/disk/memory_file.h"
#include "jet/disk/pager.h"
#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/format/usage_map_codec.h"
#include "jet/store/page_allocator.h"
#include "jet/store/usage_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace jet::test {

class NewFile
{
public:
    NewFile()
    {
        Bytes content(2 * kPageSize);
        putBytes(content, 0, encodeHeaderPage({}));
        files_.setContent("new.mdb", content);
        pager_ = std::make_unique<Pager>(files_, "new.mdb", OpenMode::ReadWrite);
        pager_->begin();
        PageAllocator::initialize(*pager_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile()
    {
        if (pager_->inTransaction()) {
            pager_->rollback();
        }
    }

    [[nodiscard]] Pager& pager() { return *pager_; }
    void commitAndGoOn()
    {
        pager_->commit();
        pager_->begin();
    }

    /// Grows a file without free pages to that many pages, which are in use and in no map.
    void growTo(PageNumber pages)
    {
        constexpr PageNumber kInlineLimit = 32000; // what the map on page 1 can tell of
        while (pager_->pageCount() < std::min(pages, kInlineLimit)) {
            static_cast<void>(pager_->append());
        }
        const PageNumber covered = std::max<PageNumber>(512, (pager_->pageCount() + 31) / 32 * 32);
        Bytes map(UsageMapRow::kInlineHeader + covered / 8);
        initializeInlineMap(map, 0);
        for (PageNumber page = pager_->pageCount(); page < covered; ++page) {
            setBit(MutableBytes(map).subspan(UsageMapRow::kInlineHeader), page, true);
        }
        DataPageEditor(pager_->modify(1), 1).replace(0, map, SlotKind::Row);
        while (pager_->pageCount() < pages) {
            static_cast<void>(PageAllocator(*pager_).allocate());
        }
    }

private:
    MemoryFileSystem files_;
    std::unique_ptr<Pager> pager_;
};

/// Expects each page to have exactly one owner among the maps given, bitmap pages and "others", or else to be free.
inline void expectEveryPageAccountedFor(Pager& pager, const std::vector<UsageMap>& maps,
                                        const std::vector<PageNumber>& others)
{
    std::map<PageNumber, int> owners;
    owners[0] = owners[1] = 1;
    for (const PageNumber page : others) {
        ++owners[page];
    }
    for (const UsageMap& map : maps) {
        for (const PageNumber page : map.pages()) {
            ++owners[page];
        }
        for (const PageNumber page : map.bitmapPages()) {
            ++owners[page];
            EXPECT_TRUE(isBitmapPage(*pager.read(page))) << page;
        }
    }
    const PageAllocator allocator(pager);
    for (PageNumber page = 0; page < pager.pageCount(); ++page) {
        const int count = owners[page] + (allocator.isFree(page) ? 1 : 0);
        EXPECT_EQ(count, 1) << "page " << page << " of " << pager.pageCount();
    }
}

} // namespace jet::test
