// A damaged journal beside a file whose commit did not finish: either the file gets its old content back, byte for
// byte, or the journal is refused and both files stay as they are.
//
// The input: how many bytes of the journal are there (4 bytes, least significant first; more than it has: all), then
// patches to it: offset (4 bytes), count (1 byte), that many bytes.
#include "fuzz/fuzz_driver.h"

#include "jet/database.h"
#include "jet/database/small_diary.h"
#include "jet/disk/error.h"
#include "jet/disk/journal.h"
#include "jet/disk/memory_file.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <span>

namespace {

using namespace jet;

/// The moment before a journal is retired: the file is as after the commit, the journal tells what it was before.
struct Unfinished {
    std::string journalPath;
    Bytes before;
    Bytes after;
    Bytes journal;
};

PageRef pageOf(const Bytes& file, std::size_t number)
{
    if ((number + 1) * kPageSize > file.size()) {
        return nullptr;
    }
    auto page = std::make_shared<Page>();
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(number * kPageSize), kPageSize, page->begin());
    return page;
}

const Unfinished& unfinished()
{
    static const Unfinished made = [] {
        Unfinished result;
        MemoryFileSystem disk;
        const auto diary = test::createSmallDiary(disk);
        result.before = disk.content(test::kDiaryPath);
        test::fillSmallDiary(*diary);
        result.after = disk.content(test::kDiaryPath);

        std::vector<ChangedPage> changes;
        for (std::size_t page = 0; page * kPageSize < result.after.size(); ++page) {
            const PageRef before = pageOf(result.before, page);
            const PageRef after = pageOf(result.after, page);
            if (before == nullptr || *before != *after) {
                changes.push_back({static_cast<PageNumber>(page), before, after});
            }
        }
        Journal journal(disk, test::kDiaryPath);
        journal.write(static_cast<PageNumber>(result.before.size() / kPageSize),
                      static_cast<PageNumber>(result.after.size() / kPageSize), changes);
        result.journalPath = journal.path();
        result.journal = disk.content(result.journalPath);
        return result;
    }();
    return made;
}

Bytes journalOf(ByteView input)
{
    Bytes journal = unfinished().journal;
    if (input.size() >= 4) {
        journal.resize(std::min<std::size_t>(journal.size(), getU32(input, 0)));
    }
    for (std::size_t at = 4; at + 5 <= input.size() && !journal.empty();) {
        const std::size_t offset = getU32(input, at) % journal.size();
        const std::size_t count =
            std::min<std::size_t>({getU8(input, at + 4), input.size() - at - 5, journal.size() - offset});
        putBytes(journal, offset, input.subspan(at + 5, count));
        at += 5 + count;
    }
    return journal;
}

[[noreturn]] void fail(const char* what)
{
    std::cerr << what << "\n";
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Unfinished& state = unfinished();
    const Bytes journal = journalOf(std::as_bytes(std::span(data, size)));
    MemoryFileSystem disk;
    disk.setContent(test::kDiaryPath, state.after);
    disk.setContent(state.journalPath, journal);
    try {
        const auto diary = Database::open(disk, test::kDiaryPath);
        if (disk.content(test::kDiaryPath) != state.before) {
            fail("A damaged journal was rolled back to something that never was.");
        }
        if (disk.exists(state.journalPath)) {
            fail("The journal is still there after the rollback.");
        }
    } catch (const Error&) {
        if (disk.content(test::kDiaryPath) != state.after || disk.content(state.journalPath) != journal) {
            fail("The journal was refused, but a file was changed.");
        }
    }
    return 0;
}
