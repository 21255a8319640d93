#include "jet/disk/file_pages.h"

#include <algorithm>

namespace jet {

namespace {

// When pages are asked for one after the other, this many are fetched at once.
constexpr std::size_t kPagesReadAhead = 16;

// Adjacent pages go out in one write up to this many.
constexpr std::size_t kPagesInWrite = 256;

} // namespace

bool FilePages::refresh()
{
    const FileVersion found = FileVersion::of(*file_);
    if (found.stamp.size > pageOffset(kMaxPageCount)) {
        throw Error(ErrorCode::Corrupt, "The file " + path_ + " is larger than the 2 GiB that the format allows");
    }
    if (version_ == found) {
        return false;
    }
    cache_.clear();
    count_ = static_cast<PageNumber>(found.stamp.size / kPageSize);
    endsInsidePage_ = found.stamp.size % kPageSize != 0;
    version_ = found;
    return true;
}

PageRef FilePages::read(PageNumber number)
{
    if (PageRef cached = cache_.find(number)) {
        return cached;
    }
    std::size_t count = 1;
    if (number == sequentialNext_) {
        count = std::min<std::size_t>({kPagesReadAhead, count_ - number, cache_.capacity() / 2 + 1});
    }
    readBuffer_.resize(count * kPageSize);
    file_->readAt(pageOffset(number), readBuffer_);
    sequentialNext_ = number + static_cast<PageNumber>(count);
    // Backwards, so that the page that was asked for is the last to be pushed out.
    PageRef asked;
    for (std::size_t i = count; i-- > 0;) {
        const PageNumber at = number + static_cast<PageNumber>(i);
        if (i > 0 && cache_.contains(at)) {
            continue;
        }
        auto page = std::make_shared<Page>();
        putBytes(*page, 0, slice(ByteView(readBuffer_), i * kPageSize, kPageSize));
        asked = page;
        cache_.put(at, std::move(page));
    }
    return asked;
}

void FilePages::write(std::span<const ChangedPage> pages)
{
    Bytes run;
    while (!pages.empty()) {
        std::size_t count = 0;
        run.clear();
        do {
            run.insert(run.end(), pages[count].after->begin(), pages[count].after->end());
            ++count;
        } while (count < std::min(pages.size(), kPagesInWrite) && pages[count].number == pages[count - 1].number + 1);
        file_->writeAt(pageOffset(pages.front().number), run);
        pages = pages.subspan(count);
    }
}

void FilePages::accept(std::span<const ChangedPage> pages, PageNumber count) noexcept
{
    count_ = count;
    try {
        for (const ChangedPage& page : pages) {
            cache_.put(page.number, page.after);
        }
        version_ = FileVersion::of(*file_);
    } catch (...) {
        forget();
    }
}

void FilePages::forget() noexcept
{
    cache_.clear();
    version_.reset();
}

} // namespace jet
