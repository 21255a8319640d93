// What the tests of the pager share: small files whose pages tell their number, and verbs on them.
#pragma once

#include "jet/disk/memory_file.h"
#include "jet/disk/pager.h"
#include "jet/support/error_matchers.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace jet::test {

inline const std::string kPath = "Diary.mdb";
inline const std::string kJournalPath = kPath + "-journal";
inline const std::string kUnfinishedPath = kJournalPath + "-unfinished";

/// The place of the byte that tests look at in each page.
inline constexpr std::size_t kMark = 100;
/// The byte that counts commits in page 0.
inline constexpr std::size_t kCommitCount = 0xE00;

/// Each page is filled with the number given for it.
inline Bytes filledPages(const std::vector<int>& fills)
{
    Bytes content;
    for (const int fill : fills) {
        content.resize(content.size() + kPageSize, static_cast<std::byte>(fill));
    }
    return content;
}

inline void makeFile(FileSystem& disk, const Bytes& content)
{
    const std::unique_ptr<File> file = disk.open(kPath, OpenMode::Create);
    file->writeAt(0, content);
    file->sync();
    disk.syncFolderOf(kPath);
}

inline PagerOptions impatient(std::size_t cachedPages = 2048)
{
    return {.patience = std::chrono::milliseconds{0}, .cachedPages = cachedPages};
}

inline void mark(Pager& pager, PageNumber page, int value)
{
    pager.modify(page)[kMark] = static_cast<std::byte>(value);
}

inline PageNumber appendMarked(Pager& pager, int value)
{
    const PageNumber page = pager.append();
    mark(pager, page, value);
    return page;
}

inline int markOf(Pager& pager, PageNumber page)
{
    const ReadGuard guard(pager);
    return std::to_integer<int>((*pager.read(page))[kMark]);
}

/// The marks of all pages.
inline std::vector<int> marks(Pager& pager)
{
    const ReadGuard guard(pager);
    std::vector<int> all;
    for (PageNumber page = 0; page < pager.pageCount(); ++page) {
        all.push_back(markOf(pager, page));
    }
    return all;
}

inline std::vector<int> marksOfFile(FileSystem& disk)
{
    Pager pager(disk, kPath, OpenMode::ReadWrite, impatient());
    return marks(pager);
}

} // namespace jet::test
