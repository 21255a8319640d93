// The power fails while an interrupted change is being taken back: by the next program, by one that opens the diary
// while the disk is still at work, by the program itself.
#include "jet/database/small_diary.h"
#include "jet/support/fault_file_system.h"
#include "power_loss/diaries.h"

#include <gtest/gtest.h>

namespace power_loss {
namespace {

using jet::test::Call;
using jet::test::FaultFileSystem;

const std::string kPath = jet::test::kDiaryPath;

void addReadingTo(jet::FileSystem& disk)
{
    addSomeReading(*jet::Database::open(disk, kPath));
}

/// The diary before and after a reading is added.
struct Reading {
    Files before = smallDiary([](jet::Database&) {});
    jet::Bytes after = added(before);

    static jet::Bytes added(const Files& before)
    {
        RecordingFileSystem disk(before);
        addReadingTo(disk);
        return disk.files().at(kPath);
    }
    [[nodiscard]] std::vector<jet::Bytes> either() const { return {before.at(kPath), after}; }
};

TEST(PowerLoss, InTheRecoveryAfterItAndInTheOneAfterThatLosesNothing)
{
    Effort effort = usualEffort();
    effort.depth = 2;
    const Findings findings = losePowerDuring(Reading().before, addReadingTo, effort);
    EXPECT_GT(findings.recoveries.calls, findings.program.calls);
}

/// Calls `attempt` with disks on which the first, the second ... call of that kind fails, until none does.
void forEachFault(Call call, bool lasting, const Files& start,
                  const std::function<void(RecordingFileSystem&, FaultFileSystem&)>& attempt)
{
    for (std::size_t at = 0;; ++at) {
        SCOPED_TRACE("call " + std::to_string(at) + " of kind " + std::to_string(static_cast<int>(call)) + " fails");
        RecordingFileSystem disk(start);
        FaultFileSystem faulty(disk);
        faulty.set({.at = at, .lasting = lasting, .call = call});
        attempt(disk, faulty);
        if (!faulty.hasFailed()) {
            EXPECT_GT(at, 0U);
            return;
        }
    }
}

void add(Count& sum, const Count& count)
{
    sum.calls += count.calls;
    sum.states += count.states;
}

constexpr std::array kChangingCalls{Call::Create, Call::Write, Call::Sync, Call::Rename, Call::SyncFolder};

/// Lets a program that adds a reading die at that call. True when it did not come to it.
bool outlives(std::size_t call, RecordingFileSystem& disk)
{
    FaultFileSystem dying(disk);
    dying.set({.at = call, .lasting = true});
    try {
        addReadingTo(dying);
    } catch (const jet::Error&) {
        return false;
    }
    return !dying.hasFailed();
}

/// A process that dies takes its locks along, but what it wrote is not on the disk yet when another recovers it. That
/// one adds a reading then; it opens the diary before or after the death.
class AnotherProgram : public testing::TestWithParam<bool>
{
};

INSTANTIATE_TEST_SUITE_P(PowerLoss, AnotherProgram, testing::Bool(), [](const auto& instance) {
    return std::string(instance.param ? "ThatWasThereBefore" : "ThatComesLater");
});

TEST_P(AnotherProgram, ThatRecoversWhatOneThatDiedHasLeftLosesNothingAsThePowerFails)
{
    const Reading reading;
    Findings all;
    Files left;
    std::size_t changes = 0;
    bool dies = true;
    for (std::size_t death = 0; dies && all.losses.empty(); ++death) {
        RecordingFileSystem disk(reading.before);
        std::unique_ptr<jet::Database> other;
        if (GetParam()) {
            other = jet::Database::open(disk, kPath);
        }
        dies = !outlives(death, disk);
        // Many calls only read.
        if (disk.events().size() == changes && disk.files() == left) {
            continue;
        }
        left = disk.files();
        changes = disk.events().size();
        if (!other) {
            other = jet::Database::open(disk, kPath);
        }
        addSomeReading(*other);
        const Effort effort{.choices = usualEffort().choices, .recoveries = 0, .seed = death + 1};
        const Findings findings = Trial(kPath, addSomeReading, effort).run(disk, changes, reading.either());
        add(all.program, findings.program);
        all.losses = findings.losses;
    }
    expectNoLoss(all);
    EXPECT_GT(all.program.calls, 100U);
}

/// The connection lives on and takes its change back.
TEST(PowerLoss, WhileACommitThatFailedIsTakenBackLosesNothing)
{
    const Reading reading;
    Findings all;
    for (const Call call : kChangingCalls) {
        forEachFault(call, false, reading.before, [&](RecordingFileSystem& disk, FaultFileSystem& faulty) {
            try {
                addReadingTo(faulty);
            } catch (const jet::Error&) {
                EXPECT_TRUE(faulty.hasFailed());
            }
            const Effort effort{.choices = usualEffort().choices, .recoveries = 0};
            const Findings findings = Trial(kPath, addSomeReading, effort).run(disk, 0, reading.either());
            add(all.program, findings.program);
            all.losses.insert(all.losses.end(), findings.losses.begin(), findings.losses.end());
        });
    }
    expectNoLoss(all);
    EXPECT_GT(all.program.calls, 100U);
}

} // namespace
} // namespace power_loss
