// Reading and changing pages through one connection and through two.
#include "jet/disk/memory_file.h"
#include "jet/disk/pager.h"

#include <gmock/gmock.h>

namespace jet {
namespace {

using std::chrono::milliseconds;

const std::string kPath = "Diary.mdb";

class PagerTest : public testing::Test
{
protected:
    /// A file of that many pages; page N is filled with the number N + 1.
    void makeFile(PageNumber pages)
    {
        Bytes content;
        for (PageNumber page = 0; page < pages; ++page) {
            content.resize(content.size() + kPageSize, static_cast<std::byte>(page + 1));
        }
        disk.setContent(kPath, content);
    }

    Pager open(OpenMode mode = OpenMode::ReadWrite) { return Pager(disk, kPath, mode, options); }

    static int byteOf(Pager& pager, PageNumber page, std::size_t offset = 100)
    {
        const ReadGuard guard(pager);
        return std::to_integer<int>((*pager.read(page))[offset]);
    }

    static void change(Pager& pager, PageNumber page, int value)
    {
        pager.begin();
        set(pager, page, value);
        pager.commit();
    }

    static void set(Pager& pager, PageNumber page, int value)
    {
        pager.modify(page)[100] = static_cast<std::byte>(value);
    }

    MemoryFileSystem disk;
    PagerOptions options{.patience = milliseconds{0}};
};

TEST_F(PagerTest, ReadsThePagesOfAFile)
{
    makeFile(3);
    Pager pager = open();
    EXPECT_EQ(pager.pageCount(), 3U);
    EXPECT_EQ(byteOf(pager, 0), 1);
    EXPECT_EQ(byteOf(pager, 2), 3);
}

TEST_F(PagerTest, ACommittedChangeIsSeenByTheNextConnection)
{
    makeFile(3);
    {
        Pager pager = open();
        change(pager, 1, 77);
        EXPECT_EQ(byteOf(pager, 1), 77);
    }
    Pager pager = open();
    EXPECT_EQ(byteOf(pager, 1), 77);
    EXPECT_EQ(byteOf(pager, 2), 3);
    EXPECT_FALSE(disk.exists(kPath + "-journal"));
}

} // namespace
} // namespace jet
