// Which pages of the file are free (FORMAT.md, "Usage maps and allocation").
#pragma once

#include "jet/disk/pager.h"

namespace jet {

/// Hands out and takes back pages, by the map of free pages. All functions require a transaction, isFree a read.
class PageAllocator
{
public:
    explicit PageAllocator(Pager& pager);

    /// The lowest free page above `after`, or a new one at the end of the file. All zero; its old content is gone.
    /// Throws Overflow at 2 GiB.
    [[nodiscard]] PageNumber allocate(PageNumber after = 0);
    /// Gives the page back: marks its type as freed and the page as free. It must be in no other map any more.
    void free(PageNumber page);
    /// False for what the map does not tell of: a page in the file counts as used unless the map says that it is free.
    [[nodiscard]] bool isFree(PageNumber page) const;

    /// For a new file that has nothing but its pages 0 and 1: makes page 1 the map page, with both in use. Pages that
    /// are then allocated follow in order from 2.
    static void initialize(Pager& pager);

private:
    Pager* pager_;
};

} // namespace jet
