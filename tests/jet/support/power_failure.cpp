#include "jet/support/power_failure.h"

#include "jet/support/disk_state.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet::test {

namespace {

class Run
{
public:
    explicit Run(const PowerFailureTest& test) : test_(&test) {}

    std::size_t all()
    {
        MemoryFileSystem start;
        test_->prepare(start);
        RecordingFileSystem disk(start.files());
        test_->body(disk);
        failDuring(disk, test_->choices, [this](const Files& files, bool finished) {
            check(files, finished);
            if (test_->recover) {
                failDuringRecovery(files, finished);
            }
        });
        return checked_;
    }

private:
    // One broken state is enough to look at.
    static bool stopped() { return testing::Test::HasFailure(); }

    /// Calls `visit(files, finished)` with each state.
    template <typename Visit>
    void failDuring(const RecordingFileSystem& disk, std::size_t choices, Visit visit)
    {
        DiskState state(disk.start());
        const std::size_t calls = disk.events().size();
        for (std::size_t call = 0; call <= calls && !stopped(); ++call) {
            SCOPED_TRACE("the power failed after call " + std::to_string(call) +
                         (call == 0 ? "" : ", " + describe(disk.events()[call - 1])));
            std::vector<Files> seen;
            for (const Survival& survival : Survival::several(choices, ++calls_)) {
                Files files = state.afterPowerLoss(survival);
                if (!stopped() && std::find(seen.begin(), seen.end(), files) == seen.end()) {
                    SCOPED_TRACE(survival.describe());
                    visit(files, call == calls);
                    seen.push_back(std::move(files));
                }
            }
            if (call < calls) {
                state.apply(disk.events()[call]);
            }
        }
    }

    void failDuringRecovery(const Files& files, bool finished)
    {
        RecordingFileSystem disk(files);
        test_->recover(disk);
        if (!disk.events().empty()) {
            failDuring(disk, test_->recoveryChoices, [&](const Files& found, bool) { check(found, finished); });
        }
    }

    void check(const Files& files, bool finished)
    {
        ++checked_;
        MemoryFileSystem disk;
        for (const auto& [path, content] : files) {
            disk.setContent(path, content);
        }
        try {
            test_->check(disk, finished);
        } catch (const Error& error) {
            ADD_FAILURE() << "the check ended with an error: " << error.what();
        }
    }

    const PowerFailureTest* test_;
    std::size_t checked_ = 0;
    std::uint64_t calls_ = 0; ///< the seeds follow from it
};

} // namespace

std::size_t forEachPowerFailure(const PowerFailureTest& test)
{
    return Run(test).all();
}

} // namespace jet::test
