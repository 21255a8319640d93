// The power fails while a file is made.
#include "jet/database/small_diary.h"
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
    RecordingFileSystem disk(Files{});
    make(disk);
    const jet::Bytes whole = disk.files().at(kPath);
    const std::size_t calls = disk.events().size();
    std::size_t missing = 0;
    DiskState state(Files{});
    for (std::size_t call = 0; call <= calls && !HasFailure(); ++call) {
        SCOPED_TRACE("after call " + std::to_string(call));
        for (const Survival& survival : Survival::several(usualEffort().choices, call)) {
            SCOPED_TRACE(survival.describe());
            const Files files = state.afterPowerLoss(survival);
            RecordingFileSystem found(files);
            if (files.contains(kPath)) {
                EXPECT_EQ(files.at(kPath), whole);
                EXPECT_THAT(jet::Database::open(found, kPath)->check(), IsEmpty());
            } else {
                EXPECT_LT(call, calls) << "the call has returned";
                EXPECT_THAT(make(found)->check(), IsEmpty()) << "what is left is in nobody's way";
                ++missing;
            }
        }
        if (call < calls) {
            state.apply(disk.events()[call]);
        }
    }
    EXPECT_GT(missing, calls);
}

} // namespace
} // namespace power_loss
