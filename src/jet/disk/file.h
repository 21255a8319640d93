// The engine's whole view of the operating system: files that are read and written at offsets, and the folder they are
// in.
#pragma once

#include "jet/disk/bytes.h"

#include <chrono>
#include <compare>
#include <cstdint>
#include <memory>
#include <string>

namespace jet {

enum class OpenMode {
    ReadOnly,
    ReadWrite, ///< throws ReadOnly when the file may only be read
    Create,    ///< a new file for reading and writing; throws FileExists
};

/// How much of the file a connection claims. Any number of connections may hold Shared; one of them may besides hold
/// Reserved (it is preparing a change); Exclusive (it is writing) goes with no other lock at all.
enum class LockLevel { None, Shared, Reserved, Exclusive };

/// Changes whenever another program may have changed the file's content (its size and time of last change).
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t changedNanoseconds = 0;
    auto operator<=>(const FileStamp&) const = default;
};

/// One open file, for one thread at a time. Offsets and sizes are in bytes. All functions throw jet::Error (Io,
/// DiskFull, Locked ...). Closing releases the lock.
class File
{
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    virtual ~File() = default;

    /// Fills the whole buffer; reading past the end is an Io error, never a short read.
    virtual void readAt(std::uint64_t offset, MutableBytes buffer) = 0;
    /// Writes all bytes; extends the file where needed. Not durable before sync().
    virtual void writeAt(std::uint64_t offset, ByteView bytes) = 0;
    [[nodiscard]] virtual std::uint64_t size() = 0;
    /// Makes the file so long: cuts it, or adds zeros. Not durable before sync().
    virtual void truncate(std::uint64_t size) = 0;
    /// Returns when everything written so far, the size included, will survive a loss of power.
    virtual void sync() = 0;

    /// Moves to the level, up or down. Going up tries again until the patience is over, then throws Locked and
    /// leaves the level as it was. Belongs to this open file, not to the process: two connections of one process
    /// conflict.
    virtual void lock(LockLevel level, std::chrono::milliseconds patience) = 0;
    [[nodiscard]] virtual FileStamp stamp() = 0;
    [[nodiscard]] virtual bool isReadOnly() const = 0;
    /// Whether the path that the file was opened by still leads to it: false after it was removed, moved or replaced.
    [[nodiscard]] virtual bool isInPlace() = 0;
};

/// May be used from several threads. All functions throw jet::Error: FileNotFound, FileExists, ReadOnly, Io ...
class FileSystem
{
public:
    FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;
    virtual ~FileSystem() = default;

    /// A file made by Create can be read and written by its owner alone.
    [[nodiscard]] virtual std::unique_ptr<File> open(const std::string& path, OpenMode mode) = 0;
    /// As open() with Create; whoever may read or write the model may do so with the new file as far as the system lets
    /// us say so, never anybody else but its owner, who may in any case.
    [[nodiscard]] virtual std::unique_ptr<File> createLike(const std::string& path, const std::string& model) = 0;
    /// The one path of the file whatever links lead to it, so that all who open it look for its journal in one place.
    [[nodiscard]] virtual std::string resolve(const std::string& path) = 0;
    [[nodiscard]] virtual bool exists(const std::string& path) = 0;
    virtual void remove(const std::string& path) = 0;
    /// Replaces a file that has the new name.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    /// Makes creations, removals and renames in the folder that holds the path durable.
    virtual void syncFolderOf(const std::string& path) = 0;
};

/// The real file system.
[[nodiscard]] FileSystem& posixFileSystem();

} // namespace jet
