// The pages that a file holds, read through a cache that is checked against the file.
#pragma once

#include "jet/disk/file_version.h"
#include "jet/disk/journal.h"
#include "jet/disk/page_cache.h"

#include <optional>
#include <span>
#include <string>

namespace jet {

/// What it says is true from a call of refresh() on, for as long as a lock keeps the file as it is.
class FilePages
{
public:
    /// The path is for the words of errors. The file must outlive this.
    FilePages(File& file, std::string path, std::size_t cachedPages)
        : file_(&file), path_(std::move(path)), cache_(cachedPages)
    {
    }

    /// Takes the file as it is now. True when it has changed since the last time; all cached pages are gone then.
    /// Throws Corrupt for a file that is larger than the format allows.
    bool refresh();
    /// Whole pages.
    [[nodiscard]] PageNumber count() const { return count_; }
    /// Whether part of a page follows them: a foreign program was cut short.
    [[nodiscard]] bool endsInsidePage() const { return endsInsidePage_; }
    /// The page, which is one of count().
    [[nodiscard]] PageRef read(PageNumber number);

    /// Writes pages, which ascend by number, as they are after the change.
    void write(std::span<const ChangedPage> pages);
    /// Tells that the pages were written, durably, and that the file has that many now.
    void accept(std::span<const ChangedPage> pages, PageNumber count) noexcept;
    /// Trusts nothing any more until the next refresh().
    void forget() noexcept;
    [[nodiscard]] bool areForgotten() const { return !version_.has_value(); }

private:
    File* file_;
    std::string path_;
    std::optional<FileVersion> version_; ///< of the file that all below stands for; empty: of none
    PageNumber count_ = 0;
    bool endsInsidePage_ = false;
    PageCache cache_;
    PageNumber sequentialNext_ = 0; ///< asking for this page next counts as going on in order
    Bytes readBuffer_;
};

} // namespace jet
