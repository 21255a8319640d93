// The power fails while a file is made.
#include "jet/database/small_diary.h"
#include "jet/support/power_failure.h"
#include "power_loss/diaries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace power_loss {
namespace {

using testing::IsEmpty;

const std::string kPath = jet::test::kDiaryPath;

std::unique_ptr<jet::Database> make(jet::FileSystem& disk)
{
    return jet::Database::create(disk, kPath, jet::DateTime{46000});
}

TEST(PowerLoss, WhileAFileIsMadeLeavesItWholeOrNotThere)
{
    jet::MemoryFileSystem made;
    make(made);
    const jet::Bytes whole = made.content(kPath);
    std::size_t missing = 0;
    const std::size_t states = jet::test::forEachPowerFailure({
        .prepare = [](jet::FileSystem&) {},
        .body = [](jet::FileSystem& disk) { make(disk); },
        .check =
            [&](jet::FileSystem& disk, bool finished) {
                if (disk.exists(kPath)) {
                    jet::Bytes found(whole.size());
                    const auto file = disk.open(kPath, jet::OpenMode::ReadOnly);
                    ASSERT_EQ(file->size(), whole.size());
                    file->readAt(0, found);
                    EXPECT_EQ(found, whole);
                    EXPECT_THAT(jet::Database::open(disk, kPath)->check(), IsEmpty());
                } else {
                    EXPECT_FALSE(finished);
                    EXPECT_THAT(make(disk)->check(), IsEmpty()) << "what is left is in nobody's way";
                    ++missing;
                }
            },
        .choices = usualEffort().choices,
    });
    EXPECT_GT(missing, 20U);
    EXPECT_GT(states, missing);
}

} // namespace
} // namespace power_loss
