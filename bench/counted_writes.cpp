// A program's own functions come before those of the C library, for its shared libraries as well: here they count, then
// make the system call.

#include "counted_writes.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

namespace {

std::atomic<std::int64_t> syncs{0};
std::atomic<std::int64_t> writes{0};
std::atomic<std::int64_t> bytes{0};

ssize_t countedWrite(int descriptor, const void* data, std::size_t size, off_t offset)
{
    ++writes;
    const ssize_t written = syscall(SYS_pwrite64, descriptor, data, size, offset);
    bytes += written > 0 ? written : 0;
    return written;
}

int countedSync(long call, int descriptor)
{
    ++syncs;
    return static_cast<int>(syscall(call, descriptor));
}

} // namespace

extern "C" {

ssize_t pwrite(int descriptor, const void* data, std::size_t size, off_t offset)
{
    return countedWrite(descriptor, data, size, offset);
}

ssize_t pwrite64(int descriptor, const void* data, std::size_t size, off64_t offset)
{
    return countedWrite(descriptor, data, size, offset);
}

int fsync(int descriptor)
{
    return countedSync(SYS_fsync, descriptor);
}

int fdatasync(int descriptor)
{
    return countedSync(SYS_fdatasync, descriptor);
}

} // extern "C"

namespace bench {

WriteCount writesOfProcess()
{
    return {syncs, writes, bytes};
}

} // namespace bench
