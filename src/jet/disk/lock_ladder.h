// The rules by which the lock levels of a file are made of three lockable bytes; the same for every kind of file.
//
//   level      reserved  pending  shared
//   None       -         -        -
//   Shared     -         -        read
//   Reserved   write     -        read
//   Exclusive  write     write    write
//
// Whoever takes Shared passes through the pending byte (read, then given back). A writer that waits for the last reader
// to leave holds it, so new readers queue behind the writer and cannot starve it.
//
// Going up, the bytes are claimed in the order of the columns. A connection that comes from None and waits for the
// reserved byte thus holds nothing that would keep the present writer from finishing. One that comes from Shared does
// hold the writer up, until the patience of either is over.
#pragma once

#include "jet/disk/file.h"

#include <chrono>
#include <string>

namespace jet {

/// Their places behind the first lockable byte; all versions of the program have to agree on them.
enum class LockByte { Pending = 0, Reserved = 1, Shared = 2 };
enum class ByteLock { None, Read, Write };

/// Three bytes that can be locked for reading by many or for writing by one.
class LockBytes
{
public:
    LockBytes() = default;
    LockBytes(const LockBytes&) = delete;
    LockBytes& operator=(const LockBytes&) = delete;
    virtual ~LockBytes() = default;

    /// Makes our lock on the byte the given one. False, and nothing changed, when another's lock does not go with it.
    [[nodiscard]] virtual bool trySet(LockByte byte, ByteLock lock) = 0;
};

class LockLadder
{
public:
    /// The path is for the words of errors. The bytes must outlive the ladder.
    LockLadder(LockBytes& bytes, std::string path) : bytes_(&bytes), path_(std::move(path)) {}

    /// File::lock() in full.
    void moveTo(LockLevel level, std::chrono::milliseconds patience);
    [[nodiscard]] LockLevel level() const { return level_; }

private:
    using Clock = std::chrono::steady_clock;

    void climb(LockLevel level, Clock::time_point deadline);
    void claim(LockByte byte, ByteLock lock, Clock::time_point deadline);
    void stepDownTo(LockLevel level);

    LockBytes* bytes_;
    std::string path_;
    LockLevel level_ = LockLevel::None;
};

} // namespace jet
