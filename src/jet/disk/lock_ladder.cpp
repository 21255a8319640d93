#include "jet/disk/lock_ladder.h"

#include <algorithm>
#include <thread>

namespace jet {

namespace {

constexpr std::chrono::milliseconds kFirstPause{1};
constexpr std::chrono::milliseconds kLongestPause{25};

} // namespace

void LockLadder::moveTo(LockLevel level, std::chrono::milliseconds patience)
{
    if (level <= level_) {
        stepDownTo(level);
        return;
    }
    try {
        climb(level, Clock::now() + patience);
    } catch (...) {
        stepDownTo(level_);
        throw;
    }
    level_ = level;
}

void LockLadder::climb(LockLevel level, Clock::time_point deadline)
{
    if (level >= LockLevel::Reserved && level_ < LockLevel::Reserved) {
        claim(LockByte::Reserved, ByteLock::Write, deadline);
    }
    if (level == LockLevel::Exclusive) {
        claim(LockByte::Pending, ByteLock::Write, deadline);
        claim(LockByte::Shared, ByteLock::Write, deadline);
    } else if (level_ == LockLevel::None) {
        claim(LockByte::Pending, ByteLock::Read, deadline);
        claim(LockByte::Shared, ByteLock::Read, deadline);
        claim(LockByte::Pending, ByteLock::None, deadline);
    }
}

void LockLadder::claim(LockByte byte, ByteLock lock, Clock::time_point deadline)
{
    std::chrono::milliseconds pause = kFirstPause;
    while (!bytes_->trySet(byte, lock)) {
        const Clock::time_point now = Clock::now();
        if (now >= deadline) {
            throw Error(ErrorCode::Locked, "The file " + path_ + " is in use: another program holds a lock on it");
        }
        std::this_thread::sleep_for(std::min<Clock::duration>(pause, deadline - now));
        pause = std::min(pause * 2, kLongestPause);
    }
}

void LockLadder::stepDownTo(LockLevel level)
{
    // A weaker lock on one's own byte cannot conflict, so the answers need no look.
    const ByteLock shared = level == LockLevel::None        ? ByteLock::None
                            : level == LockLevel::Exclusive ? ByteLock::Write
                                                            : ByteLock::Read;
    static_cast<void>(bytes_->trySet(LockByte::Shared, shared));
    if (level < LockLevel::Exclusive) {
        static_cast<void>(bytes_->trySet(LockByte::Pending, ByteLock::None));
    }
    if (level < LockLevel::Reserved) {
        static_cast<void>(bytes_->trySet(LockByte::Reserved, ByteLock::None));
    }
    level_ = level;
}

} // namespace jet
