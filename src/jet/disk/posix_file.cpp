// Files of the operating system: POSIX calls, and Linux's open-file-description locks, which belong to the open file
// and are not lost when another descriptor of the process is closed.
#include "jet/disk/file.h"
#include "jet/disk/lock_ladder.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace jet {

namespace {

// The format ends at 2 GiB, so these bytes never hold content, and a lock of the whole file covers them.
constexpr off_t kFirstLockByte = off_t{1} << 32;

ErrorCode codeOf(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return ErrorCode::FileNotFound;
    case EEXIST:
        return ErrorCode::FileExists;
    case ENOSPC:
    case EDQUOT:
        return ErrorCode::DiskFull;
    default:
        return ErrorCode::Io;
    }
}

[[noreturn]] void fail(int error, const std::string& action, const std::string& path)
{
    const std::string reason = std::generic_category().message(error);
    throw Error(codeOf(error), "Cannot " + action + " " + path + ": " + reason);
}

/// Calls again while a signal interrupts; throws on any other error.
template <typename Call>
auto retried(const std::string& action, const std::string& path, Call call)
{
    for (;;) {
        const auto result = call();
        if (result >= 0) {
            return result;
        }
        if (errno != EINTR) {
            fail(errno, action, path);
        }
    }
}

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

class Descriptor
{
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor()
    {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    [[nodiscard]] int get() const { return number_; }

private:
    int number_;
};

class PosixLockBytes final : public LockBytes
{
public:
    PosixLockBytes(int descriptor, std::string path) : descriptor_(descriptor), path_(std::move(path)) {}

    bool trySet(LockByte byte, ByteLock lock) override
    {
        struct flock request = {};
        request.l_type = static_cast<short>(lock == ByteLock::None   ? F_UNLCK
                                            : lock == ByteLock::Read ? F_RDLCK
                                                                     : F_WRLCK);
        request.l_whence = SEEK_SET;
        request.l_start = kFirstLockByte + static_cast<off_t>(byte);
        request.l_len = 1;
        while (::fcntl(descriptor_, F_OFD_SETLK, &request) != 0) {
            if (errno == EAGAIN || errno == EACCES) {
                return false;
            }
            if (errno != EINTR) {
                fail(errno, "lock", path_);
            }
        }
        return true;
    }

private:
    int descriptor_;
    std::string path_;
};

class PosixFile final : public File
{
public:
    PosixFile(Descriptor descriptor, std::string path, bool readOnly)
        : descriptor_(std::move(descriptor)), path_(std::move(path)), readOnly_(readOnly),
          lockBytes_(descriptor_.get(), path_), locks_(lockBytes_, path_)
    {
    }

    void readAt(std::uint64_t offset, MutableBytes buffer) override
    {
        while (!buffer.empty()) {
            const ssize_t count = retried("read", path_, [&] {
                return ::pread(descriptor_.get(), buffer.data(), buffer.size(), static_cast<off_t>(offset));
            });
            if (count == 0) {
                throw Error(ErrorCode::Io,
                            "Cannot read " + path_ + ": it ends before byte " + std::to_string(offset + buffer.size()));
            }
            offset += static_cast<std::uint64_t>(count);
            buffer = buffer.subspan(static_cast<std::size_t>(count));
        }
    }

    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        while (!bytes.empty()) {
            const ssize_t count = retried("write", path_, [&] {
                return ::pwrite(descriptor_.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
            });
            offset += static_cast<std::uint64_t>(count);
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }

    std::uint64_t size() override { return static_cast<std::uint64_t>(status().st_size); }

    void truncate(std::uint64_t size) override
    {
        retried("change the size of", path_, [&] { return ::ftruncate(descriptor_.get(), static_cast<off_t>(size)); });
    }

    // Not fsync: the times of the file need not survive, the size does, and fdatasync sees to that.
    void sync() override
    {
        retried("write out", path_, [&] { return ::fdatasync(descriptor_.get()); });
    }

    void lock(LockLevel level, std::chrono::milliseconds patience) override { locks_.moveTo(level, patience); }

    FileStamp stamp() override
    {
        const struct stat now = status();
        return FileStamp{.size = static_cast<std::uint64_t>(now.st_size),
                         .changedNanoseconds = now.st_mtim.tv_sec * 1'000'000'000 + now.st_mtim.tv_nsec};
    }

    bool isReadOnly() const override { return readOnly_; }

    bool isInPlace() override
    {
        struct stat there = {};
        if (::stat(path_.c_str(), &there) != 0) {
            if (errno == ENOENT || errno == ENOTDIR) {
                return false;
            }
            fail(errno, "look up", path_);
        }
        const struct stat ours = status();
        return ours.st_dev == there.st_dev && ours.st_ino == there.st_ino;
    }

    [[nodiscard]] struct stat status()
    {
        struct stat now = {};
        retried("look up", path_, [&] { return ::fstat(descriptor_.get(), &now); });
        return now;
    }

    /// Gives the file the owner, group and rights of another, as far as the system lets us; never more rights, but its
    /// owner can always use it. Before that the file is its maker's alone.
    void takeRightsOf(const struct stat& model)
    {
        constexpr auto kSameOwner = static_cast<uid_t>(-1);
        constexpr auto kSameGroup = static_cast<gid_t>(-1);
        mode_t mode = model.st_mode & (S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH);
        const struct stat own = status();
        if (own.st_gid != model.st_gid && ::fchown(descriptor_.get(), kSameOwner, model.st_gid) != 0) {
            mode &= S_IRUSR | S_IWUSR; // what the model grants its group must not go to another one
        }
        if (own.st_uid != model.st_uid && ::fchown(descriptor_.get(), model.st_uid, kSameGroup) != 0) {
            // Nobody but the superuser gives a file away. Who shares it through the group goes on sharing it, and
            // the others have what others had.
        }
        mode |= S_IRUSR | S_IWUSR;
        retried("set the rights of", path_, [&] { return ::fchmod(descriptor_.get(), mode); });
    }

private:
    Descriptor descriptor_;
    std::string path_;
    bool readOnly_;
    PosixLockBytes lockBytes_;
    LockLadder locks_;
};

/// A program that was started with a standard stream closed opens its first file under that stream's number, and
/// whatever it or a library then says on the stream would be written into the diary. So no file stays there.
Descriptor clearOfStandardStreams(Descriptor opened, const std::string& path)
{
    if (opened.get() > STDERR_FILENO) {
        return opened;
    }
    return Descriptor(retried("open", path, [&] { return ::fcntl(opened.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1); }));
}

std::unique_ptr<PosixFile> openFile(const std::string& path, OpenMode mode)
{
    // O_NONBLOCK: opening a named pipe would otherwise wait for its other end. Regular files do not know it.
    int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    flags |= mode == OpenMode::ReadOnly ? O_RDONLY : O_RDWR;
    if (mode == OpenMode::Create) {
        flags |= O_CREAT | O_EXCL;
    }
    int number = -1;
    do {
        number = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
    } while (number < 0 && errno == EINTR);
    if (number < 0) {
        if (errno == EISDIR) {
            throw Error(ErrorCode::Io, "Cannot open " + path + ": it is a folder, not a file");
        }
        if (mode == OpenMode::ReadWrite && (errno == EACCES || errno == EROFS || errno == EPERM)) {
            throw Error(ErrorCode::ReadOnly,
                        "Cannot open " + path + " for writing: " + std::generic_category().message(errno));
        }
        fail(errno, mode == OpenMode::Create ? "create" : "open", path);
    }
    auto file =
        std::make_unique<PosixFile>(clearOfStandardStreams(Descriptor(number), path), path, mode == OpenMode::ReadOnly);
    const mode_t kind = file->status().st_mode;
    if (!S_ISREG(kind)) {
        throw Error(ErrorCode::Io, "Cannot open " + path + ": it is a " +
                                       (S_ISDIR(kind) ? "folder" : "device or pipe") + ", not a file");
    }
    return file;
}

class PosixFileSystem final : public FileSystem
{
public:
    std::unique_ptr<File> open(const std::string& path, OpenMode mode) override { return openFile(path, mode); }

    std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override
    {
        struct stat rights = {};
        retried("look up", model, [&] { return ::stat(model.c_str(), &rights); });
        std::unique_ptr<PosixFile> file = openFile(path, OpenMode::Create);
        file->takeRightsOf(rights);
        return file;
    }

    std::string resolve(const std::string& path) override
    {
        const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
        if (!resolved) {
            fail(errno, "look up", path);
        }
        return resolved.get();
    }

    bool exists(const std::string& path) override
    {
        // A dangling link counts: what stands there is not understood, and must not pass for nothing.
        struct stat status = {};
        if (::lstat(path.c_str(), &status) == 0) {
            return true;
        }
        if (errno != ENOENT && errno != ENOTDIR) {
            fail(errno, "look up", path);
        }
        return false;
    }

    void remove(const std::string& path) override
    {
        retried("remove", path, [&] { return ::unlink(path.c_str()); });
    }

    void rename(const std::string& from, const std::string& to) override
    {
        retried("rename", from, [&] { return ::rename(from.c_str(), to.c_str()); });
    }

    void syncFolderOf(const std::string& path) override
    {
        const std::string folder = folderOf(path);
        const Descriptor descriptor(
            retried("open", folder, [&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
        retried("write out", folder, [&] { return ::fsync(descriptor.get()); });
    }
};

} // namespace

FileSystem& posixFileSystem()
{
    static PosixFileSystem fileSystem;
    return fileSystem;
}

} // namespace jet
