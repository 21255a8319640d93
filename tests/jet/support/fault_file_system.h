// A file system on which a chosen call fails.
//
//     forEachFault({.prepare = [](FileSystem& disk) { makeDiary(disk); },
//                   .body = [](FileSystem& disk) { addReading(disk); },
//                   .check = [](FileSystem& disk, bool finished) { expectOldOrNew(disk, finished); }});
#pragma once

#include "jet/disk/file.h"
#include "jet/support/forwarding_file_system.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace jet::test {

/// The kinds of calls that can fail. Lock is only going up; letting go of a lock does not fail.
enum class Call {
    Open,
    Create,
    Resolve,
    Exists,
    Remove,
    Rename,
    SyncFolder,
    Read,
    Write,
    Size,
    Truncate,
    Sync,
    Lock,
    Stamp
};

struct Fault {
    std::size_t at = 0;            ///< the number of the call, counted from 0 when the fault is set
    bool lasting = false;          ///< all later calls of the kind fail as well
    std::optional<Call> call = {}; ///< which calls count; all of them when empty
    ErrorCode code = ErrorCode::Io;
};

/// A write that fails has written the first half of its bytes.
class FaultFileSystem final : public ForwardingFileSystem
{
public:
    explicit FaultFileSystem(FileSystem& inner);
    ~FaultFileSystem() override;

    void set(const Fault& fault);
    /// No call fails from now on.
    void heal();
    /// Whether the fault has struck.
    [[nodiscard]] bool hasFailed() const;

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override;
    [[nodiscard]] std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override;
    [[nodiscard]] std::string resolve(const std::string& path) override;
    [[nodiscard]] bool exists(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void syncFolderOf(const std::string& path) override;

private:
    class State;
    class OpenFile;
    std::shared_ptr<State> state_;
};

struct FaultTest {
    /// Makes the state before, on a file system in memory.
    std::function<void(FileSystem&)> prepare;
    /// What a call fails in. May throw jet::Error once one has.
    std::function<void(FileSystem&)> body;
    /// Looks at the files after the body is over and calls work again; `finished` tells that the body did not throw.
    std::function<void(FileSystem&, bool finished)> check;
    std::optional<Call> call = {}; ///< as in Fault
    ErrorCode code = ErrorCode::Io;
};

/// Lets each call of the body fail in turn, once alone and once with all that follow. Gives the number of faults.
std::size_t forEachFault(const FaultTest& test);

} // namespace jet::test
